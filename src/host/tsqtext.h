#ifndef VYGIS_TSQTEXT_H
#define VYGIS_TSQTEXT_H

// Text crossing between Qt and the object library. Both hold UTF-16, so the
// crossing is a copy of code units: characters beyond the Basic Multilingual
// Plane, embedded NULs and a leading U+FEFF arrive as they left, and nothing
// goes through wchar_t, which is 32 bits wide outside Windows.

#include "tsstring.h"

#include <QString>

#include <cstddef>
#include <string>

namespace VyObjects {

inline QString toQString(const TsString& text)
{
    // Not QString::fromUtf16, which would take a leading U+FEFF for a byte
    // order mark and drop it.
    const std::u16string& utf16 = text.utf16();
    return QString(reinterpret_cast<const QChar*>(utf16.data()), static_cast<int>(utf16.size()));
}

inline TsString toTsString(const QString& text)
{
    return TsString(std::u16string(reinterpret_cast<const char16_t*>(text.utf16()),
                                   static_cast<std::size_t>(text.size())));
}

} // namespace VyObjects

#endif // VYGIS_TSQTEXT_H
