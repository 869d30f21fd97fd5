#include "vygisutil.h"

#include "xlsxdocument.h"
#include "xlsxworksheet.h"

#include <QTableWidget>

namespace {

// Columns A to D of the sheet go to widget columns 0 to 3.
constexpr int ImportedColumns = 4;

// The text a cell shows in the widget. False for a date-time in the year 1899, which
// is what a time of day alone (or a blank serial) becomes under the 1900 date system:
// such a cell is no date the user typed.
bool widgetText(const QXlsx::Cell& cell, QString& text)
{
    if (cell.isDateTime()) {
        const QDateTime dateTime = cell.dateTime();
        if (dateTime.date().year() == 1899)
            return false;
        text = dateTime.toString(QStringLiteral("yyyy/MM/dd hh:mm"));
        return true;
    }
    text = cell.value().toString();
    return true;
}

// Switches a sorting widget off while rows are filled in and back on afterwards: with
// sorting on, setting the sort column's item moves the row at once, and the row's
// remaining items would land in another row.
class SortingPause
{
public:
    explicit SortingPause(QTableWidget& table)
        : m_table(table), m_wasSorting(table.isSortingEnabled())
    {
        if (m_wasSorting)
            m_table.setSortingEnabled(false);
    }
    ~SortingPause()
    {
        if (m_wasSorting)
            m_table.setSortingEnabled(true);
    }
    SortingPause(const SortingPause&) = delete;
    SortingPause& operator=(const SortingPause&) = delete;

private:
    QTableWidget& m_table;
    bool m_wasSorting;
};

// Appends sheet row `row` to the widget; the widget is given items only for the columns
// it has, so none is created that it would not take over.
void appendRow(QTableWidget& table, const QXlsx::Worksheet& sheet, int row, const QString& key)
{
    const int widgetRow = table.rowCount();
    const int widgetColumns = qMin(table.columnCount(), ImportedColumns);
    table.setRowCount(widgetRow + 1);
    if (widgetColumns > 0)
        table.setItem(widgetRow, 0, new QTableWidgetItem(key));
    for (int column = 2; column <= widgetColumns; ++column) {
        const QXlsx::Cell* cell = sheet.cellAt(row, column);
        if (!cell)
            continue;
        QString text;
        if (!widgetText(*cell, text))
            return;
        table.setItem(widgetRow, column - 1, new QTableWidgetItem(text));
    }
}

} // namespace

bool VyExcelUtil::importExcelToTableWidget(const QString& path, QMap<QString, int>& keys,
                                           QTableWidget* table)
{
    if (!table)
        return true;
    const QXlsx::Document document(path);
    const QXlsx::Worksheet* sheet = document.currentWorksheet();
    if (!sheet)
        return true;

    const SortingPause pause(*table);
    const int lastRow = sheet->dimension().lastRow();
    for (int row = 2; row <= lastRow; ++row) {
        const QXlsx::Cell* first = sheet->cellAt(row, 1);
        QString key;
        if (first && !widgetText(*first, key))
            continue;
        if (keys.contains(key))
            appendRow(*table, *sheet, row, key);
    }
    return true;
}
