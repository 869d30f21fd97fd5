#include "stylespart.h"

#include "model/formatprivate.h"
#include "model/numberformats.h"
#include "model/stylenames.h"
#include "model/styletable.h"
#include "rawxml.h"
#include "stylelimit.h"
#include "xmlsink.h"

#include <QHash>
#include <QMap>

#include <vector>

namespace QXlsx::detail {

namespace {

constexpr std::initializer_list<const char*> StylesOrder = {
    "numFmts", "fonts", "fills", "borders", "cellStyleXfs", "cellXfs", "cellStyles", "dxfs",
    "tableStyles", "colors", "extLst"};
enum Rank { RankNumFmts, RankFonts, RankFills, RankBorders, RankCellStyleXfs, RankCellXfs,
            RankCellStyles };

template<size_t N>
const char* nameOf(const char* const (&names)[N], int value)
{
    return value >= 0 && size_t(value) < N ? names[value] : names[0];
}

QByteArray number(double value)
{
    return QByteArray::number(value, 'g', 15);
}

// <tag rgb="FFRRGGBB"/>, or the attributes of a theme or indexed colour as read.
QByteArray colorElement(const char* tag, const ColorSpec& color)
{
    if (!color.isSet())
        return QByteArray();
    QByteArray xml = QByteArray("<") + tag + ' ';
    if (!color.raw.isEmpty())
        xml += color.raw;
    else
        xml += "rgb=\"" + color.rgb.name(QColor::HexArgb).mid(1).toUpper().toLatin1() + '"';
    return xml + "/>";
}

QByteArray escapedAttribute(const QString& text)
{
    QByteArray bytes;
    XmlSink sink(bytes);
    sink.appendAttribute(text);
    sink.flush();
    return bytes;
}

// What a new font takes from the workbook's default font when a format leaves it unset.
struct DefaultFont
{
    QByteArray xml;
    QByteArray size = "11";
    QByteArray name = "Calibri";
    QByteArray family = "<family val=\"2\"/>";
    QByteArray scheme = "<scheme val=\"minor\"/>";

