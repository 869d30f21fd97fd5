// The elevation report of many points against a large elevation model, with the time
// spent in the raster (creating and filling pixel blocks) told apart from the rest, which
// is the workbook: formatting the texts, writing the cells and saving.
//
//     bench_elevation <points> <output.xlsx> [columns rows]    default grid 4000 x 4000

#include "vygisutil.h"

#include "benchclock.h"

#include "tsmemoryraster.h"

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
public:
    explicit TimedRaster(TsRefPtr<TsRasterProps> raster) : m_raster(std::move(raster)) {}

    double seconds() const { return m_seconds; }
    long long reads() const { return m_reads; }

    TsRect GetExtent() const override { return m_raster->GetExtent(); }
    double GetPixelSizeX() const override { return m_raster->GetPixelSizeX(); }
    double GetPixelSizeY() const override { return m_raster->GetPixelSizeY(); }
    int GetColumnCount() const override { return m_raster->GetColumnCount(); }
    int GetRowCount() const override { return m_raster->GetRowCount(); }

    TsRefPtr<TsPixelBlock> CreatePixelBlock(const TsSize& size) const override
    {
        const auto start = std::chrono::steady_clock::now();
        TsRefPtr<TsPixelBlock> block = m_raster->CreatePixelBlock(size);
        m_seconds += std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
        return block;
    }

    bool ReadPixelBlock(TsPoint cell, TsPixelBlock* block, int level) const override
    {
        const auto start = std::chrono::steady_clock::now();
        const bool read = m_raster->ReadPixelBlock(cell, block, level);
        m_seconds += std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
        ++m_reads;
        return read;
    }

protected:
    ~TimedRaster() override = default;

private:
    TsRefPtr<TsRasterProps> m_raster;
    mutable double m_seconds = 0.0;
    mutable long long m_reads = 0;
};

// A hilly surface over 40 km x 40 km in metres.
TsRefPtr<TsRasterProps> elevationModel(int columns, int rows)
{
    const TsRect extent(500000.0, 540000.0, 4000000.0, 4040000.0);
    auto raster = TsRefPtr<TsMemoryRaster>::create(extent, columns, rows);
    std::vector<double> values(static_cast<std::size_t>(columns) * rows);
    for (int row = 0; row < rows; ++row) {
        for (int column = 0; column < columns; ++column)
            values[static_cast<std::size_t>(row) * columns + column] =
                800.0 + 300.0 * std::sin(column * 0.01) * std::cos(row * 0.013);
    }
    raster->SetValues(values);
    return raster;
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
    if (argc != 3 && argc != 5)
        return std::fprintf(stderr, "usage: bench_elevation <points> <output.xlsx> [columns rows]\n"), 2;
    const int pointCount = std::atoi(argv[1]);
    const QString path = QString::fromLocal8Bit(argv[2]);
    const int columns = argc == 5 ? std::atoi(argv[3]) : 4000;
    const int rows = argc == 5 ? std::atoi(argv[4]) : 4000;

    bench::Stopwatch clock;
    const auto raster = TsRefPtr<TimedRaster>::create(elevationModel(columns, rows));
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
