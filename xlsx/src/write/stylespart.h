#pragma once

namespace QXlsx::detail {

class StyleTable;
class WrittenStyles;
class XmlSink;

// The styles part: number formats, fonts, fills and borders each written once however
// many formats share them, and the cell format records planned in written: one per
// style index of the table while the table is within Excel's limit, so that the style
// index a cell holds is the record it gets.
void writeStylesPart(XmlSink& out, const StyleTable& styles, const WrittenStyles& written);

} // namespace QXlsx::detail
