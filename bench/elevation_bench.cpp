// The elevation report of many points against a large elevation model, with the time
// spent in the raster (creating and filling pixel blocks) told apart from the rest, which
// is the workbook: formatting the texts, writing the cells and saving. The model is held
// in memory, or with --geotiff written to a GeoTIFF first and read through GDAL.
//
//     bench_elevation <points> <output.xlsx> [columns rows] [--geotiff <dem.tif>]
//                                                            default grid 4000 x 4000

#include "vygisutil.h"

#include "benchclock.h"

#include "tsgdal.h"
#include "tsmemoryraster.h"

#include <QFile>

#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <vector>

using namespace VyObjects;

namespace {

// Hands every call to the raster it wraps and adds up the time they take.
class TimedRaster : public TsRasterProps
{
    // Declared first: the overrides below deduce their results from it.
    template <class Call>
    auto timed(Call call) const
    {
        const auto start = std::chrono::steady_clock::now();
        auto result = call();
        m_seconds += std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
        return result;
    }

public:
    explicit TimedRaster(TsRefPtr<TsRasterProps> raster) : m_raster(std::move(raster)) {}

    double seconds() const { return m_seconds; }
    long long reads() const { return m_reads; }

    TsRect GetExtent() const override { return timed([&] { return m_raster->GetExtent(); }); }
    double GetPixelSizeX() const override { return timed([&] { return m_raster->GetPixelSizeX(); }); }
    double GetPixelSizeY() const override { return timed([&] { return m_raster->GetPixelSizeY(); }); }
    int GetColumnCount() const override { return timed([&] { return m_raster->GetColumnCount(); }); }
    int GetRowCount() const override { return timed([&] { return m_raster->GetRowCount(); }); }

    TsRefPtr<TsPixelBlock> CreatePixelBlock(const TsSize& size) const override
    {
        return timed([&] { return m_raster->CreatePixelBlock(size); });
    }

    bool ReadPixelBlock(TsPoint cell, TsPixelBlock* block, int level) const override
    {
        ++m_reads;
        return timed([&] { return m_raster->ReadPixelBlock(cell, block, level); });
    }

protected:
    ~TimedRaster() override = default;

private:
    TsRefPtr<TsRasterProps> m_raster;
    mutable double m_seconds = 0.0;
    mutable long long m_reads = 0;
};

// A hilly surface over 40 km x 40 km in metres.
const TsRect kExtent(500000.0, 540000.0, 4000000.0, 4040000.0);

std::vector<double> heights(int columns, int rows)
{
    std::vector<double> values(static_cast<std::size_t>(columns) * rows);
    for (int row = 0; row < rows; ++row) {
        for (int column = 0; column < columns; ++column)
            values[static_cast<std::size_t>(row) * columns + column] =
                800.0 + 300.0 * std::sin(column * 0.01) * std::cos(row * 0.013);
    }
    return values;
}

TsRefPtr<TsRasterProps> memoryModel(int columns, int rows)
{
    auto raster = TsRefPtr<TsMemoryRaster>::create(kExtent, columns, rows);
    raster->SetValues(heights(columns, rows));
    return raster;
}

// The same surface as a GeoTIFF, opened again for reading as the application would.
TsRefPtr<TsRasterProps> geotiffModel(int columns, int rows, const QString& path)
{
    QString error;
    QFile::remove(path);
    if (!TsGdalDataSource::createRaster(path, kExtent, columns, rows, heights(columns, rows),
                                        TsMemoryRaster::DefaultNoData, &error)) {
        std::fprintf(stderr, "%s\n", qPrintable(error));
        return nullptr;
    }
    const TsRefPtr<TsGdalDataSource> source =
        TsGdalDataSource::open(path, TsGdalDataSource::ReadOnly, &error);
    TsRefPtr<TsRasterProps> band = source ? source->raster(1, &error) : nullptr;
    if (!band)
        std::fprintf(stderr, "%s\n", qPrintable(error));
    return band;
}

// Points scattered over the model, one in a thousand outside it, and a heading before
// every ten thousand.
QStringList pointTexts(int count)
{
    QStringList texts;
    texts.reserve(2 * count + count / 5000);
    for (int i = 0; i < count; ++i) {
        if (i % 10000 == 0)
            texts << QStringLiteral("Survey %1").arg(i / 10000) << QString();
        const double outside = i % 1000 == 999 ? 50000.0 : 0.0;
        const double x = 500000.0 + std::fmod(i * 7919.123, 40000.0) + outside;
        const double y = 4000000.0 + std::fmod(i * 104.729, 40000.0);
        texts << QString::number(x, 'f', 3) << QString::number(y, 'f', 3);
    }
    return texts;
}

} // namespace

int main(int argc, char** argv)
{
    QStringList arguments;
    for (int i = 1; i < argc; ++i)
        arguments << QString::fromLocal8Bit(argv[i]);
    QString geotiff;
    const int option = arguments.indexOf(QStringLiteral("--geotiff"));
    if (option >= 0 && option + 1 < arguments.size()) {
        geotiff = arguments.at(option + 1);
        arguments.erase(arguments.begin() + option, arguments.begin() + option + 2);
    }
    if (arguments.size() != 2 && arguments.size() != 4)
        return std::fprintf(stderr, "usage: bench_elevation <points> <output.xlsx> [columns rows] "
                                    "[--geotiff <dem.tif>]\n"), 2;
    const int pointCount = arguments.at(0).toInt();
    const QString path = arguments.at(1);
    const int columns = arguments.size() == 4 ? arguments.at(2).toInt() : 4000;
    const int rows = arguments.size() == 4 ? arguments.at(3).toInt() : 4000;

    bench::Stopwatch clock;
    TsRefPtr<TsRasterProps> model = geotiff.isEmpty() ? memoryModel(columns, rows)
                                                      : geotiffModel(columns, rows, geotiff);
    if (!model)
        return 1;
    const auto raster = TsRefPtr<TimedRaster>::create(std::move(model));
    const QStringList points = pointTexts(pointCount);
    clock.report("prepare");
    if (!VyExcelUtil::saveQueryElevationOutputFile(path, points, raster))
        return std::fprintf(stderr, "the report was not saved\n"), 1;
    clock.report("report");
    bench::reportFigure("raster-seconds", raster->seconds());
    bench::reportFigure("raster-reads", static_cast<double>(raster->reads()));
    bench::reportFigure("points", pointCount);
    return 0;
}