    explicit DefaultFont(const QByteArray& kept)
    {
        if (kept.isEmpty()) {
            xml = "<font><sz val=\"11\"/><color theme=\"1\"/><name val=\"Calibri\"/>"
                  "<family val=\"2\"/><scheme val=\"minor\"/></font>";
            return;
        }
        xml = kept;
        size = attributeValue(kept, "sz", "val");
        name = attributeValue(kept, "name", "val");
        family.clear();
        scheme.clear();
        for (const RawElement& e : splitElements(innerXml(kept))) {
            if (e.localName == "family")
                family = e.xml;
            else if (e.localName == "charset")
                family += e.xml;
            else if (e.localName == "scheme")
                scheme = e.xml;
        }
    }
};

// Font children in the order the format requires; the ones a Format does not model
// are taken from fontExtra and slotted in by name.
QByteArray fontElement(const FormatPrivate& f, const DefaultFont& base)
{
    QByteArray before;   // vertAlign, outline, shadow, condense, extend
    QByteArray after;    // family, charset, scheme and anything unknown
    for (const RawElement& e : splitElements(f.fontExtra)) {
        if (e.localName == "vertAlign" || e.localName == "outline" || e.localName == "shadow"
            || e.localName == "condense" || e.localName == "extend")
            before += e.xml;
        else
            after += e.xml;
    }
    if (f.fontName.isEmpty() && f.fontExtra.isEmpty())
        after = base.family + base.scheme;

    QByteArray xml = "<font>";
    if (f.bold)
        xml += "<b/>";
    if (f.italic)
        xml += "<i/>";
    if (f.strikeOut)
        xml += "<strike/>";
    xml += before;
    if (f.underline != Format::FontUnderlineNone)
        xml += QByteArray("<u val=\"") + nameOf(Underlines, f.underline) + "\"/>";
    const QByteArray size = f.fontSize > 0 ? number(f.fontSize) : base.size;
    if (!size.isEmpty())
        xml += "<sz val=\"" + size + "\"/>";
    xml += colorElement("color", f.fontColor);
    const QByteArray name = f.fontName.isEmpty() ? base.name : escapedAttribute(f.fontName);
    if (!name.isEmpty())
        xml += "<name val=\"" + name + "\"/>";
    return xml + after + "</font>";
}

bool setsFont(const FormatPrivate& f)
{
    return f.fontSize > 0 || !f.fontName.isEmpty() || f.fontColor.isSet() || f.bold || f.italic
           || f.strikeOut || f.underline != Format::FontUnderlineNone || !f.fontExtra.isEmpty();
}

QByteArray fillElement(const FormatPrivate& f)
{
    if (!f.fillRaw.isEmpty())
        return f.fillRaw;
    if (f.pattern == Format::PatternNone)
        return QByteArray();
    // A solid fill shows its foreground colour; a format given only a background colour
    // means that colour.
    ColorSpec fg = f.foreground;
    ColorSpec bg = f.background;
    if (f.pattern == Format::PatternSolid && !fg.isSet()) {
        fg = bg;
        bg = ColorSpec();
    }
    QByteArray xml = QByteArray("<fill><patternFill patternType=\"") + nameOf(Patterns, f.pattern) + '"';
    const QByteArray colors = colorElement("fgColor", fg) + colorElement("bgColor", bg);
    if (colors.isEmpty())
        return xml + "/></fill>";
    return xml + '>' + colors + "</patternFill></fill>";
}

QByteArray borderElement(const FormatPrivate& f)
{
    static const char* const sides[] = {"left", "right", "top", "bottom"};
    QByteArray xml = "<border>";
    bool any = !f.borderExtra.isEmpty();
    for (int side = LeftSide; side <= BottomSide; ++side) {
        const int style = f.borderStyle[side];
        if (style == Format::BorderNone) {
            xml += QByteArray("<") + sides[side] + "/>";
            continue;
        }
        any = true;
        xml += QByteArray("<") + sides[side] + " style=\"" + nameOf(BorderStyles, style) + '"';
        const QByteArray color = colorElement("color", f.borderColor[side]);
        xml += color.isEmpty() ? QByteArray("/>") : '>' + color + "</" + sides[side] + '>';
    }
    if (!any)
        return QByteArray();
    xml += f.borderExtra.contains("diagonal") ? f.borderExtra : QByteArray("<diagonal/>") + f.borderExtra;
    return xml + "</border>";
}

QByteArray alignmentElement(const FormatPrivate& f)
{
    QByteArray attributes;
    if (f.horizontal != Format::AlignHGeneral)
        attributes += QByteArray(" horizontal=\"") + nameOf(HorizontalAlignments, f.horizontal) + '"';
    if (f.vertical != Format::AlignBottom)
        attributes += QByteArray(" vertical=\"") + nameOf(VerticalAlignments, f.vertical) + '"';
    if (f.rotation != 0)
        attributes += " textRotation=\"" + QByteArray::number(f.rotation) + '"';
    if (f.wrap)
        attributes += " wrapText=\"1\"";
    if (f.indent != 0)
        attributes += " indent=\"" + QByteArray::number(f.indent) + '"';
    if (f.shrink)
        attributes += " shrinkToFit=\"1\"";
    return attributes.isEmpty() ? QByteArray() : "<alignment" + attributes + "/>";
}

QByteArray protectionElement(const FormatPrivate& f)
{
    if (f.locked && !f.hidden)
        return QByteArray();
    QByteArray xml = "<protection";
    if (!f.locked)
        xml += " locked=\"0\"";
    if (f.hidden)
        xml += " hidden=\"1\"";
    return xml + "/>";
}

// One table of distinct elements (fonts, fills or borders) in first-use order.
class ElementList
{
public:
    explicit ElementList(std::initializer_list<QByteArray> fixed)
    {
        for (const QByteArray& xml : fixed)
            indexOf(xml);
    }
    int indexOf(const QByteArray& xml)
    {
        const auto it = m_index.constFind(xml);
        if (it != m_index.constEnd())
            return *it;
        m_items.push_back(xml);
        m_index.insert(xml, int(m_items.size()) - 1);
        return int(m_items.size()) - 1;
    }
    void write(XmlSink& out, const char* tag) const
    {
        out.append(QByteArray("<") + tag + " count=\"" + QByteArray::number(int(m_items.size())) + "\">");
        for (const QByteArray& xml : m_items)
            out.append(xml);
        out.append(QByteArray("</") + tag + '>');
    }
    int size() const { return int(m_items.size()); }

private:
    std::vector<QByteArray> m_items;
    QHash<QByteArray, int> m_index;
};

struct Xf
{
    int numFmtId = 0;
    int fontId = 0;
    int fillId = 0;
    int borderId = 0;
    int xfId = 0;
    QByteArray alignment;
    QByteArray protection;
    QByteArray extraAttributes;
};

class StylesWriter
{
public:
    StylesWriter(XmlSink& out, const StyleTable& styles, const WrittenStyles& written)
        : m_out(out), m_styles(styles), m_written(written), m_defaultFont(styles.defaultFontXml),
          m_fonts({m_defaultFont.xml}),
          m_fills({"<fill><patternFill patternType=\"none\"/></fill>",
                   "<fill><patternFill patternType=\"gray125\"/></fill>"}),
          m_borders({"<border><left/><right/><top/><bottom/><diagonal/></border>"})
    {
        for (const RawElement& e : styles.extraElements) {
            if (e.localName == "cellStyleXfs")
                m_keptStyleXfs = &e;
            else if (e.localName == "cellStyles")
                m_keptCellStyles = &e;
        }
        m_styleXfCount = m_keptStyleXfs ? qMax(1, countElements(m_keptStyleXfs->xml, "xf")) : 1;
        collect();
    }

