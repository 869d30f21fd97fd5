#pragma once

#include <QtGlobal>

#include <vector>

namespace QXlsx::detail {

class SheetData;
class WorkbookData;
class WrittenStyles;
class XmlSink;

// How a save keeps within Excel's limits, settled before the sheets are written: the
// record of each style index, and the string pool entries written cut (textlimit.h).
struct ExcelLimits
{
    const WrittenStyles& styles;
    const std::vector<quint32>& cutTexts;   // in order
};

struct WorksheetCounts
{
    quint64 stringReferences = 0;   // cells referring to the shared strings
    quint64 cutTexts = 0;           // cells whose text, or cached formula text, was cut
};

// A worksheet part: the rows and cells, column widths, merges and sheet view, with the
// elements of an opened sheet that are not modelled kept in their place.
WorksheetCounts writeWorksheetPart(XmlSink& out, const WorkbookData& book, const SheetData& sheet,
                                   bool active, const ExcelLimits& limits);

} // namespace QXlsx::detail
