#ifndef VYGIS_TSQSTRING_P_H
#define VYGIS_TSQSTRING_P_H

// Internal: the object library's text and Qt's text share UTF-16, so the
// conversion is a copy of code units.

#include "tsstring.h"

#include <QString>

namespace VyObjects {

inline QString toQString(const TsString& text)
{
    const std::u16string& utf16 = text.utf16();
    return QString::fromUtf16(utf16.data(), static_cast<int>(utf16.size()));
}

inline TsString toTsString(const QString& text)
{
    return TsString(std::u16string(reinterpret_cast<const char16_t*>(text.utf16()),
                                   static_cast<std::size_t>(text.size())));
}

} // namespace VyObjects

#endif // VYGIS_TSQSTRING_P_H
