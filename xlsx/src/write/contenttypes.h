#pragma once

namespace QXlsx::detail {

class WorkbookData;
class XmlSink;
struct PackagePlan;

// [Content_Types].xml: a default per file extension, an override per part whose type
// the defaults do not give.
void writeContentTypes(XmlSink& out, const WorkbookData& book, const PackagePlan& plan);

} // namespace QXlsx::detail
