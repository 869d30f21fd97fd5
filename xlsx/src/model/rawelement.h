#pragma once

#include <QByteArray>

namespace QXlsx::detail {

// An XML element the engine keeps without modelling it: its local name (without
// prefix), and its whole serialised text, prefixes and namespace declarations included.
struct RawElement
{
    QByteArray localName;
    QByteArray xml;
};

} // namespace QXlsx::detail
