#include "vygisutil.h"

#include "tsqtext.h"
#include "tssde.h"
#include "vygiscore.h"
#include "xlsxdocument.h"
#include "xlsxworksheet.h"

#include <QHash>
#include <QMessageBox>
#include <QObject>
#include <QPushButton>

#include <vector>

using namespace VyObjects;

namespace {

QString cellText(const QXlsx::Worksheet& sheet, int row, int column)
{
    return sheet.read(row, column).toString();
}

// Headers are compared trimmed and upper case, and a bracketed note such as "(text)"
// is cut off; what stands before the bracket is deliberately not trimmed again.
QString normalisedHeader(const QXlsx::Worksheet& sheet, int row, int column)
{
    QString header = cellText(sheet, row, column).trimmed().toUpper();
    const int bracket = header.indexOf(QLatin1Char('('));
    if (bracket >= 0)
        header.truncate(bracket);
    return header;
}

// A workbook column whose values go to a field of the layer.
struct JoinedColumn
{
    int column;
    TsString field;
};

// Where the workbook's headers stand and what each column joins into.
struct WorkbookIndex
{
    int keyColumn = 0;
    int headerRow = 0;
    // Hash rather than ordered map: the index is only looked up, 100,000 times and more
    // in a large join, and a later row with the same key replaces an earlier one either way.
    QHash<QString, int> rowByKey;
    std::vector<JoinedColumn> columns;
};

// Finds the row (1 or 2) whose headers include keyName; false when neither does.
bool findHeaderRow(const QXlsx::Worksheet& sheet, int lastColumn, const QString& keyName,
                   WorkbookIndex& index)
{
    for (int row = 1; row <= 2; ++row) {
        // The last column with the header wins, as it does for data columns.
        for (int column = 1; column <= lastColumn; ++column) {
            if (normalisedHeader(sheet, row, column) == keyName)
                index.keyColumn = column;
        }
        if (index.keyColumn > 0) {
            index.headerRow = row;
            return true;
        }
    }
    return false;
}

void indexKeys(const QXlsx::Worksheet& sheet, int lastRow, WorkbookIndex& index)
{
    index.rowByKey.reserve(qMax(0, lastRow - index.headerRow));
    for (int row = index.headerRow + 1; row <= lastRow; ++row)
        index.rowByKey.insert(cellText(sheet, row, index.keyColumn), row);
}

// The data columns in column order, each with the layer field it is written to. Of
// columns sharing a header, every one takes the values of the last of them; columns
// whose field the layer lacks are dropped here once instead of for every feature.
void indexColumns(const QXlsx::Worksheet& sheet, int lastColumn,
                  const QMap<QString, QString>& fieldNames, const TsFeatureLayer& layer,
                  WorkbookIndex& index)
{
    QStringList headers;
    QHash<QString, int> columnByHeader;
    for (int column = 1; column <= lastColumn; ++column) {
        if (column == index.keyColumn)
            continue;
        const QString header = normalisedHeader(sheet, index.headerRow, column);
        headers.append(header);
        columnByHeader.insert(header, column);
    }
    for (const QString& header : headers) {
        const TsString field = toTsString(fieldNames.value(header, header));
        if (layer.FindField(field))
            index.columns.push_back({columnByHeader.value(header), field});
    }
}

void showKeyColumnMissing()
{
    QMessageBox box(QMessageBox::Warning, QObject::tr("Assocation Attributes"),
                    QObject::tr("The assocation field is not consistent with the excel key field!"),
                    QMessageBox::Close);
    box.button(QMessageBox::Close)->setText(QObject::tr("Close"));
    box.exec();
}

// The text a feature's key value is matched by: floating fields as the application
// shows them at the field's precision, so that 1001.0 matches the cell 1001.
QString keyText(const TsVariant& value, const TsField& keyField)
{
    const TsField::FieldType type = keyField.GetFieldType();
    if (type == TsField::SingleField || type == TsField::DoubleField)
        return VyApplication::doubleToQString(value.GetDouble(),
                                              static_cast<int>(keyField.GetPrecision()));
    return toQString(value.ToString());
}

void joinRows(TsFeatureLayer& layer, TsLayerEditBuffer& edits, const std::vector<int>& ids,
              const TsString& keyName, const TsField& keyField,
              const QXlsx::Worksheet& sheet, const WorkbookIndex& index)
{
    for (const int id : ids) {
        TsVariant key;
        {
            const TsRefPtr<TsFeature> feature = layer.GetFeature(id);
            if (!feature)
                continue;
            feature->GetValue(keyName, key);
        }
        const auto match = index.rowByKey.constFind(keyText(key, keyField));
        if (match == index.rowByKey.constEnd())
            continue;
        for (const JoinedColumn& joined : index.columns) {
            const TsVariant value(toTsString(cellText(sheet, match.value(), joined.column)));
            edits.ChangeAttribute(id, joined.field, value, false);
        }
    }
}

} // namespace

bool VyExcelUtil::assocationFromExcel(const QString& path, const QString& keyField,
                                      TsFeatureLayer* layer,
                                      const QMap<QString, QString>& fieldNames)
{
    if (!layer)
        return false;
    const QString keyName = keyField.toUpper();
    const TsString keyFieldName = toTsString(keyName);
    const TsRefPtr<TsField> field = layer->FindField(keyFieldName);
    if (!field)
        return false;

    const QXlsx::Document document(path);
    const QXlsx::Worksheet* sheet = document.currentWorksheet();
    WorkbookIndex index;
    const QXlsx::CellRange used = sheet ? sheet->dimension() : QXlsx::CellRange();
    if (!sheet || !findHeaderRow(*sheet, used.lastColumn(), keyName, index)) {
        showKeyColumnMissing();
        return false;
    }
    indexKeys(*sheet, used.lastRow(), index);
    indexColumns(*sheet, used.lastColumn(), fieldNames, *layer, index);

    std::vector<int> ids;
    if (!layer->Search(layer->query_filter(), ids))
        return false;
    if (!layer->StartOperation(nullptr))
        return false;
    const TsRefPtr<TsLayerEditBuffer> edits = layer->layer_edit_buffer();
    if (!edits) {
        layer->AbortOperation();
        return false;
    }
    joinRows(*layer, *edits, ids, keyFieldName, *field, *sheet, index);
    layer->CommitOperation();
    return true;
}
