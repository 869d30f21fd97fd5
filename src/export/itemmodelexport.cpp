#include "vygisutil.h"
#include "workbook/conventions.h"

#include "xlsxdocument.h"

#include <QAbstractItemModel>

#include <vector>

namespace {

// The model columns that are written, in model order; the k-th goes to sheet column k + 1.
std::vector<int> exportedColumns(int columnCount, const QSet<int>& excludedColumns)
{
    std::vector<int> columns;
    columns.reserve(static_cast<std::size_t>(columnCount));
    for (int column = 0; column < columnCount; ++column) {
        if (!excludedColumns.contains(column))
            columns.push_back(column);
    }
    return columns;
}

} // namespace

bool VyExcelUtil::export2Excel(const QString& title, const QString& path,
                               QAbstractItemModel* model, const QSet<int>& excludedColumns)
{
    if (path.isEmpty() || !model)
        return false;

    QXlsx::Document document;
    const int rowCount = model->rowCount(QModelIndex());
    const int columnCount = model->columnCount(QModelIndex());
    if (rowCount <= 0 || columnCount <= 0)
        return false;
    // The row count is known up front, so a model that cannot fit is refused before any
    // work rather than cut short.
    if (rowCount > QXlsx::MaxRows - 2)
        return false;
    const std::vector<int> columns = exportedColumns(columnCount, excludedColumns);
    if (columns.size() > static_cast<std::size_t>(QXlsx::MaxColumns))
        return false;

    // The merge width counts the excluded entries, not the columns written: a stray index
    // in the set narrows the title while every model column is still written.
    vygis::writeTitleRow(document, title, columnCount - excludedColumns.size());

    const QXlsx::Format header = vygis::greyHeaderFormat();
    for (std::size_t k = 0; k < columns.size(); ++k) {
        document.write(2, static_cast<int>(k) + 1,
                       model->headerData(columns[k], Qt::Horizontal, Qt::DisplayRole), header);
    }

    const QXlsx::Format centred = vygis::centredCellFormat();
    const auto writeRows = [&] {
        for (int row = 0; row < rowCount; ++row) {
            for (std::size_t k = 0; k < columns.size(); ++k) {
                const QModelIndex index = model->index(row, columns[k], QModelIndex());
                document.write(row + 3, static_cast<int>(k) + 1, index.data(Qt::DisplayRole),
                               centred);
            }
        }
    };
    return vygis::writeRowsAndSave(document, path, writeRows);
}
