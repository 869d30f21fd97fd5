#include "docprops.h"

#include "model/workbookdata.h"
#include "xmlsink.h"

namespace QXlsx::detail {

void writeCoreProperties(XmlSink& out, const QDateTime& created)
{
    const QByteArray stamp = created.toUTC().toString(Qt::ISODate).toLatin1();
    out.literal("<?xml version=\"1.0\" encoding=\"UTF-8\" standalone=\"yes\"?>\n"
                "<cp:coreProperties"
                " xmlns:cp=\"http://schemas.openxmlformats.org/package/2006/metadata/core-properties\""
                " xmlns:dc=\"http://purl.org/dc/elements/1.1/\""
                " xmlns:dcterms=\"http://purl.org/dc/terms/\""
                " xmlns:dcmitype=\"http://purl.org/dc/dcmitype/\""
                " xmlns:xsi=\"http://www.w3.org/2001/XMLSchema-instance\">"
                "<dcterms:created xsi:type=\"dcterms:W3CDTF\">");
    out.append(stamp);
    out.literal("</dcterms:created><dcterms:modified xsi:type=\"dcterms:W3CDTF\">");
    out.append(stamp);
    out.literal("</dcterms:modified></cp:coreProperties>");
}

void writeAppProperties(XmlSink& out, const WorkbookData& book)
{
    out.literal("<?xml version=\"1.0\" encoding=\"UTF-8\" standalone=\"yes\"?>\n"
                "<Properties"
                " xmlns=\"http://schemas.openxmlformats.org/officeDocument/2006/extended-properties\""
                " xmlns:vt=\"http://schemas.openxmlformats.org/officeDocument/2006/docPropsVTypes\">"
                "<Application>VyGisUtil</Application>"
                "<HeadingPairs><vt:vector size=\"2\" baseType=\"variant\">"
                "<vt:variant><vt:lpstr>Worksheets</vt:lpstr></vt:variant><vt:variant><vt:i4>");
    out.appendUInt(book.sheets.size());
    out.literal("</vt:i4></vt:variant></vt:vector></HeadingPairs>"
                "<TitlesOfParts><vt:vector size=\"");
    out.appendUInt(book.sheets.size());
    out.literal("\" baseType=\"lpstr\">");
    for (const auto& sheet : book.sheets) {
        out.literal("<vt:lpstr>");
        out.appendText(sheet->name);
        out.literal("</vt:lpstr>");
    }
    out.literal("</vt:vector></TitlesOfParts></Properties>");
}

} // namespace QXlsx::detail
