#include "read/stylespart.h"

#include "model/numberformats.h"
#include "model/stylenames.h"
#include "model/styletable.h"
#include "read/workbookpart.h"

#include <cstdlib>
#include <cstring>

namespace QXlsx::detail {

namespace {

// Far above what any spreadsheet program allows (64,000), low enough that a hostile
// file cannot grow the table without end.
constexpr size_t MaxCellFormats = 1 << 18;

// Looks a name up in a list of names laid out in enum order; fallback if absent.
template <size_t N>
quint8 enumValue(const char* value, const char* const (&names)[N], quint8 fallback)
{
    if (!value)
        return fallback;
    for (size_t i = 0; i < N; ++i)
        if (std::strcmp(value, names[i]) == 0)
            return quint8(i);
    return fallback;
}

int intValue(const char* value, int fallback = 0)
{
    return value ? std::atoi(value) : fallback;
}

// An element such as <b/> is on unless its val says otherwise.
bool flagValue(const XmlAttributes& attributes)
{
    const char* value = attributes.value("val");
    return !value || isTrue(value);
}

// An RGB colour becomes a QColor; theme, indexed and automatic colours (and tints)
// keep their attributes as read, since QColor cannot say what they mean.
ColorSpec colorSpec(const XmlAttributes& attributes)
{
    ColorSpec color;
    const char** list = attributes.list();
    const char* rgb = attributes.value("rgb");
    if (rgb && list[0] && !list[2]) {
        // Spreadsheet programs ignore the alpha byte (openpyxl writes 00 for opaque
        // colours), so every colour read is opaque.
        const uint value = uint(std::strtoul(rgb, nullptr, 16));
        color.rgb = QColor::fromRgb(value | 0xFF000000u);
        return color;
    }
    for (const char** a = list; *a; a += 2) {
        if (!color.raw.isEmpty())
            color.raw.append(' ');
        color.raw.append(a[0]).append("=\"");
        appendEscaped(color.raw, a[1], true);
        color.raw.append('"');
    }
    return color;
}

int borderSide(std::string_view name)
{
    if (name == "left" || name == "start") return LeftSide;
    if (name == "right" || name == "end") return RightSide;
    if (name == "top") return TopSide;
    if (name == "bottom") return BottomSide;
    return -1;
}

} // namespace

void StylesHandler::startElement(XmlReader& reader, std::string_view name, const XmlAttributes& attributes)
{
    const int depth = reader.depth();
    if (depth == 1) {
        // The file's records replace the table's, from index 0 on.
        m_table.clear();
        return;
    }
    if (depth == 2) {
        if (name == "numFmts") m_section = Section::NumFmts;
        else if (name == "fonts") m_section = Section::Fonts;
        else if (name == "fills") m_section = Section::Fills;
        else if (name == "borders") m_section = Section::Borders;
        else if (name == "cellXfs") m_section = Section::CellXfs;
        else reader.captureElement();
        return;
    }
    switch (m_section) {
    case Section::NumFmts:
        if (name == "numFmt" && attributes.value("numFmtId"))
            m_numberFormats.insert(intValue(attributes.value("numFmtId")),
                                   QString::fromUtf8(attributes.value("formatCode")));
        break;
    case Section::Fonts:
        if (depth == 3) {
            m_fonts.emplace_back();
            // The first font is the workbook's default; the table keeps it whole.
            if (m_fonts.size() == 1)
                reader.captureElement(true);
        } else if (depth == 4) {
            startFontChild(name, attributes);
        }
        break;
    case Section::Fills:
        if (depth == 3) {
            m_fills.emplace_back();
        } else if (m_fills.empty()) {
            break;
        } else if (name == "patternFill") {
            m_fills.back().pattern = enumValue(attributes.value("patternType"), Patterns, Format::PatternNone);
        } else if (name == "fgColor") {
            m_fills.back().foreground = colorSpec(attributes);
        } else if (name == "bgColor") {
            m_fills.back().background = colorSpec(attributes);
        } else if (name == "gradientFill") {
            reader.captureElement();
        }
        break;
    case Section::Borders:
        if (depth == 3) {
            m_borders.emplace_back();
        } else if (m_borders.empty()) {
            break;
        } else if (depth == 4) {
            m_borderSide = borderSide(name);
            if (m_borderSide >= 0)
                m_borders.back().style[m_borderSide] = enumValue(attributes.value("style"), BorderStyles, 0);
            else
                reader.captureElement();
        } else if (depth == 5 && name == "color" && m_borderSide >= 0) {
            m_borders.back().color[m_borderSide] = colorSpec(attributes);
        }
        break;
    case Section::CellXfs:
        if (depth == 3 && name == "xf") {
            startXf(attributes);
        } else if (m_inXf && name == "alignment") {
            FormatPrivate& f = FormatPrivate::edit(m_xf);
            f.horizontal = enumValue(attributes.value("horizontal"), HorizontalAlignments, Format::AlignHGeneral);
            f.vertical = enumValue(attributes.value("vertical"), VerticalAlignments, Format::AlignBottom);
            f.wrap = isTrue(attributes.value("wrapText"));
            f.shrink = isTrue(attributes.value("shrinkToFit"));
            f.rotation = qint16(qBound(0, intValue(attributes.value("textRotation")), 255));
            f.indent = qint16(qBound(0, intValue(attributes.value("indent")), 255));
        } else if (m_inXf && name == "protection") {
            FormatPrivate& f = FormatPrivate::edit(m_xf);
            if (const char* locked = attributes.value("locked"))
                f.locked = isTrue(locked);
            f.hidden = isTrue(attributes.value("hidden"));
        }
        break;
    case Section::None:
        break;
    }
}

void StylesHandler::startFontChild(std::string_view name, const XmlAttributes& attributes)
{
    Font& font = m_fonts.back();
    if (name == "b") font.bold = flagValue(attributes);
    else if (name == "i") font.italic = flagValue(attributes);
    else if (name == "strike") font.strikeOut = flagValue(attributes);
    else if (name == "u") font.underline = enumValue(attributes.value("val"), Underlines, Format::FontUnderlineSingle);
    else if (name == "sz") font.size = std::atof(attributes.value("val") ? attributes.value("val") : "0");
    else if (name == "name") font.name = QString::fromUtf8(attributes.value("val"));
    else if (name == "color") font.color = colorSpec(attributes);
    else {
        // family, scheme, charset, vertAlign, ... are kept as read (not for the first
        // font, which is kept whole anyway).
        QByteArray& extra = font.extra;
        extra.append('<').append(name.data(), int(name.size()));
        for (const char** a = attributes.list(); *a; a += 2) {
            extra.append(' ').append(a[0]).append("=\"");
            appendEscaped(extra, a[1], true);
            extra.append('"');
        }
        extra.append("/>");
    }
}

void StylesHandler::startXf(const XmlAttributes& attributes)
{
    m_inXf = true;
    m_xf = Format();
    FormatPrivate& f = FormatPrivate::edit(m_xf);

    const int numFmtId = intValue(attributes.value("numFmtId"));
    const auto custom = m_numberFormats.constFind(numFmtId);
    if (custom != m_numberFormats.constEnd()) {
        f.setNumberFormatCode(*custom);
        if (!f.numFmtCode.isEmpty())
            f.numFmtId = numFmtId;
    } else if (numFmtId > 0 && numFmtId < 164) {
        f.setNumberFormatId(numFmtId);
    }

    // Index 0 of fonts is the default font, which a format leaves unset.
    const int fontId = intValue(attributes.value("fontId"));
    if (fontId > 0 && size_t(fontId) < m_fonts.size())
        applyFont(f, m_fonts[size_t(fontId)]);

    const int fillId = intValue(attributes.value("fillId"));
    if (fillId > 0 && size_t(fillId) < m_fills.size()) {
        const Fill& fill = m_fills[size_t(fillId)];
        f.pattern = fill.pattern;
        f.foreground = fill.foreground;
        f.background = fill.background;
        f.fillRaw = fill.gradient;
    }

    const int borderId = intValue(attributes.value("borderId"));
    if (borderId > 0 && size_t(borderId) < m_borders.size()) {
        const Border& border = m_borders[size_t(borderId)];
        for (int side = 0; side < 4; ++side) {
            f.borderStyle[side] = border.style[side];
            f.borderColor[side] = border.color[side];
        }
        f.borderExtra = border.extra;
    }

    f.xfId = qMax(0, intValue(attributes.value("xfId")));
    for (const char* extra : {"quotePrefix", "pivotButton"}) {
        if (const char* value = attributes.value(extra))
            f.xfExtra.append(' ').append(extra).append("=\"").append(value).append('"');
    }
}

void StylesHandler::applyFont(FormatPrivate& format, const Font& font) const
{
    format.fontSize = font.size;
    format.fontName = font.name;
    format.fontColor = font.color;
    format.bold = font.bold;
    format.italic = font.italic;
    format.strikeOut = font.strikeOut;
    format.underline = font.underline;
    format.fontExtra = font.extra;
}

void StylesHandler::endElement(XmlReader& reader, std::string_view name)
{
    const int depth = reader.depth();
    if (depth == 2) {
        m_section = Section::None;
    } else if (m_section == Section::CellXfs && depth == 3 && m_inXf) {
        m_inXf = false;
        if (m_indexes.size() < MaxCellFormats)
            m_indexes.push_back(m_table.append(m_xf));
    } else if (m_section == Section::Borders && depth == 4) {
        m_borderSide = -1;
    }
    (void)name;
}

void StylesHandler::captured(XmlReader& reader, RawElement&& element)
{
    if (reader.depth() == 2) {
        m_table.extraElements.push_back(std::move(element));
    } else if (m_section == Section::Fonts) {
        m_table.defaultFontXml = element.xml;
    } else if (m_section == Section::Fills && !m_fills.empty()) {
        m_fills.back().gradient = element.xml;
    } else if (m_section == Section::Borders && !m_borders.empty()) {
        m_borders.back().extra.append(element.xml);
    }
}

} // namespace QXlsx::detail
