#include "hosttesting.h"

#include "tsmemoryraster.h"

#include <limits>

using namespace VyObjects;

namespace {

// Three columns by two rows over x 100..130, y 200..220: cells 10 by 10.
class RasterTest : public ReferenceBalanceTest
{
protected:
    void SetUp() override
    {
        ReferenceBalanceTest::SetUp();
        raster = TsRefPtr<TsMemoryRaster>::create(TsRect(100, 130, 200, 220), 3, 2);
        raster->SetValues({1, 2, 3,
                           4, 5, -6});
        block = raster->CreatePixelBlock(TsSize(1, 1));
    }

    void TearDown() override
    {
        block.reset();
        raster.reset();
        ReferenceBalanceTest::TearDown();
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

TEST_F(RasterTest, DescribesItsGrid)
{
    EXPECT_EQ(raster->GetExtent().maxY, 220.0);
    EXPECT_EQ(raster->GetPixelSizeX(), 10.0);
    EXPECT_EQ(raster->GetPixelSizeY(), 10.0);
}

TEST_F(RasterTest, RowsCountDownFromTheTopEdge)
{
    EXPECT_EQ(readCell(0, 0), 1.0);
    EXPECT_EQ(readCell(2, 1), -6.0);
    EXPECT_EQ(readCell(1, 1), 5.0);
}

TEST_F(RasterTest, FractionalCellsAreCutDown)
{
    EXPECT_EQ(readCell(1.9, 0.99), 2.0);
}

TEST_F(RasterTest, ReadingOnePastTheEdgeGivesNoData)
{
    bool read = true;
    EXPECT_EQ(readCell(3, 0, &read), TsMemoryRaster::DefaultNoData);
    EXPECT_FALSE(read);
    EXPECT_EQ(readCell(0, 2, &read), TsMemoryRaster::DefaultNoData);
    EXPECT_FALSE(read);
    EXPECT_EQ(readCell(-0.5, 0, &read), TsMemoryRaster::DefaultNoData);
    EXPECT_FALSE(read);
}

TEST_F(RasterTest, AFailedReadDoesNotKeepTheLastValue)
{
    readCell(0, 0);
    EXPECT_EQ(readCell(5, 5), TsMemoryRaster::DefaultNoData);
}

TEST_F(RasterTest, AbsurdCellPositionsAreOutside)
{
    bool read = true;
    readCell(1e300, 0, &read);
    EXPECT_FALSE(read);
    readCell(std::numeric_limits<double>::quiet_NaN(), 0, &read);
    EXPECT_FALSE(read);
    readCell(-1e300, -1e300, &read);
    EXPECT_FALSE(read);
}

TEST_F(RasterTest, BlocksOverTheEdgeReadWhatIsInside)
{
    const TsRefPtr<TsPixelBlock> wide = raster->CreatePixelBlock(TsSize(2, 2));
    ASSERT_TRUE(raster->ReadPixelBlock(TsPoint(2, 1), wide.get(), 0));
    EXPECT_EQ(wide->GetPixelValue(1, 0, 0), -6.0);
    EXPECT_EQ(wide->GetPixelValue(1, 1, 0), TsMemoryRaster::DefaultNoData);
    EXPECT_EQ(wide->GetPixelValue(1, 0, 1), TsMemoryRaster::DefaultNoData);
}

TEST_F(RasterTest, IndexesOutsideTheBlockGiveNoData)
{
    readCell(0, 0);
    EXPECT_EQ(block->GetPixelValue(0, 0, 0), TsMemoryRaster::DefaultNoData);
    EXPECT_EQ(block->GetPixelValue(2, 0, 0), TsMemoryRaster::DefaultNoData);
    EXPECT_EQ(block->GetPixelValue(1, 1, 0), TsMemoryRaster::DefaultNoData);
    EXPECT_EQ(block->GetPixelValue(1, 0, -1), TsMemoryRaster::DefaultNoData);
}

TEST_F(RasterTest, RefusesMissingBlocksLevelsAndSizes)
{
    EXPECT_FALSE(raster->ReadPixelBlock(TsPoint(0, 0), nullptr, 0));
    EXPECT_FALSE(raster->ReadPixelBlock(TsPoint(0, 0), block.get(), 1));
    EXPECT_TRUE(raster->CreatePixelBlock(TsSize(0, 1)).isNull());
    EXPECT_TRUE(raster->CreatePixelBlock(TsSize(1, -1)).isNull());
}
