// Field aliases of GeoPackages. The format keeps a column's alternative name
// in the name column of its data columns table, which GDAL reads and writes
// as the field's alternative name only from 3.7 on; before, the provider
// does it itself.

#include "tsgdal_p.h"

namespace VyObjects {

namespace {

QByteArray sqlText(const QString& text)
{
    QString doubled = text;
    doubled.replace(QLatin1Char('\''), QLatin1String("''"));
    return "'" + doubled.toUtf8() + "'";
}

bool execute(GDALDataset& dataset, const QByteArray& statement, const TsGdalErrorTrap& trap,
             QString* reason)
{
    CPLErrorReset();
    OGRLayer* result = dataset.ExecuteSQL(statement.constData(), nullptr, nullptr);
    if (result)
        dataset.ReleaseResultSet(result);
    if (CPLGetLastErrorType() < CE_Failure)
        return true;
    setError(reason, QStringLiteral("the field aliases could not be stored") + trap.reason());
    return false;
}

} // namespace

QHash<QString, QString> readGeoPackageAliases(GDALDataset& dataset, const QString& table)
{
    TsGdalErrorTrap trap;
    QHash<QString, QString> aliases;
    OGRLayer* names = dataset.ExecuteSQL(
        "SELECT name FROM sqlite_master WHERE type = 'table' AND name = 'gpkg_data_columns'",
        nullptr, nullptr);
    const bool hasTable = names && names->GetFeatureCount() > 0;
    if (names)
        dataset.ReleaseResultSet(names);
    if (!hasTable)
        return aliases;
    OGRLayer* rows = dataset.ExecuteSQL(
        "SELECT column_name, name FROM gpkg_data_columns WHERE lower(table_name) = lower("
            + sqlText(table) + ") AND name IS NOT NULL",
        nullptr, nullptr);
    if (!rows)
        return aliases;
    while (OGRFeatureUniquePtr row{rows->GetNextFeature()})
        aliases.insert(gdalText(row->GetFieldAsString(0)), gdalText(row->GetFieldAsString(1)));
    dataset.ReleaseResultSet(rows);
    return aliases;
}

bool writeGeoPackageAliases(GDALDataset& dataset, const QString& table,
                            const std::vector<TsGdalFieldDefinition>& fields, QString* reason)
{
#if GDAL_VERSION_NUM >= GDAL_COMPUTE_VERSION(3, 7, 0)
    Q_UNUSED(dataset) Q_UNUSED(table) Q_UNUSED(fields) Q_UNUSED(reason)
    return true;
#else
    std::vector<const TsGdalFieldDefinition*> aliased;
    for (const TsGdalFieldDefinition& field : fields) {
        if (!field.aliasName.isEmpty())
            aliased.push_back(&field);
    }
    if (aliased.empty())
        return true;
    TsGdalErrorTrap trap;
    const QByteArray statements[] = {
        "CREATE TABLE IF NOT EXISTS gpkg_data_columns (table_name TEXT NOT NULL, "
        "column_name TEXT NOT NULL, name TEXT, title TEXT, description TEXT, mime_type TEXT, "
        "constraint_name TEXT, CONSTRAINT pk_gdc PRIMARY KEY (table_name, column_name), "
        "CONSTRAINT gdc_tn UNIQUE (table_name, name))",
        "CREATE TABLE IF NOT EXISTS gpkg_extensions (table_name TEXT, column_name TEXT, "
        "extension_name TEXT NOT NULL, definition TEXT NOT NULL, scope TEXT NOT NULL, "
        "CONSTRAINT ge_tce UNIQUE (table_name, column_name, extension_name))",
        "INSERT INTO gpkg_extensions (table_name, column_name, extension_name, definition, scope) "
        "SELECT 'gpkg_data_columns', NULL, 'gpkg_schema', "
        "'http://www.geopackage.org/spec/#extension_schema', 'read-write' WHERE NOT EXISTS "
        "(SELECT 1 FROM gpkg_extensions WHERE table_name = 'gpkg_data_columns' "
        "AND extension_name = 'gpkg_schema')"};
    for (const QByteArray& statement : statements) {
        if (!execute(dataset, statement, trap, reason))
            return false;
    }
    for (const TsGdalFieldDefinition* field : aliased) {
        const QByteArray insert = "INSERT OR REPLACE INTO gpkg_data_columns (table_name, column_name, name) "
                                  "VALUES (" + sqlText(table) + ", " + sqlText(field->name) + ", "
                                  + sqlText(field->aliasName) + ")";
        if (!execute(dataset, insert, trap, reason))
            return false;
    }
    return true;
#endif
}

TsRefPtr<TsFields> fieldsOfLayer(const TsGdalDataSource& source, OGRLayer& layer)
{
    TsGdalErrorTrap trap;
    QHash<QString, QString> aliases;
    if (source.driverName() == QLatin1String("GPKG")) {
        aliases = readGeoPackageAliases(*source.dataset(), gdalText(layer.GetName()));
        // Statements of their own may end the ones reading the source's layers.
        source.layerState().interruptAllReading();
    }
    return readFields(*layer.GetLayerDefn(), aliases);
}

} // namespace VyObjects
