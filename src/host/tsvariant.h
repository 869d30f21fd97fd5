#ifndef VYGIS_TSVARIANT_H
#define VYGIS_TSVARIANT_H

#include "tsstring.h"
#include "vygishost_export.h"

#include <cstdint>

namespace VyObjects {

// An attribute value. The type code is the first data member and is 32 bits
// wide, so code that only looks at the code may read it in place.
//
//   code  type           GetDouble()          ToString()
//   0     empty          0.0                  ""
//   1     null           0.0                  ""
//   2     bool           1.0 / 0.0            "true" / "false"
//   3     16-bit integer the value            decimal
//   4     32-bit integer the value            decimal
//   5     64-bit integer the value            decimal
//   6     date and time  0.0                  "yyyy-MM-dd HH:mm:ss" (UTC, whole seconds)
//   7     text           the text as a number the text itself
//                        (0.0 if it is none)
//   8     double         the value            shortest text that reads back as the same double
//   9     single (float) the value            shortest text that reads back as the same float
//
// Floating texts use "." and no group separators; the exponent form (1e+20,
// 1e-07) appears only where it is shorter than the plain digits. Non-finite
// values read "nan", "inf" and "-inf".
class VYGIS_HOST_EXPORT TsVariant
{
public:
    enum TypeCode : std::int32_t {
        EmptyType = 0,
        NullType = 1,
        BoolType = 2,
        Int16Type = 3,
        Int32Type = 4,
        Int64Type = 5,
        DateTimeType = 6,
        StringType = 7,
        DoubleType = 8,
        SingleType = 9
    };

    TsVariant() = default;
    TsVariant(const TsString& text);
    TsVariant(const char* utf8);
    TsVariant(const wchar_t* text);
    TsVariant(bool value);
    TsVariant(std::int32_t value);
    TsVariant(std::int64_t value);
    TsVariant(double value);
    TsVariant(float value);

    static TsVariant null();
    static TsVariant fromInt16(std::int16_t value);
    static TsVariant fromDateTime(std::int64_t msecsSinceEpochUtc);

    std::int32_t GetType() const { return m_type; }
    bool IsEmpty() const { return m_type == EmptyType; }
    bool IsNull() const { return m_type == NullType; }
    // True for the integer, bool and floating codes.
    bool IsNumeric() const;

    double GetDouble() const;
    // Integers and bools as they are, floating values rounded to the nearest
    // integer, texts that read as an integer; 0 and *ok false otherwise.
    std::int64_t GetInt64(bool* ok = nullptr) const;
    // The milliseconds of a date-and-time value; 0 for every other code.
    std::int64_t GetDateTime() const { return m_type == DateTimeType ? m_integer : 0; }
    TsString ToString() const;

    // Same code and same value; two nulls are equal, as are two empties.
    friend bool operator==(const TsVariant& a, const TsVariant& b) { return a.equals(b); }
    friend bool operator!=(const TsVariant& a, const TsVariant& b) { return !a.equals(b); }

private:
    bool equals(const TsVariant& other) const;

    std::int32_t m_type = EmptyType;
    std::int64_t m_integer = 0;   // bool, integer and date-and-time codes
    double m_real = 0.0;          // double and single codes
    TsString m_text;              // text code
};

} // namespace VyObjects

#endif // VYGIS_TSVARIANT_H
