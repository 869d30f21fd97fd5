#include "vygisutil.h"
#include "export/attributeexports.h"
#include "export/valuesbyname.h"
#include "workbook/conventions.h"

#include "tsqtext.h"
#include "tssde.h"
#include "xlsxdocument.h"

#include <QObject>

#include <functional>

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

namespace {

// Reads the data rows of an export into document from row 3 on; false when they do not
// all fit on the sheet. names are the exported fields' names, in column order.
using RowWriter = std::function<bool(QXlsx::Document& document, const std::vector<TsString>& names,
                                     const TsFields& fields, const vygis::AttributeCells& cells,
                                     const QXlsx::Format& format)>;

bool exportRows(const QString& path, TsFeatureLayer* layer, bool withAlias,
                const QSet<int>& excludedColumns, vygis::CellValues cellValues, const RowWriter& writeRows)
{
    if (path.isEmpty() || !layer)
        return false;

    QXlsx::Document document;
    const TsRefPtr<TsFields> fields = layer->GetFields();
    if (!fields)
        return false;
    ExportedFields exported = exportedFields(*fields, withAlias, excludedColumns);
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
    return vygis::writeRowsAndSaveIfComplete(document, path, [&] {
        return writeRows(document, exported.names, *fields, cells, centred);
    });
}

} // namespace

bool vygis::exportFeatureLayer(const QString& path, TsFeatureLayer* layer, bool withAlias,
                               const QSet<int>& excludedColumns, CellValues cellValues)
{
    const auto writeRows = [layer](QXlsx::Document& document, const std::vector<TsString>& names,
                                   const TsFields&, const AttributeCells& cells,
                                   const QXlsx::Format& format) -> bool {
        const TsRefPtr<TsFeatureCursor> cursor = layer->GetFeatureCursor(layer->query_filter());
        if (!cursor)
            return true;
        const int width = static_cast<int>(names.size());
        ValuesByName values(names);
        int row = 3;
        for (TsRefPtr<TsFeature> feature = cursor->NextFeature(); feature;
             feature = cursor->NextFeature(), ++row) {
            if (row > QXlsx::MaxRows)
                return false;
            values.startRow(*feature);
            for (int k = 0; k < width; ++k) {
                TsVariant value;
                values.read(*feature, static_cast<std::size_t>(k), value);
                document.write(row, k + 1, cells.attribute(value), format);
            }
        }
        return true;
    };
    return exportRows(path, layer, withAlias, excludedColumns, cellValues, writeRows);
}

bool vygis::exportFeatureLayer(const QString& path, TsFeatureLayer* layer, bool withAlias,
                               const QSet<int>& excludedColumns, CellValues cellValues,
                               FeatureValues& values)
{
    const auto writeRows = [layer, &values](QXlsx::Document& document, const std::vector<TsString>& names,
                                            const TsFields& fields, const AttributeCells& cells,
                                            const QXlsx::Format& format) -> bool {
        if (!values.start(layer->query_filter()))
            return true;
        // The positions a host feature's values are found at by name (ValuesByName).
        std::vector<int> positions;
        positions.reserve(names.size());
        for (const TsString& name : names)
            positions.push_back(fields.FindFieldIndex(name));
        for (int row = 3; values.next(); ++row) {
            if (row > QXlsx::MaxRows)
                return false;
            for (std::size_t k = 0; k < positions.size(); ++k)
                document.write(row, static_cast<int>(k) + 1,
                               positions[k] < 0 ? cells.attribute(TsVariant()) : values.cell(positions[k], cells),
                               format);
        }
        return true;
    };
    return exportRows(path, layer, withAlias, excludedColumns, cellValues, writeRows);
}
