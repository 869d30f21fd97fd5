#include "vygisutil.h"
#include "export/attributeexports.h"
#include "workbook/conventions.h"

#include "tsqtext.h"
#include "tssde.h"
#include "xlsxdocument.h"

#include <QObject>

#include <utility>

using namespace VyObjects;

namespace {

QStringList fieldNamesOf(const TsFields& fields)
{
    QStringList names;
    const int count = fields.GetFieldCount();
    names.reserve(count);
    for (int i = 0; i < count; ++i) {
        const TsRefPtr<TsField> field = fields.GetField(i);
        names.append(field ? toQString(field->GetName()) : QString());
    }
    return names;
}

} // namespace

bool VyExcelUtil::export2Excel(const QString& path, TsRefPtr<TsTable> table)
{
    return vygis::exportTable(path, std::move(table), vygis::CellValues::ExactTexts);
}

bool vygis::exportTable(const QString& path, TsRefPtr<TsTable> tableReference,
                        CellValues cellValues)
{
    // Held by a local so that the caller's reference is given back inside this call on
    // every path, not whenever the caller gets round to destroying the argument.
    const TsRefPtr<TsTable> table = std::move(tableReference);
    if (path.isEmpty() || !table)
        return false;

    const QString title = toQString(table->GetTableName()) + QLatin1Char('_')
                          + QObject::tr("attribute table");
    const TsQueryFilter everyRow;
    const TsRefPtr<TsRowCursor> cursor = table->GetRowCursor(everyRow);
    if (!cursor)
        return false;
    QStringList names;
    {
        const TsRefPtr<TsFields> fields = table->GetFields();
        if (!fields)
            return false;
        names = fieldNamesOf(*fields);
    }
    const int fieldCount = names.size();
    if (fieldCount > QXlsx::MaxColumns)
        return false;

    QXlsx::Document document;
    vygis::writeTitleRow(document, title, fieldCount);
    const QXlsx::Format header = vygis::greyHeaderFormat();
    for (int i = 0; i < fieldCount; ++i)
        document.write(2, i + 1, names.at(i), header);

    const QXlsx::Format centred = vygis::centredCellFormat();
    const vygis::AttributeCells cells(cellValues);
    const auto writeRows = [&]() -> bool {
        int row = 3;
        for (TsRefPtr<TsRow> record = cursor->NextRow(); record;
             record = cursor->NextRow(), ++row) {
            // Rows of a table without fields write nothing, so they never overflow.
            if (row > QXlsx::MaxRows && fieldCount > 0)
                return false;
            for (int i = 0; i < fieldCount; ++i) {
                TsVariant value;
                record->GetValue(i, value);
                document.write(row, i + 1, cells.attribute(value), centred);
            }
        }
        return true;
    };
    return vygis::writeRowsAndSaveIfComplete(document, path, writeRows);
}
