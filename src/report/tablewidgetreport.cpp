#include "vygisutil.h"

#include "report/reportsheet.h"
#include "workbook/conventions.h"

#include "xlsxdocument.h"

#include <QObject>
#include <QTableWidget>
#include <QTableWidgetItem>

namespace {

constexpr int ReportedColumns = 4;

// A row counts as ticked by its first column's check box alone. A row without an
// item there has no check box the user could have ticked.
bool isTicked(const QTableWidget& table, int row)
{
    const QTableWidgetItem* box = table.item(row, 0);
    return box && box->checkState() != Qt::Unchecked;
}

// An empty cell of the widget may have no item at all; it reads as the empty text
// the user sees there.
QString displayedText(const QTableWidget& table, int row, int column)
{
    const QTableWidgetItem* item = table.item(row, column);
    return item ? item->text() : QStringLiteral("");
}

} // namespace

bool VyExcelUtil::exportExcelByTableWidget(const QString& path, QTableWidget* table)
{
    if (!table)
        return false;

    QXlsx::Document document;
    const QXlsx::Format format = vygis::centredCellFormat();
    // The report's sheets share one look with the topology report, nine wide columns,
    // though only the first four are filled here.
    document.setColumnWidth(1, 9, 40.0);
    vygis::writeTranslatedHeader(document, 1,
                                 {QT_TRANSLATE_NOOP("QObject", "Standard description"),
                                  QT_TRANSLATE_NOOP("QObject", "Related field"),
                                  QT_TRANSLATE_NOOP("QObject", "Related parameter"),
                                  QT_TRANSLATE_NOOP("QObject", "Error description")},
                                 format);

    int outputRow = 2;
    for (int row = 0; row < table->rowCount() && outputRow <= QXlsx::MaxRows; ++row) {
        if (!isTicked(*table, row))
            continue;
        for (int column = 0; column < ReportedColumns; ++column)
            document.write(QXlsx::CellReference(outputRow, column + 1),
                           displayedText(*table, row, column), format);
        ++outputRow;
    }
    document.saveAs(path);
    return true;
}
