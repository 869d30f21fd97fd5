// The attribute exports of a large in-memory point layer (ten fields of the usual kinds),
// each beside the workbook engine writing the same cells with the same formats on its
// own. The export's overhead over the engine is what the two phases show: reading the
// layer, turning values into text, the progress dialog.
//
//     bench_export layer|layer-engine|xyz|xyz-engine <features> <output.xlsx>
//
// layer: export2Excel of the layer; xyz: export2ExcelHasXYZ with the columns X, Y and
// the ten fields. The -engine modes work the cells out before the clock starts and then
// time the engine alone.

#include "vygisutil.h"

#include "benchclock.h"

#include "tsgeo.h"
#include "tsmemorylayer.h"
#include "vyapplication.h"
#include "xlsxdocument.h"

#include <QColor>
#include <QObject>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <vector>

using namespace VyObjects;

namespace {

constexpr int kFieldCount = 10;

TsRefPtr<TsMemoryFeatureLayer> parcels(int featureCount)
{
    auto layer = TsRefPtr<TsMemoryFeatureLayer>::create("Parcels", TsLayer::PointLayer);
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
        const TsRefPtr<TsGeometry> point =
            TsRefPtr<TsGeoPoint>::create(500000.0 + i * 0.25, 4000000.0 - i * 0.125);
        layer->AddFeature({std::int32_t(i + 1),
                           TsString((QStringLiteral("P-%1").arg(i, 7, 10, QLatin1Char('0')))
                                        .toStdWString()),
                           TsString((QStringLiteral("Owner %1").arg(i % 5000)).toStdWString()),
                           1000.0 + i * 0.37, 120.0 + (i % 977) * 0.125,
                           std::int32_t(i % 12), std::int64_t(150000) + i * 13,
                           float(i % 45) / 3.0f,
                           TsVariant::fromDateTime(1500000000000LL + std::int64_t(i) * 86400000LL),
                           i % 3 == 0 ? "checked" : ""},
                          point);
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
    QStringList headers;
    int width = 0;
    std::vector<QString> texts;   // row after row, width per feature
};

Cells cellsOf(TsMemoryFeatureLayer& layer, bool withCoordinates)
{
    Cells cells;
    if (withCoordinates)
        cells.headers << QStringLiteral("X") << QStringLiteral("Y");
    const TsRefPtr<TsFields> fields = layer.GetFields();
    for (int i = 0; i < fields->GetFieldCount(); ++i)
        cells.headers.append(
            QString::fromStdWString(fields->GetField(i)->GetName().toStdWString()));
    cells.width = cells.headers.size();
    cells.texts.reserve(static_cast<std::size_t>(layer.FeatureCount()) * cells.width);
    const TsRefPtr<TsFeatureCursor> cursor = layer.GetFeatureCursor(TsQueryFilter());
    for (TsRefPtr<TsFeature> feature = cursor->NextFeature(); feature;
         feature = cursor->NextFeature()) {
        if (withCoordinates) {
            const TsRefPtr<TsGeoPoint> point = feature->GetGeometry().dynamicCast<TsGeoPoint>();
            cells.texts.push_back(VyApplication::doubleToQString(point->GetX(), 8));
            cells.texts.push_back(VyApplication::doubleToQString(point->GetY(), 8));
        }
        for (int i = 0; i < kFieldCount; ++i) {
            TsVariant value;
            feature->GetValue(i, value);
            cells.texts.push_back(textOf(value));
        }
    }
    return cells;
}

// The feature layer export's sheet: merged title, grey header, centred data.
bool engineLikeLayerExport(const Cells& cells, const QString& path)
{
    QXlsx::Document document;
    QXlsx::Format centred;
    centred.setHorizontalAlignment(QXlsx::Format::AlignHCenter);
    centred.setVerticalAlignment(QXlsx::Format::AlignVCenter);
    centred.setBorderStyle(QXlsx::Format::BorderThin);
    QXlsx::Format grey = centred;
    grey.setPatternBackgroundColor(QColor(QStringLiteral("#cccccc")));

    document.mergeCells(QXlsx::CellRange(1, 1, 1, cells.width), QXlsx::Format());
    document.setRowHeight(1, 30.0);
    document.write(1, 1, QStringLiteral("Parcels_attribute table"), centred);
    for (int k = 0; k < cells.width; ++k)
        document.write(2, k + 1, cells.headers.at(k), grey);
    const std::size_t rows = cells.texts.size() / cells.width;
    for (std::size_t r = 0; r < rows; ++r) {
        for (int k = 0; k < cells.width; ++k)
            document.write(static_cast<int>(r) + 3, k + 1, cells.texts[r * cells.width + k],
                           centred);
    }
    return document.saveAs(path);
}

// The coordinate export's plain sheet: headers in row 1, data from row 2, no formats.
bool engineLikeCoordinateExport(const Cells& cells, const QString& path)
{
    QXlsx::Document document;
    for (int k = 0; k < cells.width; ++k)
        document.write(1, k + 1, cells.headers.at(k));
    const std::size_t rows = cells.texts.size() / cells.width;
    for (std::size_t r = 0; r < rows; ++r) {
        for (int k = 0; k < cells.width; ++k)
            document.write(static_cast<int>(r) + 2, k + 1, cells.texts[r * cells.width + k]);
    }
    return document.saveAs(path);
}

std::vector<QString> coordinateColumns()
{
    return {"X", "Y", "ID", "CODE", "OWNER", "AREA", "PERIMETER",
            "CLASS", "VALUE", "SLOPE", "SURVEYED", "NOTE"};
}

} // namespace

int main(int argc, char** argv)
{
    const char* usage = "usage: bench_export layer|layer-engine|xyz|xyz-engine <features> <output.xlsx>\n";
    if (argc != 4)
        return std::fprintf(stderr, "%s", usage), 2;
    const std::string mode = argv[1];
    const int featureCount = std::atoi(argv[2]);
    const QString path = QString::fromLocal8Bit(argv[3]);

    bench::Stopwatch clock;
    const TsRefPtr<TsMemoryFeatureLayer> layer = parcels(featureCount);
    clock.report("build-layer");
    bool saved = false;
    if (mode == "layer") {
        saved = VyExcelUtil::export2Excel(path, layer.get(), false, QSet<int>());
        clock.report("export");
    } else if (mode == "xyz") {
        saved = VyExcelUtil::export2ExcelHasXYZ(path, layer.get(), coordinateColumns(), false,
                                                QSet<int>());
        clock.report("export");
    } else if (mode == "layer-engine" || mode == "xyz-engine") {
        const bool coordinates = mode == "xyz-engine";
        const Cells cells = cellsOf(*layer, coordinates);
        clock.report("prepare-cells");
        saved = coordinates ? engineLikeCoordinateExport(cells, path)
                            : engineLikeLayerExport(cells, path);
        clock.report("engine");
    } else {
        return std::fprintf(stderr, "%s", usage), 2;
    }
    if (!saved)
        return std::fprintf(stderr, "the workbook was not saved\n"), 1;
    bench::reportFigure("cells", double(featureCount) * (mode[0] == 'x' ? 12 : kFieldCount));
    return 0;
}
