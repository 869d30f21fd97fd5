#include "arguments.h"
#include "command.h"
#include "commandruns.h"
#include "export/attributeexports.h"
#include "filesafety.h"
#include "layersource.h"
#include "layervalues.h"
#include "readprogress.h"
#include "terminalprogress.h"
#include "tsqtext.h"
#include "vygisutil.h"
#include "xlsxglobal.h"

#include <functional>

using namespace VyObjects;

namespace {

const QString overwriteOption = QStringLiteral("--overwrite");
const QString textOption = QStringLiteral("--text");

// Typed cells unless every value is asked for as text. The tool's texts are exact: a
// number written as text reads back as the same number.
vygis::CellValues cellValuesOf(const Arguments& parsed)
{
    return parsed.isSet(textOption) ? vygis::CellValues::ExactTexts : vygis::CellValues::TypedCells;
}

int rowCountLimit()
{
    // Below the title row and the header row.
    return QXlsx::MaxRows - 2;
}

// The library answers every failure of an export with false; the save's own reason is
// in the log, and the others are found out here, only once the export has failed.
QString exportFailure(const QString& output, int columnCount, const std::function<long long()>& countRows)
{
    const QString refused = loggedSaveFailure(output);
    if (!refused.isEmpty())
        return QStringLiteral("%1: not saved: %2").arg(output, refused);
    if (columnCount == 0)
        return QStringLiteral("%1: not saved: no column left to export").arg(output);
    const long long rowCount = countRows();
    if (rowCount > rowCountLimit())
        return QStringLiteral("%1: not saved: %2 rows to export, more than a sheet holds below its "
                              "title and header (%3)").arg(output).arg(rowCount).arg(rowCountLimit());
    return QStringLiteral("%1: not saved: %2").arg(output, saveFailureReason(output));
}

long long featureCount(VyObjects::TsFeatureLayer& layer)
{
    std::vector<int> ids;
    layer.Search(layer.query_filter(), ids);
    return static_cast<long long>(ids.size());
}

long long rowCount(VyObjects::TsTable& table)
{
    long long rows = 0;
    const auto cursor = table.GetRowCursor(VyObjects::TsQueryFilter());
    while (cursor && cursor->NextRow())
        ++rows;
    return rows;
}

// --exclude takes 0-based positions or names (ignoring case) of the exported columns;
// false, with the offending entry in bad, for a position or a name that is not among
// them: a column the user meant to leave out must not be exported.
bool excludedColumns(const QStringList& entries, const QStringList& names, QSet<int>& excluded,
                     QString& bad)
{
    for (const QString& entry : entries) {
        bool isNumber = false;
        int index = entry.toInt(&isNumber);
        if (!isNumber) {
            index = -1;
            for (int i = 0; i < names.size() && index < 0; ++i)
                if (names[i].compare(entry, Qt::CaseInsensitive) == 0)
                    index = i;
        }
        if (index < 0 || index >= names.size()) {
            bad = entry;
            return false;
        }
        excluded.insert(index);
    }
    return true;
}

// Why the workbook named second must not be written from the layer or table named first,
// or an empty text.
QString workbookRefusal(const Arguments& parsed)
{
    return outputRefusal(parsed.positional(1), {LayerAddress::parse(parsed.positional(0)).path},
                         OutputUse::Replace, parsed.isSet(overwriteOption));
}

QStringList fieldNames(const TsFeatureLayer& layer)
{
    QStringList names;
    const TsRefPtr<TsFields> fields = layer.GetFields();
    for (int i = 0; fields && i < fields->GetFieldCount(); ++i)
        names.append(toQString(fields->GetField(i)->GetName()));
    return names;
}

} // namespace

