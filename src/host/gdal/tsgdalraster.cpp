// Raster properties over one band of a GDAL raster. The host counts rows from
// the top (maximum y) edge; a grid stored from the bottom up is turned over.
// Cells the band marks as holding no value (its no-data value, a mask or an
// alpha band) read as the block's no-data value, whatever number they store.

#include "tsgdal_p.h"

#include <cmath>
#include <limits>
#include <vector>

namespace VyObjects {

namespace {

// Where a band has no no-data value of its own, cells outside it read as this.
const double DefaultNoData = -9999.0;

long long cellIndex(double position)
{
    if (std::isnan(position))
        return std::numeric_limits<int>::min();
    const double limit = static_cast<double>(std::numeric_limits<int>::max());
    return static_cast<long long>(std::clamp(std::floor(position), -limit, limit));
}

// Which cells of a window hold a value, as GDAL's mask of the band gives them
// (0: no value), stored rows in stored order. Left empty for a band whose
// cells all hold values, the common case that needs no second read.
bool readValidity(GDALRasterBand& band, int column, int row, int width, int height,
                  std::vector<GByte>& valid)
{
    valid.clear();
    if (band.GetMaskFlags() & GMF_ALL_VALID)
        return true;
    GDALRasterBand* mask = band.GetMaskBand();
    if (!mask)
        return true;
    valid.resize(static_cast<std::size_t>(width) * static_cast<std::size_t>(height));
    return mask->RasterIO(GF_Read, column, row, width, height, valid.data(), width, height,
                          GDT_Byte, 0, 0, nullptr)
        == CE_None;
}

class TsGdalRaster : public TsRasterProps
{
public:
    TsGdalRaster(const TsRefPtr<TsGdalDataSource>& source, GDALRasterBand* band, const double* transform)
        : m_source(source), m_band(band)
    {
        int hasNoData = FALSE;
        const double noData = band->GetNoDataValue(&hasNoData);
        m_noData = hasNoData ? noData : DefaultNoData;
        const int columns = band->GetXSize();
        const int rows = band->GetYSize();
        const double right = transform[0] + columns * transform[1];
        const double bottom = transform[3] + rows * transform[5];
        m_extent = TsRect(std::min(transform[0], right), std::max(transform[0], right),
                          std::min(transform[3], bottom), std::max(transform[3], bottom));
        m_pixelSizeX = std::fabs(transform[1]);
        m_pixelSizeY = std::fabs(transform[5]);
        m_bottomUp = transform[5] > 0;
    }

    TsRect GetExtent() const override { return m_extent; }
    double GetPixelSizeX() const override { return m_pixelSizeX; }
    double GetPixelSizeY() const override { return m_pixelSizeY; }
    int GetColumnCount() const override { return m_band->GetXSize(); }
    int GetRowCount() const override { return m_band->GetYSize(); }

    TsRefPtr<TsPixelBlock> CreatePixelBlock(const TsSize& size) const override
    {
        if (size.width <= 0 || size.height <= 0)
            return nullptr;
        return TsRefPtr<TsPixelBlock>::create(size, 1, m_noData);
    }

    bool ReadPixelBlock(TsPoint cell, TsPixelBlock* block, int level) const override;

private:
    GDALRasterBand* bandAt(int level) const
    {
        if (level == 0)
            return m_band;
        return level > 0 && level <= m_band->GetOverviewCount() ? m_band->GetOverview(level - 1) : nullptr;
    }

