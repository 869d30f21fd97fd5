#include "test_report_support.h"

#include "vygisutil.h"

#include "tsmemoryraster.h"

namespace {

using VyObjects::TsMemoryRaster;
using VyObjects::TsRasterProps;
using VyObjects::TsRefPtr;

const char* const Outside = "Not within the range of Dem data!";

class ElevationReport : public reporttest::ReportTest
{
protected:
    // 100 by 50 map units in cells of 25: the top row holds 10, 20, 30, 40, the bottom
    // row -5, 60.5, 70, 80.
    ElevationReport()
        : m_dem(TsRefPtr<TsMemoryRaster>::create(VyObjects::TsRect(0, 100, 0, 50), 4, 2))
    {
        m_dem->SetValues({10, 20, 30, 40, -5, 60.5, 70, 80});
    }
    bool query(const QStringList& points, const QString& file)
    {
        return VyExcelUtil::saveQueryElevationOutputFile(file, points,
                                                         TsRefPtr<TsRasterProps>(m_dem));
    }
    void query(const QStringList& points)
    {
        ASSERT_TRUE(query(points, path()));
        open(path());
    }

    TsRefPtr<TsMemoryRaster> m_dem;
};

TEST_F(ElevationReport, HeadingsRestartTheNumberingOfTheirPoints)
{
    reporttest::MarkingTranslator translator;
    query({"Wells", "", "10", "40", "130", "10", "", "Springs", "60", "20"});
    EXPECT_EQ(row(1, 3), QStringList({"-", "~XYCoordinate", "~Elevation info"}));
    EXPECT_EQ(row(2, 3), QStringList({"Wells", "-", "-"}));
    EXPECT_EQ(row(3, 3), QStringList({"1", "10.0000,40.0000", "10.0000"}));
    EXPECT_EQ(row(4, 3), QStringList({"2", "130.0000,10.0000", QString("~") + Outside}));
    EXPECT_EQ(row(5, 1), QStringList({"Springs"}));
    EXPECT_EQ(row(6, 3), QStringList({"1", "60.0000,20.0000", "70.0000"}));
}

TEST_F(ElevationReport, EdgesAreInsideAndReadTheCellTheyCloseAndGroundBelowZeroIsZero)
{
    query({"0", "50", "100", "50", "100", "0", "100.0001", "0", "50", "-0.0001", "1", "1"});
    EXPECT_EQ(m_book->read(2, 3), "10.0000");
    EXPECT_EQ(m_book->read(3, 3), "40.0000");
    EXPECT_EQ(m_book->read(4, 3), "80.0000");
    EXPECT_EQ(m_book->read(5, 3), Outside);
    EXPECT_EQ(m_book->read(6, 3), Outside);
    EXPECT_EQ(m_book->read(7, 3), "0.0000") << "ground below zero reads as zero";
}

TEST_F(ElevationReport, OnlyFiguresOfPointsInsideWidenTheColumns)
{
    query({"A heading longer than any figure", "", "-123456789", "7", "30", "30.5", "99", "1"});
    EXPECT_DOUBLE_EQ(m_book->columnWidth(2), 15 + 10.0) << "the longest, 30.0000,30.5000";
    EXPECT_DOUBLE_EQ(m_book->columnWidth(3), 7 + 10.0);

    query({});
    EXPECT_DOUBLE_EQ(m_book->columnWidth(2), m_book->columnWidth(1));
    EXPECT_EQ(m_book->dimension().lastRow(), 1);
}

TEST_F(ElevationReport, UnparsableTextsAndAnUnpairedEntryStayVisible)
{
    query({"east", "60", "5"});
    EXPECT_EQ(row(2, 2), QStringList({"1", "0.0000,60.0000"}));
    EXPECT_EQ(row(3, 1), QStringList({"5"}));
}

TEST_F(ElevationReport, PointTextsReadAndPrintAsQtReadsAndPrintsNumbers)
{
    query({" 7", "+8", "1e1", "-0", "-0.00001", "0.5", "12.", ".25"});
    EXPECT_EQ(m_book->read(2, 2), "7.0000,8.0000") << "blanks and a plus sign";
    EXPECT_EQ(m_book->read(3, 2), "10.0000,0.0000") << "an exponent; zero without a sign";
    EXPECT_EQ(m_book->read(4, 2), "-0.0000,0.5000") << "a negative rounding to zero keeps it";
    EXPECT_EQ(m_book->read(5, 2), "12.0000,0.2500");
}

TEST_F(ElevationReport, TheRasterReferenceAndBlockAreGivenBack)
{
    const long long liveObjects = VyObjects::TsRefBase::LiveObjectCount();
    EXPECT_TRUE(query({"10", "10", "20", "20"}, path()));
    EXPECT_FALSE(query({"10", "10"}, unwritablePath()));
    EXPECT_EQ(m_dem->RefCount(), 1);
    EXPECT_EQ(VyObjects::TsRefBase::LiveObjectCount(), liveObjects);
    EXPECT_FALSE(VyExcelUtil::saveQueryElevationOutputFile(path(), {"1", "1"}, nullptr));
}

} // namespace
