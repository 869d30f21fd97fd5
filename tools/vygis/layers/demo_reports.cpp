#include "demo.h"
#include "layersource.h"
#include "pointfile.h"
#include "topologyjson.h"
#include "tsqtext.h"
#include "vygisutil.h"

#include <QFile>
#include <QMap>

using namespace VyObjects;

namespace {

// Error triples of a check result: one per rule and layer, with the number of findings.
QStringList errorTriples(const TsTopology& topology)
{
    QMap<QPair<QString, QString>, int> counts;
    for (int i = 0; i < topology.GetTopoErrorCount(); ++i) {
        TsTopoError e;
        if (topology.GetTopoErrorInfo(i, e.number, e.ruleId, e.featureId, e.relatedFeatureId,
                                      e.layerId, e.relatedLayerId, e.layerName, e.relatedLayerName,
                                      e.coordinate, e.ruleDescription, e.errorType, e.isException))
            ++counts[{toQString(e.ruleDescription), toQString(e.layerName)}];
    }
    QStringList triples;
    for (auto count = counts.cbegin(); count != counts.cend(); ++count)
        triples << count.key().first << QString::number(count.value()) << count.key().second;
    return triples;
}

void reportTopology(DemoRun& run)
{
    QString error;
    const TsRefPtr<TsMemoryTopology> topology = readTopologyJson(run.sample(QStringLiteral("topology.json")), &error);
    if (!topology)
        return run.failed(error);
    const QString report = run.output(QStringLiteral("topology-report.xlsx"));
    QFile::remove(report);
    VyExcelUtil::exportExcelByTsTopology(report, topology.get());
    if (!QFile::exists(report))
        return run.failed(QStringLiteral("could not save topology-report.xlsx"));
    run.made(QStringLiteral("topology-report.xlsx"),
             QStringLiteral("the %1 findings of topology.json, one row each (the unreadable fourth "
                            "repeats the third)").arg(topology->GetTopoErrorCount()));

    const QStringList triples = errorTriples(*topology);
    const QString list = run.output(QStringLiteral("error-list.xlsx"));
    QFile::remove(list);
    if (!VyExcelUtil::exportErrorTable(triples, list))
        return run.failed(QStringLiteral("could not save error-list.xlsx"));
    run.made(QStringLiteral("error-list.xlsx"),
             QStringLiteral("the findings counted by rule and layer under Error Type, Layer Count, "
                            "Layer Name: %1 rows").arg(triples.size() / 3));
}

void queryElevations(DemoRun& run)
{
    QStringList points;
    QString error;
    if (!readPointFile(run.sample(QStringLiteral("elevation-points.txt")), points, &error))
        return run.failed(error);
    const TsRefPtr<TsGdalDataSource> dem
        = TsGdalDataSource::open(run.sample(QStringLiteral("dem.tif")), TsGdalDataSource::ReadOnly, &error);
    TsRefPtr<TsRasterProps> raster = dem ? dem->raster(1, &error) : nullptr;
    if (!raster
        || !VyExcelUtil::saveQueryElevationOutputFile(run.output(QStringLiteral("elevations.xlsx")), points, std::move(raster)))
        return run.failed(QStringLiteral("could not query dem.tif: %1").arg(error));
    run.made(QStringLiteral("elevations.xlsx"),
             QStringLiteral("the cities of elevation-points.txt looked up in dem.tif, numbered by "
                            "continent heading, with their made-up heights; the point off the map "
                            "reads \"Not within the range of Dem data!\""));
}

} // namespace

void runReportSteps(DemoRun& run)
{
    queryElevations(run);
    reportTopology(run);
}
