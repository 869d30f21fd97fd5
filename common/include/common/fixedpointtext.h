#pragma once

// Fixed-point number texts with the digits QString::number(value, 'f', decimals) gives,
// written without Qt's locale machinery, which costs more than the cell the text goes
// into. Shared by the host's number texts and the library's reports.

#include <charconv>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstring>

namespace vygis {

// Qt and std::to_chars both round the exact binary value and differ only on a value
// lying exactly halfway between two results: Qt rounds it away from zero, to_chars to
// even. A double m * 2^e with m odd has exactly -e decimals, so it lies halfway at
// `decimals` only when it has decimals + 1 of them.
inline bool liesHalfway(double value, int decimals)
{
    int exponent = 0;
    auto mantissa = static_cast<std::uint64_t>(std::fabs(std::ldexp(std::frexp(value, &exponent), 53)));
    if (mantissa == 0)
        return false;
    exponent -= 53;
    while ((mantissa & 1) == 0) {
        mantissa >>= 1;
        ++exponent;
    }
    return exponent == -(decimals + 1);
}

// Adds one unit in the last place to the magnitude of the number text [first, last),
// carrying as far as needed ("-9.99" becomes "-10.00"); null when a carry into a new
// digit does not fit before end.
inline char* roundedUpInMagnitude(char* first, char* last, char* end)
{
    char* const digits = *first == '-' ? first + 1 : first;
    for (char* p = last; p-- > digits;) {
        if (*p == '.')
            continue;
        if (*p != '9') {
            ++*p;
            return last;
        }
        *p = '0';
    }
    if (last == end)
        return nullptr;
    std::memmove(digits + 1, digits, static_cast<std::size_t>(last - digits));
    *digits = '1';
    return last + 1;
}

// Writes the text after out and returns its end; null when the value is not finite or
// the text does not fit before end. Zero is written without a sign, also -0, as Qt does.
inline char* appendFixedPointText(char* out, char* end, double value, int decimals)
{
    if (!std::isfinite(value))
        return nullptr;
    if (value == 0.0)
        value = 0.0;
    if (!liesHalfway(value, decimals)) {
        const auto [last, error] = std::to_chars(out, end, value, std::chars_format::fixed, decimals);
        return error == std::errc() ? last : nullptr;
    }
    // One decimal more is exact and ends in the 5 that is rounded away.
    auto [last, error] = std::to_chars(out, end, value, std::chars_format::fixed, decimals + 1);
    if (error != std::errc())
        return nullptr;
    last -= decimals == 0 ? 2 : 1;   // the 5, and the point when no decimals are left
    return roundedUpInMagnitude(out, last, end);
}

} // namespace vygis
