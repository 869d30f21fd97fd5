#pragma once

namespace QXlsx::detail {

class WorkbookData;
class XmlSink;
struct PackagePlan;

// xl/workbook.xml: the sheets in tab order with their relationship ids, the date system,
// the active tab, and what an opened workbook held besides (defined names, calculation
// settings, ...) in the order the format requires.
void writeWorkbookPart(XmlSink& out, const WorkbookData& book, const PackagePlan& plan);

} // namespace QXlsx::detail
