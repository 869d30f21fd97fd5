#include "hosttesting.h"

#include "tsmemoryraster.h"

#include <array>
#include <limits>

using namespace VyObjects;

namespace {

// Three columns by two rows over x 100..130, y 200..220: cells 10 by 10.
class RasterTest : public ReferenceBalanceTest
{
protected:
    RasterTest()
        : raster(TsRefPtr<TsMemoryRaster>::create(TsRect(100, 130, 200, 220), 3, 2))
    {
        raster->SetValues({1, 2, 3,
                           4, 5, -6});
        block = raster->CreatePixelBlock(TsSize(1, 1));
    }

    double readCell(double column, double row, bool* read = nullptr)
    {
        const bool result = raster->ReadPixelBlock(TsPoint(column, row), block.get(), 0);
        if (read)
            *read = result;
        return block->GetPixelValue(1, 0, 0);
    }

    TsRefPtr<TsMemoryRaster> raster;
    TsRefPtr<TsPixelBlock> block;
};

} // namespace

TEST_F(RasterTest, RowsCountDownFromTheTopEdgeAndFractionsAreCutDown)
{
    EXPECT_EQ(std::vector<double>({readCell(0, 0), readCell(2, 1), readCell(1, 1), readCell(1.9, 0.99)}),
              std::vector<double>({1.0, -6.0, 5.0, 2.0}));
}

TEST_F(RasterTest, CellsOutsideTheGridGiveNoData)
{
    const double nan = std::numeric_limits<double>::quiet_NaN();
    const double outside[][2] = {{3, 0}, {0, 2}, {-0.5, 0}, {5, 5}, {1e300, 0}, {nan, 0}, {-1e300, -1e300}};
    for (const auto& cell : outside) {
        readCell(0, 0);   // a failed read must not keep the last value
        bool read = true;
        EXPECT_EQ(readCell(cell[0], cell[1], &read), TsMemoryRaster::DefaultNoData) << cell[0] << "," << cell[1];
        EXPECT_FALSE(read) << cell[0] << "," << cell[1];
    }
}

TEST_F(RasterTest, BlocksOverTheEdgeReadWhatIsInside)
{
    const TsRefPtr<TsPixelBlock> wide = raster->CreatePixelBlock(TsSize(2, 2));
    ASSERT_TRUE(raster->ReadPixelBlock(TsPoint(2, 1), wide.get(), 0));
    EXPECT_EQ(wide->GetPixelValue(1, 0, 0), -6.0);
    EXPECT_EQ(wide->GetPixelValue(1, 1, 0), TsMemoryRaster::DefaultNoData);
    EXPECT_EQ(wide->GetPixelValue(1, 0, 1), TsMemoryRaster::DefaultNoData);
}

TEST_F(RasterTest, RefusesMissingBlocksLevelsAndSizesAndIndexesOutsideTheBlockGiveNoData)
{
    readCell(0, 0);
    for (const auto& index : {std::array<int, 3>{0, 0, 0}, {2, 0, 0}, {1, 1, 0}, {1, 0, -1}})
        EXPECT_EQ(block->GetPixelValue(index[0], index[1], index[2]), TsMemoryRaster::DefaultNoData);
    EXPECT_FALSE(raster->ReadPixelBlock(TsPoint(0, 0), nullptr, 0));
    EXPECT_FALSE(raster->ReadPixelBlock(TsPoint(0, 0), block.get(), 1));
    EXPECT_TRUE(raster->CreatePixelBlock(TsSize(0, 1)).isNull());
    EXPECT_TRUE(raster->CreatePixelBlock(TsSize(1, -1)).isNull());
}

TEST_F(RasterTest, CellsHoldingTheNoDataValueOrNaNHoldNoValue)
{
    raster->SetValue(1, 0, TsMemoryRaster::DefaultNoData);
    raster->SetValue(2, 0, std::numeric_limits<double>::quiet_NaN());
    for (const double column : {1.0, 2.0}) {
        bool read = true;
        EXPECT_EQ(readCell(column, 0, &read), TsMemoryRaster::DefaultNoData) << column;
        EXPECT_FALSE(read) << column;
    }
    const TsRefPtr<TsPixelBlock> wide = raster->CreatePixelBlock(TsSize(2, 1));
    EXPECT_TRUE(raster->ReadPixelBlock(TsPoint(0, 0), wide.get(), 0)) << "one cell holds a value";
}
