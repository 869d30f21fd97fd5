#include "vygisutil.h"

#include "report/reportsheet.h"
#include "common/fixedpointtext.h"
#include "workbook/conventions.h"

#include "tsraster.h"
#include "xlsxdocument.h"

#include <QObject>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <limits>
#include <system_error>
#include <utility>

namespace {

using VyObjects::TsPixelBlock;
using VyObjects::TsRasterProps;
using VyObjects::TsRect;
using VyObjects::TsRefPtr;

// The cell that a ground offset from the raster's left (or top) edge falls in. A point
// on the far edge of the extent would land one past the last cell, where a raster has
// no data; it reads the last cell instead, which that edge closes. Partial cells
// thinner than a millionth of a cell are rounding noise in the extent, not cells.
int cellIndex(double offset, double cellSize, double span)
{
    const double size = std::fabs(cellSize);
    // A raster without a cell size has only its first cell to give.
    if (!(size > 0.0))
        return 0;
    double index = std::trunc(offset / size);
    const double lastCell = std::ceil(span / size - 1e-6) - 1.0;
    if (index > lastCell)
        index = lastCell;
    // NaN, from an endless extent, fails this test too.
    if (!(index >= 0.0))
        return 0;
    return index < std::numeric_limits<int>::max() ? static_cast<int>(index)
                                                   : std::numeric_limits<int>::max();
}

char* appendFixed4(char* out, char* end, double value)
{
    return vygis::appendFixedPointText(out, end, value, 4);
}

QString fixed4Text(double value)
{
    char digits[48];
    const char* last = appendFixed4(digits, digits + sizeof digits, value);
    return last ? QString::fromLatin1(digits, static_cast<int>(last - digits))
                : QString::number(value, 'f', 4);
}

QString coordinateText(double x, double y)
{
    char text[96];
    char* const end = text + sizeof text;
    char* last = appendFixed4(text, end, x);
    if (last && last < end) {
        *last++ = ',';
        last = appendFixed4(last, end, y);
    }
    if (!last)
        return QString::number(x, 'f', 4) + QLatin1Char(',') + QString::number(y, 'f', 4);
    return QString::fromLatin1(text, static_cast<int>(last - text));
}

// The number QString::toDouble reads from text, 0 for a text that is not one. Plain
// decimals ("512345.125", "-12"), which points nearly always are, are read directly and
// rounded as Qt rounds them; anything else (blanks, signs, exponents, other scripts'
// digits) is left to Qt, whose road through its locale code costs more than the cells.
double numberOf(const QString& text)
{
    char digits[32];
    const int length = text.size();
    if (length == 0 || length >= static_cast<int>(sizeof digits))
        return text.toDouble();
    for (int i = 0; i < length; ++i) {
        const char16_t unit = text.at(i).unicode();
        if (!((unit >= u'0' && unit <= u'9') || unit == u'.' || (unit == u'-' && i == 0)))
            return text.toDouble();
        digits[i] = static_cast<char>(unit);
    }
    double value = 0.0;
    const auto [end, error] = std::from_chars(digits, digits + length, value);
    return error == std::errc() && end == digits + length ? value : text.toDouble();
}

// Reads single cells of an elevation model. One pixel block serves every point: the
// raster refills it on each read, and a block per point would allocate in the loop.
class ElevationModel
{
public:
    explicit ElevationModel(const TsRasterProps& raster)
        : m_raster(raster), m_extent(raster.GetExtent())
    {
    }

    // Edges belong to the extent.
    bool covers(double x, double y) const
    {
        return m_extent.minX <= x && x <= m_extent.maxX && m_extent.minY <= y
            && y <= m_extent.maxY;
    }

