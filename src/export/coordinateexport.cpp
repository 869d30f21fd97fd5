#include "vygisutil.h"
#include "export/attributeexports.h"
#include "export/valuesbyname.h"
#include "workbook/conventions.h"

#include "tsgeo.h"
#include "tsqtext.h"
#include "tssde.h"
#include "xlsxdocument.h"

#include <utility>
#include <vector>

using namespace VyObjects;

namespace {

// What a column shows: one of the point's coordinates or the value of a field.
enum class ColumnKind { X, Y, Z, Field };


ColumnKind kindOf(const QString& name)
{
    if (name == QLatin1String("X"))
        return ColumnKind::X;
    if (name == QLatin1String("Y"))
        return ColumnKind::Y;
    if (name == QLatin1String("Z"))
        return ColumnKind::Z;
    return ColumnKind::Field;
}

// The alias of the layer's field of that name (names ignore case, as the layer's do);
// false for a name the layer has no field for.
bool aliasOf(const TsFields& fields, const TsString& name, QString& alias)
{
    const TsRefPtr<TsField> field = fields.GetField(fields.FindFieldIndex(name));
    if (!field)
        return false;
    alias = toQString(field->GetAliasName());
    return true;
}

QString headerOf(const QString& name, ColumnKind kind, const TsFields& fields, bool withAlias)
{
    QString alias;
    if (!withAlias || kind != ColumnKind::Field
        || !aliasOf(fields, toTsString(name), alias))
        return name;
    return name + QLatin1Char('(') + alias + QLatin1Char(')');
}

// The coordinates of one feature, worked out only for the coordinates the columns ask
// for; none when the feature has no point.
struct Coordinates
{
    bool hasPoint = false;
    double x = 0.0, y = 0.0, z = 0.0;

    void read(const TsFeature& feature, bool wantZ)
    {
        const TsRefPtr<TsGeoPoint> point = feature.GetGeometry().dynamicCast<TsGeoPoint>();
        hasPoint = point != nullptr;
        if (!point)
            return;
        x = point->GetX();
        y = point->GetY();
        z = 0.0;
        bool hasZ = false;
        if (wantZ && point->HasZ(hasZ) && hasZ) {
            double px = 0.0, py = 0.0;
            point->QueryCoordsXYZ(&px, &py, &z);
        }
    }

    double of(ColumnKind kind) const
    {
        return kind == ColumnKind::X ? x : kind == ColumnKind::Y ? y : z;
    }
};

} // namespace

bool VyExcelUtil::export2ExcelHasXYZ(const QString& path, TsFeatureLayer* layer,
                                     std::vector<QString> fieldNames, bool withAlias,
                                     const QSet<int>& excludedColumns)
{
    return vygis::exportPointLayer(path, layer, fieldNames, withAlias, excludedColumns,
                                   vygis::CellValues::RoundedTexts);
}

bool vygis::exportPointLayer(const QString& path, TsFeatureLayer* layer,
                             const std::vector<QString>& fieldNames, bool withAlias,
                             const QSet<int>& excludedColumns, CellValues cellValues)
{
    if (path.isEmpty() || !layer)
        return false;

    QXlsx::Document document;
    const TsQueryFilter filter = layer->query_filter();
    std::vector<ColumnKind> columns;
    std::vector<TsString> names;   // of field columns, read by name; empty for the others
    QStringList headers;
    {
        const TsRefPtr<TsFields> fields = layer->GetFields();
        if (!fields)
            return false;
        for (std::size_t i = 0; i < fieldNames.size(); ++i) {
            if (excludedColumns.contains(static_cast<int>(i)))
                continue;
            const QString& name = fieldNames[i];
            const ColumnKind kind = kindOf(name);
            columns.push_back(kind);
            names.push_back(kind == ColumnKind::Field ? toTsString(name) : TsString());
            headers.append(headerOf(name, kind, *fields, withAlias));
        }
    }
    const int width = static_cast<int>(columns.size());
    if (width == 0 || width > QXlsx::MaxColumns)
        return false;

    bool wantZ = false;
    for (const ColumnKind kind : columns)
        wantZ = wantZ || kind == ColumnKind::Z;

    for (int k = 0; k < width; ++k)
        document.write(1, k + 1, headers.at(k));

    const vygis::AttributeCells cells(cellValues);
    vygis::ValuesByName values(std::move(names));
    const auto writeRows = [&]() -> bool {
        const TsRefPtr<TsFeatureCursor> cursor = layer->GetFeatureCursor(filter);
        if (!cursor)
            return true;
        Coordinates coordinates;
        int row = 2;
        for (TsRefPtr<TsFeature> feature = cursor->NextFeature(); feature;
             feature = cursor->NextFeature(), ++row) {
            if (row > QXlsx::MaxRows)
                return false;
            coordinates.read(*feature, wantZ);
            values.startRow(*feature);
            for (int k = 0; k < width; ++k) {
                const ColumnKind kind = columns[static_cast<std::size_t>(k)];
                if (kind != ColumnKind::Field) {
                    // A feature without a point leaves its coordinate cells empty.
                    if (coordinates.hasPoint)
                        document.write(row, k + 1, cells.coordinate(coordinates.of(kind)));
                    continue;
                }
                TsVariant value;
                values.read(*feature, static_cast<std::size_t>(k), value);
                document.write(row, k + 1, cells.attribute(value));
            }
        }
        return true;
    };
    return vygis::writeRowsAndSaveIfComplete(document, path, writeRows);
}
