#ifndef VYGIS_TSSTRING_H
#define VYGIS_TSSTRING_H

#include "vygishost_export.h"

#include <string>
#include <vector>

namespace VyObjects {

// Text of the object library, held as UTF-16 whatever the width of wchar_t:
// wide strings are converted as UTF-16 where wchar_t has 16 bits (Windows)
// and as UTF-32 where it has 32, so characters beyond the Basic Multilingual
// Plane survive the round trip either way.
class VYGIS_HOST_EXPORT TsString
{
public:
    TsString() = default;
    TsString(const char* utf8);         // null reads as empty
    TsString(const wchar_t* text);      // null reads as empty
    TsString(const std::wstring& text);
    TsString(const char16_t* utf16);    // null reads as empty
    TsString(std::u16string utf16);

    TsString& operator=(const std::wstring& text);
    TsString& operator=(const wchar_t* text);
    TsString& operator=(const char* utf8);

    std::wstring toStdWString() const;
    operator std::wstring() const { return toStdWString(); }
    std::string toUtf8() const;
    const std::u16string& utf16() const { return m_text; }

    bool IsEmpty() const { return m_text.empty(); }
    int GetLength() const { return static_cast<int>(m_text.size()); }

    // Negative, 0 or positive like strcmp. CompareNoCase folds case by the
    // Unicode rules, so "STRASSE" and "strasse" are equal but "ß" and "ss"
    // are not.
    int Compare(const TsString& other) const;
    int CompareNoCase(const TsString& other) const;

    // Cuts at every occurrence of separator and keeps empty parts: "a-" gives
    // ["a", ""], "" gives [""]. An empty separator gives the whole text.
    std::vector<TsString> split(const TsString& separator) const;

    // A decimal integer with optional sign and surrounding blanks; any other
    // text, and a number beyond the int range, gives 0.
    int ToInt() const;

    TsString operator+(const TsString& other) const;
    TsString operator+(const char* utf8) const;
    TsString operator+(const int& number) const;   // appended in decimal
    TsString operator+(char) const = delete;        // would append a number
    TsString& operator+=(const TsString& other);

    friend bool operator==(const TsString& a, const TsString& b) { return a.m_text == b.m_text; }
    friend bool operator!=(const TsString& a, const TsString& b) { return a.m_text != b.m_text; }
    friend bool operator<(const TsString& a, const TsString& b) { return a.m_text < b.m_text; }

private:
    std::u16string m_text;
};

} // namespace VyObjects

#endif // VYGIS_TSSTRING_H
