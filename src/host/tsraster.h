#ifndef VYGIS_TSRASTER_H
#define VYGIS_TSRASTER_H

#include "tsbase.h"
#include "vygishost_export.h"

#include <vector>

namespace VyObjects {

// A rectangle of raster cells copied out of one or more bands. Cells that
// have not been read, or lie outside the raster, hold the no-data value.
class VYGIS_HOST_EXPORT TsPixelBlock : public TsRefBase
{
public:
    TsPixelBlock(const TsSize& size, int bandCount, double noDataValue);

    TsSize GetSize() const { return m_size; }
    int GetBandCount() const { return m_bandCount; }
    double GetNoDataValue() const { return m_noData; }

    // band counts from 1, column and row from 0 at the block's top left.
    // Any index outside the block gives the no-data value.
    double GetPixelValue(int band, int column, int row) const;
    void SetPixelValue(int band, int column, int row, double value);
    // Sets every cell of every band to the no-data value.
    void Clear();

private:
    bool contains(int band, int column, int row) const;
    std::size_t offset(int band, int column, int row) const;

    TsSize m_size;
    int m_bandCount;
    double m_noData;
    std::vector<double> m_values;
};

// What a raster dataset tells about itself and how its cells are read.
// Cells are addressed by column from the left (minimum x) edge and row from
// the top (maximum y) edge, both from 0.
class VYGIS_HOST_EXPORT TsRasterProps : public TsRefBase
{
public:
    virtual TsRect GetExtent() const = 0;
    virtual double GetPixelSizeX() const = 0;
    virtual double GetPixelSizeY() const = 0;
    virtual int GetColumnCount() const = 0;
    virtual int GetRowCount() const = 0;

    // A block of size cells for every band, all no-data; null for an empty
    // or negative size.
    virtual TsRefPtr<TsPixelBlock> CreatePixelBlock(const TsSize& size) const = 0;
    // Fills block with the cells whose top left is cell (column, row; the
    // fractions are dropped toward minus infinity) at overview level 0, the
    // full resolution. Cells outside the raster, and cells that hold no
    // value, become no-data. Returns false, with block all no-data, when no
    // cell of it holds a value (none lies inside the raster, or each one
    // inside is a no-data cell), for a null block or for a level the raster
    // does not have.
    virtual bool ReadPixelBlock(TsPoint cell, TsPixelBlock* block, int level) const = 0;

protected:
    ~TsRasterProps() override;
};

} // namespace VyObjects

#endif // VYGIS_TSRASTER_H
