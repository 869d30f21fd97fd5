#pragma once

#include <QtGlobal>

namespace QXlsx::detail {

class SheetData;
class WorkbookData;
class XmlSink;

// A worksheet part: the rows and cells, column widths, merges and sheet view, with the
// elements of an opened sheet that are not modelled kept in their place. Returns how
// many cells refer to the shared strings, which that part records.
quint64 writeWorksheetPart(XmlSink& out, const WorkbookData& book, const SheetData& sheet,
                           bool active);

} // namespace QXlsx::detail
