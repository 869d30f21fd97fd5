#include "csv.h"
#include "demo.h"
#include "layersource.h"
#include "tsqtext.h"
#include "vygisutil.h"

#include <QFile>

using namespace VyObjects;

namespace {

const QString countriesLayer = QStringLiteral("countries-110m.json:countries");

int countFeatures(TsFeatureLayer& layer, const QString& whereClause)
{
    std::vector<int> ids;
    return layer.Search(TsQueryFilter(toTsString(whereClause)), ids) ? static_cast<int>(ids.size()) : -1;
}

void exportLayers(DemoRun& run)
{
    QString error;
    const TsRefPtr<TsFeatureLayer> countries
        = openFeatureLayer(run.sample(countriesLayer), TsGdalDataSource::ReadOnly, &error);
    if (!countries || !VyExcelUtil::export2Excel(run.output(QStringLiteral("countries.xlsx")), countries.get(), false, {}))
        return run.failed(QStringLiteral("could not export the countries: %1").arg(error));
    run.made(QStringLiteral("countries.xlsx"),
             QStringLiteral("the attributes of the %1 countries of countries-110m.json below the title "
                            "\"countries_attribute table\" and the header id, name")
                 .arg(countFeatures(*countries, QString())));

    const TsRefPtr<TsFeatureLayer> cities
        = openFeatureLayer(run.sample(QStringLiteral("cities.geojson")), TsGdalDataSource::ReadOnly, &error);
    const std::vector<QString> columns{QStringLiteral("X"), QStringLiteral("Y"), QStringLiteral("Z"),
                                       QStringLiteral("NAME"), QStringLiteral("COUNTRY")};
    if (!cities || !VyExcelUtil::export2ExcelHasXYZ(run.output(QStringLiteral("cities-xyz.xlsx")), cities.get(), columns, false, {}))
        return run.failed(QStringLiteral("could not export the cities' coordinates: %1").arg(error));
    run.made(QStringLiteral("cities-xyz.xlsx"),
             QStringLiteral("the points of cities.geojson on a plain sheet: X, Y, Z (0, the points have "
                            "no height), NAME, COUNTRY"));

}

// A CSV file without coordinate columns opens as an attribute table.
void exportTable(DemoRun& run)
{
    std::vector<QStringList> rows;
    VyExcelUtil::getExcelData(run.sample(QStringLiteral("cities.xlsx")), rows);
    for (QStringList& row : rows)
        row = QStringList{row.value(0), row.value(1), row.value(4)};
    QString error;
    const QString csv = run.output(QStringLiteral("city-populations.csv"));
    TsRefPtr<TsTable> table = writeCsvFile(csv, rows) ? openTable(csv, &error) : nullptr;
    if (!table || !VyExcelUtil::export2Excel(run.output(QStringLiteral("city-populations.xlsx")), std::move(table)))
        return run.failed(QStringLiteral("could not export city-populations.csv as a table: %1").arg(error));
    run.made(QStringLiteral("city-populations.csv"),
             QStringLiteral("the names, countries and populations of cities.xlsx"));
    run.made(QStringLiteral("city-populations.xlsx"),
             QStringLiteral("city-populations.csv read as an attribute table and exported whole below "
                            "the title \"city-populations_attribute table\""));
}

// The join changes its layer in place, so it works on a GeoPackage made from the
// read-only TopoJSON countries, with empty fields for what the workbook adds.
bool buildCountriesPackage(DemoRun& run, const QString& path, QString* error)
{
    QFile::remove(path);
    const TsRefPtr<TsFeatureLayer> source = openFeatureLayer(run.sample(countriesLayer), TsGdalDataSource::ReadOnly, error);
    const TsRefPtr<TsGdalDataSource> package = source ? TsGdalDataSource::create(path, error) : nullptr;
    const std::vector<TsGdalFieldDefinition> fields{
        {QStringLiteral("name"), TsField::StringField, QStringLiteral("Country")},
        {QStringLiteral("iso_n3"), TsField::StringField, QStringLiteral("ISO 3166 numeric code")},
        {QStringLiteral("capital"), TsField::StringField, QStringLiteral("Capital")},
        {QStringLiteral("continent"), TsField::StringField, QStringLiteral("Continent")}};
    if (!package || !package->createLayer(QStringLiteral("countries"), TsLayer::PolygonLayer, fields, error))
        return false;
    const TsRefPtr<TsGdalFeatureWriter> writer = package->featureWriter(QStringLiteral("countries"), error);
    const TsRefPtr<TsFeatureCursor> cursor = writer ? source->GetFeatureCursor(TsQueryFilter()) : nullptr;
    if (!cursor)
        return false;
    while (const TsRefPtr<TsFeature> feature = cursor->NextFeature()) {
        TsVariant name;
        TsVariant code;
        feature->GetValue(TsString("name"), name);
        feature->GetValue(TsString("id"), code);
        if (writer->addFeature({name, code}, feature->GetGeometry()) < 0) {
            *error = writer->errorString();
            return false;
        }
    }
    return writer->commit(error);
}

void joinCountryFacts(DemoRun& run)
{
    const QString package = run.output(QStringLiteral("countries.gpkg"));
    QString error;
    if (!buildCountriesPackage(run, package, &error))
        return run.failed(QStringLiteral("could not build countries.gpkg: %1").arg(error));
    QMap<QString, QString> fieldNames;
    VyExcelUtil::readTransactionTemplateFile(run.sample(QStringLiteral("name-pairs.xlsx")), fieldNames);
    const TsRefPtr<TsFeatureLayer> countries = openFeatureLayer(package, TsGdalDataSource::Update, &error);
    if (!countries
        || !VyExcelUtil::assocationFromExcel(run.sample(QStringLiteral("country-facts.xlsx")), QStringLiteral("name"),
                                             countries.get(), fieldNames))
        return run.failed(QStringLiteral("could not join country-facts.xlsx into countries.gpkg %1").arg(error));
    run.made(QStringLiteral("countries.gpkg"),
             QStringLiteral("the countries as a GeoPackage layer, joined with country-facts.xlsx on the "
                            "name (columns sent to fields by name-pairs.xlsx): %1 countries have a "
                            "capital and a continent now")
                 .arg(countFeatures(*countries, QStringLiteral("capital IS NOT NULL"))));

    if (!setLayerFilter(*countries, QStringLiteral("capital IS NOT NULL"), &error)
        || !VyExcelUtil::export2Excel(run.output(QStringLiteral("countries-joined.xlsx")), countries.get(), true, {}))
        return run.failed(QStringLiteral("could not export the joined countries"));
    run.made(QStringLiteral("countries-joined.xlsx"),
             QStringLiteral("the joined countries of countries.gpkg, headed by field name and alias, "
                            "as \"capital(Capital)\""));

    const TsRefPtr<TsGdalDataSource> source = TsGdalDataSource::open(package, TsGdalDataSource::ReadOnly, &error);
    const auto added = TsRefPtr<TsLayer>::create(TsString("countries"), TsLayer::PolygonLayer);
    VyUniversalFunction::setLayerName(source ? source->map().get() : nullptr, added);
    run.found(QStringLiteral("another layer \"countries\" added to the map of countries.gpkg would be named \"%1\"")
                  .arg(toQString(added->GetLayerName())));
}

} // namespace

void runLayerSteps(DemoRun& run)
{
    exportLayers(run);
    exportTable(run);
    joinCountryFacts(run);
}
