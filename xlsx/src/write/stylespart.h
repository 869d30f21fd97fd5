#pragma once

namespace QXlsx::detail {

class StyleTable;
class XmlSink;

// The styles part: number formats, fonts, fills and borders each written once however
// many formats share them, and one cell format record per style index of the table, so
// that the style index a cell holds is the record it gets.
void writeStylesPart(XmlSink& out, const StyleTable& styles);

} // namespace QXlsx::detail
