#pragma once

// The attribute exports with a choice of what fills their data cells, for the programs
// built with the library in this tree (the vygis tool); not part of the installed API and
// not exported from the shared library: those programs link the library's objects.
// The application's entry points in vygisutil.h are these exports with the cell values
// that their contracts fix: RoundedTexts for a feature layer and for a point layer with
// coordinates, ExactTexts for a table. Everything else a call does (what it refuses,
// the sheet's layout, the progress dialog, the save) is theirs, as vygisutil.h says.

#include "export/attributecells.h"

#include "tssde.h"

#include <QSet>
#include <QString>

#include <vector>

namespace vygis {

// VyExcelUtil::export2Excel of a feature layer.
bool exportFeatureLayer(const QString& path, VyObjects::TsFeatureLayer* layer, bool withAlias,
                        const QSet<int>& excludedColumns, CellValues cellValues);

// The features of a layer read some faster way than through its cursor's host features:
// the same features in the same order, each value as the cursor's feature holds it.
class FeatureValues
{
public:
    virtual ~FeatureValues() = default;
    // Starts reading the features filter admits; false where the layer's
    // GetFeatureCursor(filter) would give no cursor.
    virtual bool start(const VyObjects::TsQueryFilter& filter) = 0;
    // Moves to the next feature; false once every feature has been read.
    virtual bool next() = 0;
    // The cell of the current feature's value at fieldIndex (in the layer's fields).
    virtual QVariant cell(int fieldIndex, const AttributeCells& cells) = 0;
};

// exportFeatureLayer with the data rows read through values instead of the layer's
// cursor; everything else (the header, what is refused, the save) is the same.
bool exportFeatureLayer(const QString& path, VyObjects::TsFeatureLayer* layer, bool withAlias,
                        const QSet<int>& excludedColumns, CellValues cellValues, FeatureValues& values);

// VyExcelUtil::export2ExcelHasXYZ: columnNames may name X, Y and Z as well as fields.
bool exportPointLayer(const QString& path, VyObjects::TsFeatureLayer* layer,
                      const std::vector<QString>& columnNames, bool withAlias,
                      const QSet<int>& excludedColumns, CellValues cellValues);

// VyExcelUtil::export2Excel of a table; the reference is let go before the call returns.
bool exportTable(const QString& path, VyObjects::TsRefPtr<VyObjects::TsTable> table,
                 CellValues cellValues);

} // namespace vygis