    void write();

private:
    void collect();
    int numberFormatId(const FormatPrivate& f);
    QByteArray fixedIds(const QByteArray& xml) const;
    void writeNumberFormats();
    void writeCellXfs();

    XmlSink& m_out;
    const StyleTable& m_styles;
    const WrittenStyles& m_written;
    DefaultFont m_defaultFont;
    ElementList m_fonts;
    ElementList m_fills;
    ElementList m_borders;
    QMap<int, QString> m_customFormats;     // id -> code, written in id order
    QHash<QString, int> m_customIds;
    std::vector<Xf> m_xfs;
    const RawElement* m_keptStyleXfs = nullptr;
    const RawElement* m_keptCellStyles = nullptr;
    int m_styleXfCount = 1;
};

int StylesWriter::numberFormatId(const FormatPrivate& f)
{
    if (f.numFmtCode.isEmpty())
        return f.numFmtId;
    const int builtin = builtinNumberFormatId(f.numFmtCode);
    if (builtin >= 0)
        return builtin;
    const auto known = m_customIds.constFind(f.numFmtCode);
    if (known != m_customIds.constEnd())
        return *known;
    // The id the file gave the code stays where it is free: other parts may name it.
    int id = f.numFmtId >= 164 && !m_customFormats.contains(f.numFmtId) ? f.numFmtId : 164;
    while (m_customFormats.contains(id))
        ++id;
    m_customFormats.insert(id, f.numFmtCode);
    m_customIds.insert(f.numFmtCode, id);
    return id;
}

void StylesWriter::collect()
{
    const quint32 count = m_written.count();
    m_xfs.reserve(count);
    for (quint32 i = 0; i < count; ++i) {
        const FormatPrivate& f = FormatPrivate::of(m_written.format(i));
        Xf xf;
        xf.numFmtId = numberFormatId(f);
        if (setsFont(f))
            xf.fontId = m_fonts.indexOf(fontElement(f, m_defaultFont));
        const QByteArray fill = fillElement(f);
        if (!fill.isEmpty())
            xf.fillId = m_fills.indexOf(fill);
        const QByteArray border = borderElement(f);
        if (!border.isEmpty())
            xf.borderId = m_borders.indexOf(border);
        xf.xfId = f.xfId >= 0 && f.xfId < m_styleXfCount ? f.xfId : 0;
        xf.alignment = alignmentElement(f);
        xf.protection = protectionElement(f);
        if (!f.xfExtra.isEmpty())
            xf.extraAttributes = withoutAttributes(
                f.xfExtra, {"numFmtId", "fontId", "fillId", "borderId", "xfId", "applyNumberFormat",
                            "applyFont", "applyFill", "applyBorder", "applyAlignment",
                            "applyProtection"});
        m_xfs.push_back(xf);
    }
}

// Named styles kept from the file refer to fonts, fills and borders by position in
// lists that are rebuilt here; ids past the new lists would make the file invalid.
QByteArray StylesWriter::fixedIds(const QByteArray& xml) const
{
    const auto clamp = [](int limit) {
        return [limit](const QByteArray& v) { return v.toInt() < limit ? v : QByteArray("0"); };
    };
    QByteArray fixed = mapAttribute(xml, "fontId", clamp(m_fonts.size()));
    fixed = mapAttribute(fixed, "fillId", clamp(m_fills.size()));
    fixed = mapAttribute(fixed, "borderId", clamp(m_borders.size()));
    fixed = mapAttribute(fixed, "xfId", clamp(m_styleXfCount));
    return mapAttribute(fixed, "numFmtId", [this](const QByteArray& v) {
        return v.toInt() < 164 || m_customFormats.contains(v.toInt()) ? v : QByteArray("0");
    });
}

void StylesWriter::writeNumberFormats()
{
    if (m_customFormats.isEmpty())
        return;
    m_out.literal("<numFmts count=\"");
    m_out.appendUInt(quint64(m_customFormats.size()));
    m_out.literal("\">");
    for (auto it = m_customFormats.constBegin(); it != m_customFormats.constEnd(); ++it) {
        m_out.literal("<numFmt numFmtId=\"");
        m_out.appendUInt(quint64(it.key()));
        m_out.literal("\" formatCode=\"");
        m_out.appendAttribute(it.value());
        m_out.literal("\"/>");
    }
    m_out.literal("</numFmts>");
}

void StylesWriter::writeCellXfs()
{
    m_out.literal("<cellXfs count=\"");
    m_out.appendUInt(m_xfs.size());
    m_out.literal("\">");
    for (const Xf& xf : m_xfs) {
        QByteArray tag = "<xf numFmtId=\"" + QByteArray::number(xf.numFmtId) + "\" fontId=\""
                         + QByteArray::number(xf.fontId) + "\" fillId=\"" + QByteArray::number(xf.fillId)
                         + "\" borderId=\"" + QByteArray::number(xf.borderId) + "\" xfId=\""
                         + QByteArray::number(xf.xfId) + '"';
        if (xf.numFmtId != 0)
            tag += " applyNumberFormat=\"1\"";
        if (xf.fontId != 0)
            tag += " applyFont=\"1\"";
        if (xf.fillId != 0)
            tag += " applyFill=\"1\"";
        if (xf.borderId != 0)
            tag += " applyBorder=\"1\"";
        if (!xf.alignment.isEmpty())
            tag += " applyAlignment=\"1\"";
        if (!xf.protection.isEmpty())
            tag += " applyProtection=\"1\"";
        if (!xf.extraAttributes.isEmpty())
            tag += ' ' + xf.extraAttributes;
        if (xf.alignment.isEmpty() && xf.protection.isEmpty())
            m_out.append(tag + "/>");
        else
            m_out.append(tag + '>' + xf.alignment + xf.protection + "</xf>");
    }
    m_out.literal("</cellXfs>");
}

void StylesWriter::write()
{
    m_out.literal("<?xml version=\"1.0\" encoding=\"UTF-8\" standalone=\"yes\"?>\n"
                  "<styleSheet xmlns=\"http://schemas.openxmlformats.org/spreadsheetml/2006/main\">");
    writeInSchemaOrder(
        StylesOrder, m_styles.extraElements,
        [&](int rank) {
            switch (rank) {
            case RankNumFmts: writeNumberFormats(); break;
            case RankFonts: m_fonts.write(m_out, "fonts"); break;
            case RankFills: m_fills.write(m_out, "fills"); break;
            case RankBorders: m_borders.write(m_out, "borders"); break;
            case RankCellStyleXfs:
                if (!m_keptStyleXfs)
                    m_out.literal("<cellStyleXfs count=\"1\"><xf numFmtId=\"0\" fontId=\"0\""
                                  " fillId=\"0\" borderId=\"0\"/></cellStyleXfs>");
                break;
            case RankCellXfs: writeCellXfs(); break;
            case RankCellStyles:
                if (!m_keptCellStyles)
                    m_out.literal("<cellStyles count=\"1\"><cellStyle name=\"Normal\" xfId=\"0\""
                                  " builtinId=\"0\"/></cellStyles>");
                break;
            default: break;
            }
        },
        [&](const RawElement& e) {
            const int rank = schemaRank(StylesOrder, e.localName);
            if (rank == RankCellStyleXfs || rank == RankCellStyles)
                m_out.append(fixedIds(e.xml));
            else if (rank > RankCellStyles || rank < 0)
                m_out.append(e.xml);
        });
    m_out.literal("</styleSheet>");
}

} // namespace

void writeStylesPart(XmlSink& out, const StyleTable& styles, const WrittenStyles& written)
{
    StylesWriter(out, styles, written).write();
}

} // namespace QXlsx::detail
