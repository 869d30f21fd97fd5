#pragma once

#include <QDateTime>

namespace QXlsx::detail {

class WorkbookData;
class XmlSink;

// docProps/core.xml and docProps/app.xml of a new workbook: just what readers show
// (creation time, application, sheet titles).
void writeCoreProperties(XmlSink& out, const QDateTime& created);
void writeAppProperties(XmlSink& out, const WorkbookData& book);

} // namespace QXlsx::detail
