#include "arguments.h"
#include "command.h"
#include "hosttext.h"
#include "layersource.h"
#include "vygisutil.h"

using namespace VyObjects;

namespace {

// --exclude takes 0-based positions or names (ignoring case) of the exported columns,
// separated by commas; false, with the offending entry in bad, for a name not among them.
bool excludedColumns(const QStringList& values, const QStringList& names, QSet<int>& excluded,
                     QString& bad)
{
    for (const QString& value : values) {
        for (const QString& entry : value.split(QLatin1Char(','), Qt::SkipEmptyParts)) {
            bool isNumber = false;
            const int index = entry.trimmed().toInt(&isNumber);
            int named = -1;
            for (int i = 0; i < names.size() && !isNumber && named < 0; ++i)
                if (names[i].compare(entry.trimmed(), Qt::CaseInsensitive) == 0)
                    named = i;
            if (!isNumber && named < 0) {
                bad = entry;
                return false;
            }
            excluded.insert(isNumber ? index : named);
        }
    }
    return true;
}

QStringList fieldNames(const TsFeatureLayer& layer)
{
    QStringList names;
    const TsRefPtr<TsFields> fields = layer.GetFields();
    for (int i = 0; fields && i < fields->GetFieldCount(); ++i)
        names.append(qtText(fields->GetField(i)->GetName()));
    return names;
}

int runExport(const QStringList& arguments)
{
    const QString name = QStringLiteral("export");
    const QString columnsOption = QStringLiteral("--columns");
    Arguments parsed;
    if (!parsed.parse(name, arguments,
                      {{QStringLiteral("--alias")},
                       {QStringLiteral("--exclude"), QStringLiteral("--where")},
                       {columnsOption}, 2, 2}))
        return ExitUsage;
    QString error;
    const TsRefPtr<TsFeatureLayer> layer
        = openFeatureLayer(parsed.positional(0), TsGdalDataSource::ReadOnly, &error);
    if (!layer)
        return failure(name, error);
    for (const QString& where : parsed.values(QStringLiteral("--where")))
        if (!setLayerFilter(*layer, where, &error))
            return failure(name, error);

    const QStringList columns = parsed.values(columnsOption);
    QSet<int> excluded;
    QString bad;
    if (!excludedColumns(parsed.values(QStringLiteral("--exclude")),
                         parsed.isSet(columnsOption) ? columns : fieldNames(*layer), excluded, bad))
        return usageError(name, QStringLiteral("--exclude: no column %1 to leave out").arg(bad));

    const QString output = parsed.positional(1);
    const bool withAlias = parsed.isSet(QStringLiteral("--alias"));
    bool saved = false;
    if (parsed.isSet(columnsOption)) {
        std::vector<QString> names(columns.cbegin(), columns.cend());
        saved = VyExcelUtil::export2ExcelHasXYZ(output, layer.get(), names, withAlias, excluded);
    } else {
        saved = VyExcelUtil::export2Excel(output, layer.get(), withAlias, excluded);
    }
    if (!saved)
        return failure(name, QStringLiteral("%1: not saved (no column left to export, the layer "
                                            "has more features than a sheet has rows, its filter "
                                            "cannot be applied, or the save failed)").arg(output));
    return ExitSuccess;
}

int runExportTable(const QStringList& arguments)
{
    const QString name = QStringLiteral("export-table");
    Arguments parsed;
    if (!parsed.parse(name, arguments, {{}, {}, {}, 2, 2}))
        return ExitUsage;
    QString error;
    TsRefPtr<TsTable> table = openTable(parsed.positional(0), &error);
    if (!table)
        return failure(name, error);
    if (!VyExcelUtil::export2Excel(parsed.positional(1), std::move(table)))
        return failure(name, QStringLiteral("%1: not saved (the table cannot be read, has more rows "
                                            "than a sheet, or the save failed)").arg(parsed.positional(1)));
    return ExitSuccess;
}

} // namespace

Command exportCommand()
{
    Command command;
    command.name = QStringLiteral("export");
    command.summary = QStringLiteral("export a layer's attributes to a workbook");
    command.usage = QStringLiteral(
        "Usage: vygis export LAYER WORKBOOK [--alias] [--exclude COLUMNS] [--where CLAUSE]\n"
        "       vygis export LAYER WORKBOOK --columns NAME... [--alias] [--exclude COLUMNS]\n\n"
        "Writes the features of LAYER (PATH or PATH:LAYER) to a new WORKBOOK, replacing\n"
        "any file there: a title row \"<layer>_attribute table\", a header row of field\n"
        "names, then one row per feature.\n\n"
        "  --alias            head each column NAME(alias)\n"
        "  --exclude COLUMNS  leave out columns, by 0-based position or by name, separated\n"
        "                     by commas (with --columns: positions in that list)\n"
        "  --where CLAUSE     export only the features the clause admits, one comparison\n"
        "                     such as \"POP > 10\" or \"NAME = 'Paris'\"\n"
        "  --columns NAME...  a plain sheet of a point layer, one column per NAME: X, Y and\n"
        "                     Z give the point's coordinates, other names a field's values\n\n"
        "Long exports show their progress on a terminal. Exit status 1 when the layer\n"
        "cannot be opened or the workbook is not saved.");
    command.run = runExport;
    return command;
}

Command exportTableCommand()
{
    Command command;
    command.name = QStringLiteral("export-table");
    command.summary = QStringLiteral("export an attribute table to a workbook");
    command.usage = QStringLiteral(
        "Usage: vygis export-table TABLE WORKBOOK\n\n"
        "Writes every row of TABLE (PATH or PATH:LAYER of a table without geometry, such\n"
        "as a CSV file or a GeoPackage attribute table) to a new WORKBOOK below the title\n"
        "\"<table>_attribute table\" and a header of field names. Exit status 1 when the\n"
        "table cannot be opened or the workbook is not saved.");
    command.run = runExportTable;
    return command;
}
