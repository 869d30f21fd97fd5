#pragma once

#include "tsbase.h"

#include <QString>

#include <string>

// Texts cross between Qt and the object library as UTF-16, unchanged.
inline VyObjects::TsString tsText(const QString& text)
{
    return VyObjects::TsString(std::u16string(reinterpret_cast<const char16_t*>(text.utf16()),
                                              static_cast<std::size_t>(text.size())));
}

inline QString qtText(const VyObjects::TsString& text)
{
    return QString::fromStdWString(text.toStdWString());
}
