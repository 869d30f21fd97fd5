#include "import/attributejoin.h"

#include "tsqtext.h"
#include "vygiscore.h"
#include "xlsxdocument.h"
#include "xlsxworksheet.h"

#include <QHash>

#include <vector>

using namespace VyObjects;

namespace vygis {

struct JoinWorkbook::Private
{
    std::unique_ptr<QXlsx::Document> document;
    const QXlsx::Worksheet* sheet = nullptr;
    QString keyName;
    int headerRow = 0;
    int keyColumn = 0;
    int lastRow = 0;
    QVector<int> dataColumns;
    QStringList dataHeaders;
    // Hash rather than ordered map: the index is only looked up, 100,000 times and more
    // in a large join, and a later row with the same key replaces an earlier one either way.
    QHash<QString, int> rowByKey;

    QString header(int row, int column) const { return normalisedHeader(sheet->read(row, column).toString()); }
    bool findKeyColumn(int lastColumn);
    void indexColumns(int lastColumn);
    void indexKeys();
};

// Finds the row (1 or 2) whose headers include keyName; false when neither does.
bool JoinWorkbook::Private::findKeyColumn(int lastColumn)
{
    for (int row = 1; row <= 2; ++row) {
        // The last column with the header wins, as it does for data columns.
        for (int column = 1; column <= lastColumn; ++column) {
            if (header(row, column) == keyName)
                keyColumn = column;
        }
        if (keyColumn > 0) {
            headerRow = row;
            return true;
        }
    }
    return false;
}

void JoinWorkbook::Private::indexColumns(int lastColumn)
{
    for (int column = 1; column <= lastColumn; ++column) {
        if (column == keyColumn)
            continue;
        dataColumns.append(column);
        dataHeaders.append(header(headerRow, column));
    }
}

void JoinWorkbook::Private::indexKeys()
{
    rowByKey.reserve(qMax(0, lastRow - headerRow));
    for (int row = headerRow + 1; row <= lastRow; ++row)
        rowByKey.insert(sheet->read(row, keyColumn).toString(), row);
}

JoinWorkbook::JoinWorkbook() : d(new Private) {}

JoinWorkbook::~JoinWorkbook() = default;

bool JoinWorkbook::read(const QString& path, const QString& keyName)
{
    d.reset(new Private);
    d->keyName = keyName;
    d->document = std::make_unique<QXlsx::Document>(path);
    d->sheet = d->document->currentWorksheet();
    const QXlsx::CellRange used = d->sheet ? d->sheet->dimension() : QXlsx::CellRange();
    if (!d->sheet || !d->findKeyColumn(used.lastColumn())) {
        d->headerRow = 0;
        return false;
    }
    d->lastRow = used.lastRow();
    d->indexColumns(used.lastColumn());
    d->indexKeys();
    return true;
}

QString JoinWorkbook::keyName() const { return d->keyName; }
int JoinWorkbook::headerRow() const { return d->headerRow; }
int JoinWorkbook::lastRow() const { return d->lastRow; }
const QVector<int>& JoinWorkbook::dataColumns() const { return d->dataColumns; }
const QStringList& JoinWorkbook::dataHeaders() const { return d->dataHeaders; }

QString JoinWorkbook::keyText(int row) const
{
    return cellText(row, d->keyColumn);
}

int JoinWorkbook::rowOf(const QString& key) const
{
    return d->rowByKey.value(key, 0);
}

QString JoinWorkbook::cellText(int row, int column) const
{
    return d->sheet ? d->sheet->read(row, column).toString() : QString();
}

QString JoinWorkbook::normalisedHeader(const QString& text)
{
    QString header = text.trimmed().toUpper();
    const int bracket = header.indexOf(QLatin1Char('('));
    if (bracket >= 0)
        header.truncate(bracket);
    return header;
}

QString JoinWorkbook::fieldFor(const QString& header, const QMap<QString, QString>& fieldNames)
{
    return fieldNames.value(header, header);
}

} // namespace vygis

namespace {

// A workbook column whose values go to a field of the layer.
struct JoinedColumn
{
    int column;
    TsString field;
};

// The data columns in column order, each with the layer field it is written to. Of
// columns sharing a header, every one takes the values of the last of them; columns
// whose field the layer lacks are dropped here once instead of for every feature.
std::vector<JoinedColumn> joinedColumns(const vygis::JoinWorkbook& workbook,
                                        const QMap<QString, QString>& fieldNames,
                                        const TsFeatureLayer& layer)
{
    QHash<QString, int> columnByHeader;
    for (int i = 0; i < workbook.dataHeaders().size(); ++i)
        columnByHeader.insert(workbook.dataHeaders()[i], workbook.dataColumns()[i]);
    std::vector<JoinedColumn> columns;
    for (const QString& header : workbook.dataHeaders()) {
        const TsString field = toTsString(vygis::JoinWorkbook::fieldFor(header, fieldNames));
        if (layer.FindField(field))
            columns.push_back({columnByHeader.value(header), field});
    }
    return columns;
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
              const vygis::JoinWorkbook& workbook, const std::vector<JoinedColumn>& columns)
{
    for (const int id : ids) {
        TsVariant key;
        {
            const TsRefPtr<TsFeature> feature = layer.GetFeature(id);
            if (!feature)
                continue;
            feature->GetValue(keyName, key);
        }
        const int row = workbook.rowOf(keyText(key, keyField));
        if (row == 0)
            continue;
        for (const JoinedColumn& joined : columns) {
            const TsVariant value(toTsString(workbook.cellText(row, joined.column)));
            edits.ChangeAttribute(id, joined.field, value, false);
        }
    }
}

} // namespace

bool vygis::joinWorkbook(const JoinWorkbook& workbook, TsFeatureLayer* layer,
                         const QMap<QString, QString>& fieldNames)
{
    if (workbook.headerRow() == 0 || !layer)
        return false;
    const TsString keyName = toTsString(workbook.keyName());
    const TsRefPtr<TsField> keyField = layer->FindField(keyName);
    if (!keyField)
        return false;
    const std::vector<JoinedColumn> columns = joinedColumns(workbook, fieldNames, *layer);

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
    joinRows(*layer, *edits, ids, keyName, *keyField, workbook, columns);
    layer->CommitOperation();
    return true;
}
