#ifndef VYGIS_TSMEMORYRASTER_H
#define VYGIS_TSMEMORYRASTER_H

#include "tsraster.h"
#include "vygishost_export.h"

#include <vector>

namespace VyObjects {

// A one-band grid of doubles spread evenly over an extent, such as a small
// elevation model. Values are given row by row from the top (maximum y).
// Cells holding the no-data value (or NaN) hold no value.
class VYGIS_HOST_EXPORT TsMemoryRaster : public TsRasterProps
{
public:
    static constexpr double DefaultNoData = -9999.0;

    // columns and rows below 1 count as 1.
    TsMemoryRaster(const TsRect& extent, int columns, int rows,
                   double noDataValue = DefaultNoData);

    // Cells outside the grid are ignored.
    void SetValue(int column, int row, double value);
    // Fills from the top left, row by row; surplus values are ignored.
    void SetValues(const std::vector<double>& values);
    double GetNoDataValue() const { return m_noData; }

    TsRect GetExtent() const override { return m_extent; }
    double GetPixelSizeX() const override;
    double GetPixelSizeY() const override;
    int GetColumnCount() const override { return m_columns; }
    int GetRowCount() const override { return m_rows; }
    TsRefPtr<TsPixelBlock> CreatePixelBlock(const TsSize& size) const override;
    bool ReadPixelBlock(TsPoint cell, TsPixelBlock* block, int level) const override;

protected:
    ~TsMemoryRaster() override;

private:
    bool holdsNoValue(double value) const;

    TsRect m_extent;
    int m_columns;
    int m_rows;
    double m_noData;
    std::vector<double> m_values;
};

} // namespace VyObjects

#endif // VYGIS_TSMEMORYRASTER_H
