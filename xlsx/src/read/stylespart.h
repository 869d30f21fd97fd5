#pragma once

#include "model/formatprivate.h"
#include "read/xmlreader.h"

#include <QHash>
#include <QString>

#include <vector>

namespace QXlsx::detail {

class StyleTable;

// Reads styles.xml into the style table: every cell format (<xf> of cellXfs) becomes a
// Format appended in file order, so that the s index of a cell names the same format
// in the table as in the file. What the table does not model (named styles,
// differential formats, table styles, colours, ...) is kept whole.
class StylesHandler : public XmlHandler
{
public:
    explicit StylesHandler(StyleTable& table) : m_table(table) {}

    void startElement(XmlReader& reader, std::string_view name, const XmlAttributes& attributes) override;
    void endElement(XmlReader& reader, std::string_view name) override;
    void captured(XmlReader& reader, RawElement&& element) override;

    // The table index of each of the file's cell formats, in file order.
    std::vector<quint32> takeIndexes() { return std::move(m_indexes); }

private:
    struct Font
    {
        double size = 0;
        QString name;
        ColorSpec color;
        bool bold = false;
        bool italic = false;
        bool strikeOut = false;
        quint8 underline = Format::FontUnderlineNone;
        QByteArray extra;
    };
    struct Fill
    {
        quint8 pattern = Format::PatternNone;
        ColorSpec foreground;
        ColorSpec background;
        QByteArray gradient;
    };
    struct Border
    {
        quint8 style[4] = {0, 0, 0, 0};
        ColorSpec color[4];
        QByteArray extra;
    };
    enum class Section { None, NumFmts, Fonts, Fills, Borders, CellXfs };

    void startFontChild(std::string_view name, const XmlAttributes& attributes);
    void startXf(const XmlAttributes& attributes);
    void applyFont(FormatPrivate& format, const Font& font) const;

    StyleTable& m_table;
    Section m_section = Section::None;
    QHash<int, QString> m_numberFormats;
    std::vector<Font> m_fonts;
    std::vector<Fill> m_fills;
    std::vector<Border> m_borders;
    int m_borderSide = -1;      // the side of the border being read, or -1
    bool m_inXf = false;
    Format m_xf;
    std::vector<quint32> m_indexes;
};

} // namespace QXlsx::detail