    // The elevation of the cell under a covered point; false when the raster gives no
    // block to read it into.
    bool elevationAt(double x, double y, double& elevation)
    {
        const int column = cellIndex(x - m_extent.minX, m_raster.GetPixelSizeX(),
                                     m_extent.maxX - m_extent.minX);
        const int row = cellIndex(m_extent.maxY - y, m_raster.GetPixelSizeY(),
                                  m_extent.maxY - m_extent.minY);
        if (!m_block)
            m_block = m_raster.CreatePixelBlock(VyObjects::TsSize(1, 1));
        if (!m_block)
            return false;
        m_raster.ReadPixelBlock(VyObjects::TsPoint(column, row), m_block.get(), 0);
        elevation = m_block->GetPixelValue(1, 0, 0);
        return true;
    }

private:
    const TsRasterProps& m_raster;
    TsRect m_extent;
    TsRefPtr<TsPixelBlock> m_block;
};

// The output sheet: rows in list order, points numbered within their heading's group,
// and columns B and C as wide as their longest elevation entry.
class ElevationSheet
{
public:
    ElevationSheet(QXlsx::Document& document, const QXlsx::Format& format)
        : m_document(document), m_format(format)
    {
    }

    void addHeading(const QString& text)
    {
        m_document.write(m_row++, 1, text, m_format);
        m_pointNumber = 1;
    }

    void addElevation(double x, double y, double elevation)
    {
        // No data and cells below sea level read as ground level; NaN and -0 as well.
        if (!(elevation > 0.0))
            elevation = 0.0;
        const QString coordinate = coordinateText(x, y);
        const QString height = fixed4Text(elevation);
        m_longestCoordinate = std::max(m_longestCoordinate, coordinate.size());
        m_longestElevation = std::max(m_longestElevation, height.size());
        m_document.write(m_row, 1, QString::number(m_pointNumber++), m_format);
        m_document.write(m_row, 2, coordinate, m_format);
        m_document.write(m_row++, 3, height, m_format);
    }

    // Once, when every row is written: only the longest figures count, and a sheet
    // without any keeps the default widths.
    void setColumnWidths()
    {
        if (m_longestCoordinate == 0)
            return;
        m_document.setColumnWidth(2, m_longestCoordinate + 10.0);
        m_document.setColumnWidth(3, m_longestElevation + 10.0);
    }

    // Messages do not widen the columns: they are sized for the figures.
    void addUnknownElevation(double x, double y)
    {
        m_document.write(m_row, 1, QString::number(m_pointNumber++), m_format);
        m_document.write(m_row, 2, coordinateText(x, y), m_format);
        m_document.write(m_row++, 3, QObject::tr("Not within the range of Dem data!"),
                         m_format);
    }

private:
    QXlsx::Document& m_document;
    const QXlsx::Format& m_format;
    int m_row = 2;
    int m_pointNumber = 1;
    int m_longestCoordinate = 0;
    int m_longestElevation = 0;
};

} // namespace

bool VyExcelUtil::saveQueryElevationOutputFile(const QString& path, QStringList points,
                                               VyObjects::TsRefPtr<VyObjects::TsRasterProps> raster)
{
    // Moved into a local so that the caller's reference is given back before this
    // function returns, on every path.
    const TsRefPtr<TsRasterProps> dem = std::move(raster);
    const int pairCount = (points.size() + 1) / 2;
    if (!dem || pairCount > QXlsx::MaxRows - 1)
        return false;

    QXlsx::Document document;
    const QXlsx::Format format = vygis::centredCellFormat();
    vygis::writeTranslatedHeader(document, 2,
                                 {QT_TRANSLATE_NOOP("QObject", "XYCoordinate"),
                                  QT_TRANSLATE_NOOP("QObject", "Elevation info")},
                                 format);

    ElevationModel model(*dem);
    ElevationSheet sheet(document, format);
    for (int k = 0; k < pairCount; ++k) {
        const QString& xText = points.at(2 * k);
        // An unpaired last entry lacks its partner, which makes it a heading: its text
        // stays in the workbook rather than vanish.
        const QString yText = 2 * k + 1 < points.size() ? points.at(2 * k + 1) : QString();
        if (xText.isEmpty() || yText.isEmpty()) {
            sheet.addHeading(xText + yText);
            continue;
        }
        const double x = numberOf(xText);
        const double y = numberOf(yText);
        double elevation = 0.0;
        if (model.covers(x, y) && model.elevationAt(x, y, elevation))
            sheet.addElevation(x, y, elevation);
        else
            sheet.addUnknownElevation(x, y);
    }
    sheet.setColumnWidths();
    return document.saveAs(path);
}