    TsRefPtr<TsGdalDataSource> m_source;
    GDALRasterBand* m_band;
    TsRect m_extent;
    double m_pixelSizeX = 0.0;
    double m_pixelSizeY = 0.0;
    double m_noData = DefaultNoData;
    bool m_bottomUp = false;
};

bool TsGdalRaster::ReadPixelBlock(TsPoint cell, TsPixelBlock* block, int level) const
{
    if (!block)
        return false;
    block->Clear();
    GDALRasterBand* band = bandAt(level);
    if (!band)
        return false;
    const long long columns = band->GetXSize();
    const long long rows = band->GetYSize();
    const long long left = cellIndex(cell.x);
    const long long top = cellIndex(cell.y);
    const TsSize size = block->GetSize();
    const long long firstColumn = std::max(left, 0LL);
    const long long lastColumn = std::min(left + size.width, columns);
    const long long firstRow = std::max(top, 0LL);
    const long long lastRow = std::min(top + size.height, rows);
    if (firstColumn >= lastColumn || firstRow >= lastRow)
        return false;

    const int width = static_cast<int>(lastColumn - firstColumn);
    const int height = static_cast<int>(lastRow - firstRow);
    const long long storedRow = m_bottomUp ? rows - lastRow : firstRow;
    const std::size_t count = static_cast<std::size_t>(width) * static_cast<std::size_t>(height);
    std::vector<double> values(count);
    std::vector<GByte> valid;
    TsGdalErrorTrap trap;
    if (band->RasterIO(GF_Read, static_cast<int>(firstColumn), static_cast<int>(storedRow), width,
                       height, values.data(), width, height, GDT_Float64, 0, 0, nullptr)
            != CE_None
        || !readValidity(*band, static_cast<int>(firstColumn), static_cast<int>(storedRow), width,
                         height, valid))
        return false;
    bool anyValue = false;
    for (int row = 0; row < height; ++row) {
        const int sourceRow = m_bottomUp ? height - 1 - row : row;
        for (int column = 0; column < width; ++column) {
            const std::size_t at = static_cast<std::size_t>(sourceRow) * static_cast<std::size_t>(width)
                                 + static_cast<std::size_t>(column);
            // NaN is no elevation, also in a band that declares no no-data value.
            if ((!valid.empty() && valid[at] == 0) || std::isnan(values[at]))
                continue;
            block->SetPixelValue(1, static_cast<int>(firstColumn - left) + column,
                                 static_cast<int>(firstRow - top) + row, values[at]);
            anyValue = true;
        }
    }
    return anyValue;
}

} // namespace

TsRefPtr<TsRasterProps> makeGdalRaster(const TsRefPtr<TsGdalDataSource>& source, int band,
                                       QString* error)
{
    GDALDataset& dataset = *source->dataset();
    const int bandCount = dataset.GetRasterCount();
    if (bandCount == 0) {
        setError(error, source->path() + QStringLiteral(": holds no raster"));
        return nullptr;
    }
    if (band < 1 || band > bandCount) {
        setError(error, source->path() + QStringLiteral(": has no band %1 (bands 1 to %2)").arg(band).arg(bandCount));
        return nullptr;
    }
    double transform[6] = {0.0, 1.0, 0.0, 0.0, 0.0, 1.0};
    TsGdalErrorTrap trap;
    if (dataset.GetGeoTransform(transform) != CE_None) {
        // Without georeferencing, cells are one unit wide and rows run down from y = 0.
        transform[5] = -1.0;
    }
    if (transform[2] != 0.0 || transform[4] != 0.0) {
        setError(error, source->path() + QStringLiteral(": the grid is rotated, which rasters cannot describe"));
        return nullptr;
    }
    return TsRefPtr<TsRasterProps>(new TsGdalRaster(source, dataset.GetRasterBand(band), transform));
}

bool TsGdalDataSource::createRaster(const QString& path, const TsRect& extent, int columns, int rows,
                                    const std::vector<double>& values, double noDataValue,
                                    QString* error, const QString& driverName)
{
    registerGdalDrivers();
    const QString name = driverName.isEmpty() ? QStringLiteral("GTiff") : driverName;
    if (QFileInfo::exists(path)) {
        setError(error, path + QStringLiteral(": a file already stands there"));
        return false;
    }
    GDALDriver* driver = GetGDALDriverManager()->GetDriverByName(name.toUtf8().constData());
    if (!driver || !driver->GetMetadataItem(GDAL_DCAP_CREATE)) {
        setError(error, path + QStringLiteral(": GDAL has no driver \"%1\" that creates rasters").arg(name));
        return false;
    }
    if (columns < 1 || rows < 1 || !(extent.Width() > 0.0) || !(extent.Height() > 0.0)) {
        setError(error, path + QStringLiteral(": a raster needs cells and an extent"));
        return false;
    }
    TsGdalErrorTrap trap;
    GDALDataset* dataset = driver->Create(path.toUtf8().constData(), columns, rows, 1, GDT_Float64, nullptr);
    if (!dataset) {
        setError(error, path + QStringLiteral(": the raster could not be created") + trap.reason());
        return false;
    }
    double transform[6] = {extent.minX, extent.Width() / columns, 0.0,
                           extent.maxY, 0.0, -extent.Height() / rows};
    dataset->SetGeoTransform(transform);
    GDALRasterBand* band = dataset->GetRasterBand(1);
    band->SetNoDataValue(noDataValue);
    std::vector<double> cells(static_cast<std::size_t>(columns) * static_cast<std::size_t>(rows), noDataValue);
    std::copy_n(values.begin(), std::min(values.size(), cells.size()), cells.begin());
    const bool written = band->RasterIO(GF_Write, 0, 0, columns, rows, cells.data(), columns, rows,
                                        GDT_Float64, 0, 0, nullptr) == CE_None;
    GDALClose(dataset);
    if (written && trap.lastError().isEmpty())
        return true;
    setError(error, path + QStringLiteral(": the raster could not be written") + trap.reason());
    return false;
}

} // namespace VyObjects
