// Times the feature layer export of a large in-memory layer against the workbook engine
// writing the same cells (same texts, same formats, same write calls) and saving them on
// its own, and prints both times and their ratio. The export's overhead is what the
// ratio shows: reading the layer, turning values into text, the progress dialog.
//
//     bench_export [features] [rounds]      defaults: 200000 features, 3 rounds

#include "vygisutil.h"

#include "tsmemorylayer.h"
#include "vyapplication.h"
#include "xlsxdocument.h"

#include <QColor>
#include <QElapsedTimer>
#include <QObject>
#include <QTemporaryDir>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <vector>

using namespace VyObjects;

namespace {

constexpr int kFieldCount = 10;

// Ten fields of the usual kinds: identifiers, codes, names, measures and dates.
TsRefPtr<TsMemoryFeatureLayer> parcels(int featureCount)
{
    auto layer = TsRefPtr<TsMemoryFeatureLayer>::create("Parcels", TsLayer::PolygonLayer);
    layer->AddField("ID", TsField::IntegerField, "Identifier");
    layer->AddField("CODE", TsField::StringField, "Parcel code");
    layer->AddField("OWNER", TsField::StringField, "Owner");
    layer->AddField("AREA", TsField::DoubleField, "Area", 2);
    layer->AddField("PERIMETER", TsField::DoubleField, "Perimeter", 2);
    layer->AddField("CLASS", TsField::SmallIntegerField, "Land class");
    layer->AddField("VALUE", TsField::BigIntegerField, "Assessed value");
    layer->AddField("SLOPE", TsField::SingleField, "Mean slope");
    layer->AddField("SURVEYED", TsField::DateField, "Survey date");
    layer->AddField("NOTE", TsField::StringField, "Note");
    for (int i = 0; i < featureCount; ++i) {
        layer->AddFeature({std::int32_t(i + 1),
                           TsString((QStringLiteral("P-%1").arg(i, 7, 10, QLatin1Char('0')))
                                        .toStdWString()),
                           TsString((QStringLiteral("Owner %1").arg(i % 5000)).toStdWString()),
                           1000.0 + i * 0.37, 120.0 + (i % 977) * 0.125,
                           std::int32_t(i % 12), std::int64_t(150000) + i * 13,
                           float(i % 45) / 3.0f,
                           TsVariant::fromDateTime(1500000000000LL + std::int64_t(i) * 86400000LL),
                           i % 3 == 0 ? "checked" : ""});
    }
    return layer;
}

QString textOf(const TsVariant& value)
{
    const auto code = value.GetType();
    if (code == TsVariant::DoubleType || code == TsVariant::SingleType)
        return VyApplication::doubleToQString(value.GetDouble(), 8);
    return QString::fromStdWString(value.ToString().toStdWString());
}

// Everything the engine is asked to write, worked out before the clock starts.
struct Cells
{
    QString title;
    QStringList headers;
    std::vector<QString> texts;   // row after row, kFieldCount per feature
};

Cells cellsOf(TsMemoryFeatureLayer& layer)
{
    Cells cells;
    cells.title = QString::fromStdWString(layer.GetLayerName().toStdWString()) + "_"
                  + QObject::tr("attribute table");
    const TsRefPtr<TsFields> fields = layer.GetFields();
    for (int i = 0; i < fields->GetFieldCount(); ++i)
        cells.headers.append(
            QString::fromStdWString(fields->GetField(i)->GetName().toStdWString()));
    cells.texts.reserve(static_cast<std::size_t>(layer.FeatureCount()) * kFieldCount);
    const TsRefPtr<TsFeatureCursor> cursor = layer.GetFeatureCursor(TsQueryFilter());
    for (TsRefPtr<TsFeature> feature = cursor->NextFeature(); feature;
         feature = cursor->NextFeature()) {
        for (int i = 0; i < kFieldCount; ++i) {
            TsVariant value;
            feature->GetValue(i, value);
            cells.texts.push_back(textOf(value));
        }
    }
    return cells;
}

bool engineAlone(const Cells& cells, const QString& path)
{
    QXlsx::Document document;
    QXlsx::Format centred;
    centred.setHorizontalAlignment(QXlsx::Format::AlignHCenter);
    centred.setVerticalAlignment(QXlsx::Format::AlignVCenter);
    centred.setBorderStyle(QXlsx::Format::BorderThin);
    QXlsx::Format grey = centred;
    grey.setPatternBackgroundColor(QColor(QStringLiteral("#cccccc")));

    document.mergeCells(QXlsx::CellRange(1, 1, 1, kFieldCount), QXlsx::Format());
    document.setRowHeight(1, 30.0);
    document.write(1, 1, cells.title, centred);
    for (int k = 0; k < kFieldCount; ++k)
        document.write(2, k + 1, cells.headers.at(k), grey);
    const std::size_t rows = cells.texts.size() / kFieldCount;
    for (std::size_t r = 0; r < rows; ++r) {
        for (int k = 0; k < kFieldCount; ++k) {
            const QString& text = cells.texts[r * kFieldCount + static_cast<std::size_t>(k)];
            document.write(static_cast<int>(r) + 3, k + 1, text, centred);
        }
    }
    return document.saveAs(path);
}

double medianOf(std::vector<double> values)
{
    std::sort(values.begin(), values.end());
    return values[values.size() / 2];
}

} // namespace

int main(int argc, char** argv)
{
    const int featureCount = argc > 1 ? std::atoi(argv[1]) : 200000;
    const int rounds = argc > 2 ? std::max(1, std::atoi(argv[2])) : 3;
    QTemporaryDir dir;
    const QString enginePath = dir.filePath("engine.xlsx");
    const QString exportPath = dir.filePath("export.xlsx");

    const TsRefPtr<TsMemoryFeatureLayer> layer = parcels(featureCount);
    const Cells cells = cellsOf(*layer);
    std::printf("%d features x %d fields = %zu data cells, %d rounds\n", featureCount,
                kFieldCount, cells.texts.size(), rounds);

    std::vector<double> engineTimes, exportTimes;
    for (int round = 0; round < rounds; ++round) {
        QElapsedTimer clock;
        clock.start();
        if (!engineAlone(cells, enginePath))
            return std::fprintf(stderr, "engine save failed\n"), 1;
        engineTimes.push_back(clock.nsecsElapsed() / 1e9);

        clock.restart();
        if (!VyExcelUtil::export2Excel(exportPath, layer.get(), false, QSet<int>()))
            return std::fprintf(stderr, "export failed\n"), 1;
        exportTimes.push_back(clock.nsecsElapsed() / 1e9);
        std::printf("round %d: engine %.3f s, export %.3f s\n", round + 1, engineTimes.back(),
                    exportTimes.back());
    }
    const double engine = medianOf(engineTimes);
    const double exported = medianOf(exportTimes);
    std::printf("median: engine alone %.3f s, feature layer export %.3f s, ratio %.2f\n", engine,
                exported, exported / engine);
    const double fastestEngine = *std::min_element(engineTimes.begin(), engineTimes.end());
    const double fastestExport = *std::min_element(exportTimes.begin(), exportTimes.end());
    std::printf("best:   engine alone %.3f s, feature layer export %.3f s, ratio %.2f\n",
                fastestEngine, fastestExport, fastestExport / fastestEngine);
    return 0;
}
