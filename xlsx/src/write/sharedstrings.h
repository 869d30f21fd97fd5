#pragma once

#include <QtGlobal>

namespace QXlsx::detail {

class StringPool;
class XmlSink;

// The shared strings part: every entry of the pool at its own index, so that cells
// refer to their text by the index they already hold; rich entries with their runs.
// A plain text over Excel's length limit is written cut to it (textlimit.h).
// referenceCount is how many cells refer to the table.
void writeSharedStrings(XmlSink& out, const StringPool& strings, quint64 referenceCount);

} // namespace QXlsx::detail
