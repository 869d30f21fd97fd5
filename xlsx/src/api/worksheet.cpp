#include "xlsxworksheet.h"

#include "model/cellaccess.h"
#include "model/formatprivate.h"
#include "model/numberformats.h"
#include "model/sheetdata.h"
#include "model/workbookdata.h"

#include <cmath>

namespace QXlsx {

namespace {

// Excel's own limits for a row height in points and a column width in characters.
constexpr double MaxRowHeight = 409.0;
constexpr double MaxColumnWidth = 255.0;
// A merge with a format formats every cell of its range; past this many cells only the
// cells already stored and the top left one are formatted, so that a whole-sheet merge
// does not cost gigabytes of blank cells.
constexpr qint64 MaxFormattedMergeCells = 1 << 20;

bool inGrid(int row, int column)
{
    return row >= 1 && row <= MaxRows && column >= 1 && column <= MaxColumns;
}

bool isNumberType(int type)
{
    switch (type) {
    case QMetaType::Int: case QMetaType::UInt: case QMetaType::LongLong:
    case QMetaType::ULongLong: case QMetaType::Double: case QMetaType::Float:
    case QMetaType::Short: case QMetaType::UShort: case QMetaType::Long:
    case QMetaType::ULong: case QMetaType::Char: case QMetaType::SChar: case QMetaType::UChar:
        return true;
    default:
        return false;
    }
}

// Text in ISO 8601 form. QDate::toString gives nothing for years past 9999, and counts
// no year 0: ISO calls the year before 1 "0000".
QString isoText(const QDate& date)
{
    const int year = date.year() < 0 ? date.year() + 1 : date.year();
    return QStringLiteral("%1%2-%3-%4")
        .arg(year < 0 ? QStringLiteral("-") : QString())
        .arg(qAbs(year), 4, 10, QLatin1Char('0'))
        .arg(date.month(), 2, 10, QLatin1Char('0'))
        .arg(date.day(), 2, 10, QLatin1Char('0'));
}

QString isoText(const QDateTime& dateTime)
{
    const QTime time = dateTime.time();
    return isoText(dateTime.date()) + QLatin1Char('T')
           + time.toString(time.msec() ? QStringLiteral("HH:mm:ss.zzz") : QStringLiteral("HH:mm:ss"));
}

// Stores a QDate, QDateTime or QTime in cell; returns the style with a date or time
// number format added where the value became a serial. A day Excel cannot show is
// stored as ISO text instead: its serial would read back as a time, as another day or
// as a plain number, while the text loses nothing.
quint32 storeDateTime(Cell& cell, const QVariant& value, detail::WorkbookData& book, quint32 style)
{
    using detail::CellAccess;
    const int type = value.userType();
    if (type == QMetaType::QTime) {
        const double serial = detail::toSerial(value.toTime());
        if (std::isnan(serial)) {
            CellAccess::setBlank(cell);
            return style;
        }
        CellAccess::setNumber(cell, serial);
        return book.styles.indexWithDateFormat(style, detail::DateKind::Time);
    }
    const bool withTime = type == QMetaType::QDateTime;
    const QDateTime dateTime = withTime ? value.toDateTime() : QDateTime();
    const QDate date = withTime ? dateTime.date() : value.toDate();
    const double serial = withTime ? detail::toSerial(dateTime, book.date1904) : detail::toSerial(date, book.date1904);
    // An invalid date stores no value, like a null variant.
    if (std::isnan(serial)) {
        CellAccess::setBlank(cell);
    } else if (!detail::hasDateSerial(date, book.date1904)) {
        CellAccess::setString(cell, book.strings.add(withTime ? isoText(dateTime) : isoText(date)));
    } else {
        CellAccess::setNumber(cell, serial);
        return book.styles.indexWithDateFormat(style, withTime ? detail::DateKind::DateTime : detail::DateKind::Date);
    }
    return style;
}

} // namespace

bool Worksheet::write(int row, int column, const QVariant& value, const Format& format)
{
    using detail::CellAccess;
    if (!inGrid(row, column))
        return false;
    detail::StyleTable& styles = m_book->styles;
    quint32 style = styles.indexOf(format);
    Cell& cell = m_data->cellFor(row, column);
    if (CellAccess::flags(cell) & detail::CellHasFormula)
        m_data->formulas.remove(detail::SheetData::formulaKey(row, column));
    CellAccess::setFlags(cell, 0);

    const int type = value.userType();
    // A QString is always text, whatever it looks like; it is taken from the variant
    // without a copy because this is the path of every text cell written.
    if (type == QMetaType::QString) {
        CellAccess::setString(cell, m_book->strings.add(*static_cast<const QString*>(value.constData())));
    } else if (isNumberType(type)) {
        const double number = value.toDouble();
        // A workbook has no way to store NaN or infinity as a number; Excel shows #NUM!
        // for a result it cannot represent.
        if (std::isfinite(number))
            CellAccess::setNumber(cell, number);
        else
            CellAccess::setError(cell, m_book->strings.add(u"#NUM!"));
    } else if (type == QMetaType::Bool) {
        CellAccess::setBoolean(cell, value.toBool());
    } else if (type == QMetaType::QDate || type == QMetaType::QDateTime || type == QMetaType::QTime) {
        style = storeDateTime(cell, value, *m_book, style);
    } else if (!value.isValid()) {
        CellAccess::setBlank(cell);
    } else {
        CellAccess::setString(cell, m_book->strings.add(value.toString()));
    }
    CellAccess::setStyle(cell, style);
    return true;
}

bool Worksheet::write(const CellReference& cell, const QVariant& value, const Format& format)
{
    return write(cell.row(), cell.column(), value, format);
}

QVariant Worksheet::read(int row, int column) const
{
    const Cell* cell = cellAt(row, column);
    if (!cell)
        return {};
    if (!cell->isDateTime())
        return cell->value();
    const double serial = detail::CellAccess::number(*cell);
    QDate date;
    QTime time;
    if (!detail::splitSerial(serial, m_book->date1904, &date, &time))
        return cell->value();
    // Only a date with a time of day needs a QDateTime, whose local time zone lookups
    // are by far the dearest part of reading a date column.
    if (serial >= 0 && serial < 1)
        return time;
    if (time == QTime(0, 0))
        return date;
    return cell->dateTime();
}

QVariant Worksheet::read(const CellReference& cell) const
{
    return read(cell.row(), cell.column());
}

Cell* Worksheet::cellAt(int row, int column) const
{
    if (!inGrid(row, column))
        return nullptr;
    return m_data->findCell(row, column);
}

Cell* Worksheet::cellAt(const CellReference& cell) const
{
    return cellAt(cell.row(), cell.column());
}

// Excel refuses a merge that overlaps another and has nothing to merge in a single cell.
bool Worksheet::mergeCells(const CellRange& range, const Format& format)
{
    if (!range.isValid() || (range.rowCount() == 1 && range.columnCount() == 1))
        return false;
    for (const CellRange& merged : qAsConst(m_data->merges)) {
        if (merged.intersects(range))
            return false;
    }
    m_data->merges.append(range);
    if (format.isEmpty())
        return true;
    // Excel formats every cell of a merged range, so that its borders and fill cover the
    // whole area; the values stay where they are.
    const quint32 style = m_book->styles.indexOf(format);
    const qint64 area = qint64(range.rowCount()) * range.columnCount();
    if (area > MaxFormattedMergeCells) {
        detail::CellAccess::setStyle(m_data->cellFor(range.firstRow(), range.firstColumn()), style);
        for (detail::RowRecord& row : m_data->rows) {
            if (row.row < range.firstRow() || row.row > range.lastRow())
                continue;
            for (Cell& cell : row.cells) {
                if (cell.column() >= range.firstColumn() && cell.column() <= range.lastColumn())
                    detail::CellAccess::setStyle(cell, style);
            }
        }
        return true;
    }
    for (int r = range.firstRow(); r <= range.lastRow(); ++r) {
        for (int c = range.firstColumn(); c <= range.lastColumn(); ++c)
            detail::CellAccess::setStyle(m_data->cellFor(r, c), style);
    }
    return true;
}

bool Worksheet::unmergeCells(const CellRange& range)
{
    return m_data->merges.removeOne(range);
}

QList<CellRange> Worksheet::mergedCells() const
{
    return m_data->merges;
}

// A height of 0 gives the row back the sheet's default height.
bool Worksheet::setRowHeight(int row, double height)
{
    return setRowHeight(row, row, height);
}

bool Worksheet::setRowHeight(int firstRow, int lastRow, double height)
{
    if (firstRow < 1 || lastRow > MaxRows || firstRow > lastRow || !(height >= 0)
        || height > MaxRowHeight)
        return false;
    for (int r = firstRow; r <= lastRow; ++r) {
        if (height > 0) {
            m_data->rowFor(r).height = height;
        } else if (detail::RowRecord* record = m_data->findRow(r)) {
            record->height = 0;
        }
    }
    return true;
}

double Worksheet::rowHeight(int row) const
{
    const detail::RowRecord* record = m_data->findRow(row);
    return record && record->height > 0 ? record->height : m_data->defaultRowHeight;
}

bool Worksheet::setColumnWidth(int column, double width)
{
    return setColumnWidth(column, column, width);
}

// A width of 0 gives the columns back the sheet's default width.
bool Worksheet::setColumnWidth(int firstColumn, int lastColumn, double width)
{
    if (firstColumn < 1 || lastColumn > MaxColumns || firstColumn > lastColumn || !(width >= 0)
        || width > MaxColumnWidth)
        return false;
    m_data->setColumnWidth(firstColumn, lastColumn, width);
    return true;
}

double Worksheet::columnWidth(int column) const
{
    const detail::ColumnRecord* record = m_data->findColumn(column);
    return record && record->width > 0 ? record->width : m_data->defaultColumnWidth;
}

CellRange Worksheet::dimension() const
{
    return m_data->dimension();
}

} // namespace QXlsx
