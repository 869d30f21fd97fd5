#include "tsstring.h"

#include "tsqtext.h"

#include <QString>
#include <QStringView>

#include <cwchar>

namespace VyObjects {

namespace {

// QString::fromWCharArray knows whether wchar_t holds UTF-16 or UTF-32.
std::u16string fromWide(const wchar_t* text, std::size_t length)
{
    return toTsString(QString::fromWCharArray(text, static_cast<int>(length))).utf16();
}

} // namespace

TsString::TsString(const char* utf8)
{
    if (utf8)
        m_text = toTsString(QString::fromUtf8(utf8)).utf16();
}

TsString::TsString(const wchar_t* text)
{
    if (text)
        m_text = fromWide(text, std::wcslen(text));
}

TsString::TsString(const std::wstring& text)
    : m_text(fromWide(text.data(), text.size()))
{
}

TsString::TsString(const char16_t* utf16)
{
    if (utf16)
        m_text = utf16;
}

TsString::TsString(std::u16string utf16)
    : m_text(std::move(utf16))
{
}

TsString& TsString::operator=(const std::wstring& text)
{
    m_text = fromWide(text.data(), text.size());
    return *this;
}

TsString& TsString::operator=(const wchar_t* text)
{
    return *this = TsString(text);
}

TsString& TsString::operator=(const char* utf8)
{
    return *this = TsString(utf8);
}

std::wstring TsString::toStdWString() const
{
    return toQString(*this).toStdWString();
}

std::string TsString::toUtf8() const
{
    return toQString(*this).toUtf8().toStdString();
}

int TsString::Compare(const TsString& other) const
{
    return m_text.compare(other.m_text);
}

int TsString::CompareNoCase(const TsString& other) const
{
    // Views over the stored UTF-16, so that comparing allocates nothing.
    const QStringView mine(m_text.data(), qsizetype(m_text.size()));
    const QStringView theirs(other.m_text.data(), qsizetype(other.m_text.size()));
    return mine.compare(theirs, Qt::CaseInsensitive);
}

std::vector<TsString> TsString::split(const TsString& separator) const
{
    if (separator.IsEmpty())
        return {*this};
    std::vector<TsString> parts;
    std::size_t start = 0;
    for (;;) {
        const std::size_t found = m_text.find(separator.m_text, start);
        if (found == std::u16string::npos)
            break;
        parts.emplace_back(m_text.substr(start, found - start));
        start = found + separator.m_text.size();
    }
    parts.emplace_back(m_text.substr(start));
    return parts;
}

int TsString::ToInt() const
{
    bool ok = false;
    const int value = toQString(*this).trimmed().toInt(&ok, 10);
    return ok ? value : 0;
}

TsString TsString::operator+(const TsString& other) const
{
    return TsString(m_text + other.m_text);
}

TsString TsString::operator+(const char* utf8) const
{
    return *this + TsString(utf8);
}

TsString TsString::operator+(const int& number) const
{
    return *this + toTsString(QString::number(number));
}

TsString& TsString::operator+=(const TsString& other)
{
    m_text += other.m_text;
    return *this;
}

} // namespace VyObjects
