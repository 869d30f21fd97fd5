#include "vygisutil.h"
#include "export/attributeexports.h"
#include "export/valuesbyname.h"
#include "workbook/conventions.h"

#include "tsqtext.h"
#include "tssde.h"
#include "xlsxdocument.h"

#include <QObject>

#include <utility>
#include <vector>

using namespace VyObjects;

namespace {

// The fields that are written, in field order: the names the values are looked up by and
// the texts of the header row.
struct ExportedFields
{
    std::vector<TsString> names;
    QStringList headers;
};

ExportedFields exportedFields(const TsFields& fields, bool withAlias,
                              const QSet<int>& excludedColumns)
{
    ExportedFields exported;
    const int count = fields.GetFieldCount();
    exported.names.reserve(static_cast<std::size_t>(count));
    for (int i = 0; i < count; ++i) {
        if (excludedColumns.contains(i))
            continue;
        const TsRefPtr<TsField> field = fields.GetField(i);
        if (!field)
            continue;
        const QString name = toQString(field->GetName());
        exported.names.push_back(field->GetName());
        exported.headers.append(withAlias ? name + QLatin1Char('(')
                                                + toQString(field->GetAliasName())
                                                + QLatin1Char(')')
                                          : name);
    }
    return exported;
}

} // namespace

bool VyExcelUtil::export2Excel(const QString& path, TsFeatureLayer* layer, bool withAlias,
                               const QSet<int>& excludedColumns)
{
    return vygis::exportFeatureLayer(path, layer, withAlias, excludedColumns,
                                     vygis::CellValues::RoundedTexts);
}

bool vygis::exportFeatureLayer(const QString& path, TsFeatureLayer* layer, bool withAlias,
                               const QSet<int>& excludedColumns, CellValues cellValues)
{
    if (path.isEmpty() || !layer)
        return false;

    QXlsx::Document document;
    const TsQueryFilter filter = layer->query_filter();
    ExportedFields exported;
    {
        const TsRefPtr<TsFields> fields = layer->GetFields();
        if (!fields)
            return false;
        exported = exportedFields(*fields, withAlias, excludedColumns);
    }
    const int width = exported.headers.size();
    if (width == 0 || width > QXlsx::MaxColumns)
        return false;

    const QString title = toQString(layer->GetLayerName()) + QLatin1Char('_')
                          + QObject::tr("attribute table");
    vygis::writeTitleRow(document, title, width);
    const QXlsx::Format header = vygis::greyHeaderFormat();
    for (int k = 0; k < width; ++k)
        document.write(2, k + 1, exported.headers.at(k), header);

    const QXlsx::Format centred = vygis::centredCellFormat();
    const vygis::AttributeCells cells(cellValues);
    vygis::ValuesByName values(std::move(exported.names));
    const auto writeRows = [&]() -> bool {
        const TsRefPtr<TsFeatureCursor> cursor = layer->GetFeatureCursor(filter);
        if (!cursor)
            return true;
        int row = 3;
        for (TsRefPtr<TsFeature> feature = cursor->NextFeature(); feature;
             feature = cursor->NextFeature(), ++row) {
            if (row > QXlsx::MaxRows)
                return false;
            values.startRow(*feature);
            for (int k = 0; k < width; ++k) {
                TsVariant value;
                values.read(*feature, static_cast<std::size_t>(k), value);
                document.write(row, k + 1, cells.attribute(value), centred);
            }
        }
        return true;
    };
    return vygis::writeRowsAndSaveIfComplete(document, path, writeRows);
}