int runExport(const QStringList& arguments)
{
    const QString name = QStringLiteral("export");
    const QString columnsOption = QStringLiteral("--columns");
    Arguments parsed;
    if (!parsed.parse(name, arguments,
                      {{QStringLiteral("--alias"), overwriteOption, textOption},
                       {QStringLiteral("--where")},
                       {columnsOption, QStringLiteral("--exclude")}, 2, 2}))
        return ExitUsage;
    const QString output = parsed.positional(1);
    const QString refusal = workbookRefusal(parsed);
    if (!refusal.isEmpty())
        return failure(name, refusal);
    QString error;
    const TsRefPtr<TsFeatureLayer> layer
        = openFeatureLayer(parsed.positional(0), TsGdalDataSource::ReadOnly, &error);
    if (!layer)
        return failure(name, error);
    for (const QString& where : parsed.values(QStringLiteral("--where")))
        if (!setLayerFilter(*layer, where, &error))
            return failure(name, error);

    const QStringList columns = parsed.isSet(columnsOption) ? parsed.values(columnsOption) : fieldNames(*layer);
    QSet<int> excluded;
    QString bad;
    if (!excludedColumns(parsed.values(QStringLiteral("--exclude")), columns, excluded, bad))
        return usageError(name, QStringLiteral("--exclude: no column %1 to leave out (columns 0 to %2: %3)")
                                    .arg(bad).arg(columns.size() - 1).arg(columns.join(QStringLiteral(", "))));

    const bool withAlias = parsed.isSet(QStringLiteral("--alias"));
    TerminalProgress progress(QStringLiteral("vygis export: "));
    progress.step(QStringLiteral("counting the features of %1").arg(parsed.positional(0)));
    // Only a count that is shown is worth a pass over the layer.
    const long long total = progress.isShown() ? featureCount(*layer) : -1;
    const auto counted = TsRefPtr<ProgressFeatureLayer>::create(
        layer, total, QStringLiteral("saving %1").arg(output), progress);
    bool saved = false;
    if (parsed.isSet(columnsOption)) {
        std::vector<QString> names(columns.cbegin(), columns.cend());
        saved = vygis::exportPointLayer(output, counted.get(), names, withAlias, excluded, cellValuesOf(parsed));
    } else if (auto* gdalLayer = dynamic_cast<TsGdalFeatureLayer*>(layer.get())) {
        // Read straight from GDAL: for a large layer, making a host feature of every
        // feature would cost more than writing its row.
        CountedLayerValues values(*gdalLayer, total, QStringLiteral("saving %1").arg(output), progress);
        saved = vygis::exportFeatureLayer(output, counted.get(), withAlias, excluded, cellValuesOf(parsed),
                                          values);
    } else {
        saved = vygis::exportFeatureLayer(output, counted.get(), withAlias, excluded, cellValuesOf(parsed));
    }
    progress.finish();
    if (!saved)
        return failure(name, exportFailure(output, columns.size() - excluded.size(),
                                           [&] { return featureCount(*layer); }));
    return ExitSuccess;
}

int runExportTable(const QStringList& arguments)
{
    const QString name = QStringLiteral("export-table");
    Arguments parsed;
    if (!parsed.parse(name, arguments, {{overwriteOption, textOption}, {}, {}, 2, 2}))
        return ExitUsage;
    const QString output = parsed.positional(1);
    const QString refusal = workbookRefusal(parsed);
    if (!refusal.isEmpty())
        return failure(name, refusal);
    QString error;
    const TsRefPtr<TsTable> table = openTable(parsed.positional(0), &error);
    if (!table)
        return failure(name, error);
    TerminalProgress progress(QStringLiteral("vygis export-table: "));
    const bool saved = vygis::exportTable(
        output, TsRefPtr<ProgressTable>::create(table, QStringLiteral("saving %1").arg(output), progress),
        cellValuesOf(parsed));
    progress.finish();
    if (!saved) {
        const TsRefPtr<TsFields> fields = table->GetFields();
        return failure(name, exportFailure(output, fields ? fields->GetFieldCount() : 0,
                                           [&] { return rowCount(*table); }));
    }
    return ExitSuccess;
}
