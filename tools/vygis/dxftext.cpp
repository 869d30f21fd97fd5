#include "dxftext.h"

#include <optional>

namespace DxfText {
namespace {

constexpr std::size_t none = std::string_view::npos;
constexpr std::string_view blanks = " \t";

std::string_view trimmed(std::string_view text)
{
    const std::size_t first = text.find_first_not_of(blanks);
    if (first == none)
        return {};
    return text.substr(first, text.find_last_not_of(blanks) - first + 1);
}

// A group code line holds a number, often right-aligned in a field of three.
std::optional<int> groupCode(std::string_view line)
{
    std::string_view digits = trimmed(line);
    const bool negative = !digits.empty() && digits.front() == '-';
    if (negative)
        digits.remove_prefix(1);
    if (digits.empty() || digits.size() > 6)
        return std::nullopt;
    int code = 0;
    for (const char c : digits) {
        if (c < '0' || c > '9')
            return std::nullopt;
        code = code * 10 + (c - '0');
    }
    return negative ? -code : code;
}

struct Pair
{
    int code = 0;
    std::string_view value; // without its line end
    std::size_t valueStart = 0;
};

// The bytes pair by pair, each line without its line end ("\n" or "\r\n").
class PairReader
{
public:
    explicit PairReader(std::string_view bytes) : m_bytes(bytes)
    {
        constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";
        if (m_bytes.substr(0, byteOrderMark.size()) == byteOrderMark)
            m_next = byteOrderMark.size();
    }

    // The next pair; nothing at the end of the bytes or where a code line holds no number.
    std::optional<Pair> next()
    {
        std::string_view codeLine;
        std::size_t codeStart = 0;
        Pair pair;
        if (!nextLine(codeLine, codeStart) || !nextLine(pair.value, pair.valueStart))
            return std::nullopt;
        const std::optional<int> code = groupCode(codeLine);
        if (!code)
            return std::nullopt;
        pair.code = *code;
        return pair;
    }

    // The next pair that is not a comment.
    std::optional<Pair> nextData()
    {
        constexpr int comment = 999;
        std::optional<Pair> pair = next();
        while (pair && pair->code == comment)
            pair = next();
        return pair;
    }

private:
    bool nextLine(std::string_view& line, std::size_t& start)
    {
        if (m_next >= m_bytes.size())
            return false;
        start = m_next;
        const std::size_t newline = m_bytes.find('\n', m_next);
        const std::size_t end = newline == none ? m_bytes.size() : newline;
        m_next = newline == none ? m_bytes.size() : newline + 1;
        line = m_bytes.substr(start, end - start);
        if (!line.empty() && line.back() == '\r')
            line.remove_suffix(1);
        return true;
    }

    std::string_view m_bytes;
    std::size_t m_next = 0;
};

bool isPair(const std::optional<Pair>& pair, int code, std::string_view value)
{
    return pair && pair->code == code && trimmed(pair->value) == value;
}

} // namespace

bool looksLikeDrawing(std::string_view bytes)
{
    PairReader pairs(bytes);
    return isPair(pairs.nextData(), 0, "SECTION");
}

CodePageValue findCodePageValue(std::string_view bytes)
{
    PairReader pairs(bytes);
    if (!isPair(pairs.nextData(), 0, "SECTION") || !isPair(pairs.nextData(), 2, "HEADER"))
        return {};
    // Header variables are 9 NAME pairs, each followed by its value pairs; a 0 pair
    // (ENDSEC) ends the section.
    for (std::optional<Pair> pair = pairs.nextData(); pair && pair->code != 0; pair = pairs.nextData()) {
        if (!isPair(pair, 9, "$DWGCODEPAGE"))
            continue;
        const std::optional<Pair> value = pairs.nextData();
        if (!value || value->code != 3)
            return {CodePageValue::NoValue, 0, 0, {}};
        return {CodePageValue::Found, value->valueStart, value->value.size(), trimmed(value->value)};
    }
    return {};
}

AnsiLines countAnsiLines(std::string_view bytes)
{
    constexpr std::string_view marker = "ANSI_";
    AnsiLines lines;
    for (std::size_t at = bytes.find(marker); at != none; at = bytes.find(marker, at)) {
        const std::size_t start = at == 0 ? 0 : bytes.rfind('\n', at - 1) + 1;
        const std::size_t newline = bytes.find('\n', at);
        if (newline == none)
            break;
        std::string_view line = bytes.substr(start, newline - start);
        if (!line.empty() && line.back() == '\r')
            line.remove_suffix(1);
        ++lines.holdingMarker;
        if (line != wantedCodePage)
            ++lines.toRewrite;
        at = newline + 1;
    }
    return lines;
}

} // namespace DxfText
