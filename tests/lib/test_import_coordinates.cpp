#include "test_import_support.h"

#include "vygisutil.h"

namespace VyObjects {
static void PrintTo(const TsPoint& point, std::ostream* out)
{
    *out << '(' << point.x << ", " << point.y << ')';
}
} // namespace VyObjects

namespace {

using VyObjects::TsPoint;
using Points = std::vector<TsPoint>;

class CoordinateFiles : public ImportTest
{
protected:
    static QXlsx::Format bold()
    {
        QXlsx::Format format;
        format.setFontBold(true);
        return format;
    }
};

TEST_F(CoordinateFiles, PairsTextsInReadingOrderIntoAClosedRing)
{
    const struct { QList<QVariantList> rows; Points ring; } cases[] = {
        {{{10, 20}, {30.5, "40"}, {50, 60}, {70, 80}}, {{10, 20}, {30.5, 40}, {50, 60}, {70, 80}, {10, 20}}},
        // A header row is data too; texts that are no numbers, a decimal comma too, read as zero.
        {{{"X", "Y"}, {"12,5", 3}}, {{0, 0}, {0, 3}, {0, 0}}},
        {{{1, 100, 200}, {2, 300, 400}}, {{1, 100}, {200, 2}, {300, 400}, {1, 100}}},
    };
    for (const auto& c : cases)
        EXPECT_EQ(VyExcelUtil::readCoordinateFile(rows(c.rows)), c.ring);
}

TEST_F(CoordinateFiles, AMissingCellIsZeroAndAStoredBlankIsPassedOver)
{
    const QString missing = rows({{5, QVariant()}, {7, 8}});
    EXPECT_EQ(VyExcelUtil::readCoordinateFile(missing), (Points{{5, 0}, {7, 8}, {5, 0}}));

    const QString blank = workbook([](QXlsx::Document& document) {
        document.write(1, 1, 5);
        document.write(1, 2, QVariant(), bold());
        document.write(2, 1, 7);
        document.write(2, 2, 8);
        document.write(3, 1, 9);
        document.write(3, 2, 10);
    }, "blank.xlsx");
    EXPECT_EQ(VyExcelUtil::readCoordinateFile(blank), Points{}); // five texts do not pair

    const QString shifted = workbook([](QXlsx::Document& document) {
        document.write(1, 1, 5);
        document.write(1, 2, QVariant(), bold());
        document.write(1, 3, 6);
        document.write(2, 1, 7);
        document.write(2, 2, QVariant(), bold());
        document.write(2, 3, 8);
    }, "shifted.xlsx");
    EXPECT_EQ(VyExcelUtil::readCoordinateFile(shifted), (Points{{5, 6}, {7, 8}, {5, 6}}));
}

TEST_F(CoordinateFiles, TextsKeepTheirPositionsRowByRow)
{
    const QString file = workbook([](QXlsx::Document& document) {
        document.write(1, 1, "X");
        document.write(1, 2, "Y");
        document.write(2, 1, 12.5);
        document.write(3, 2, QVariant(), bold());
        document.write(3, 1, " 7 ");
    });
    EXPECT_EQ(VyExcelUtil::readCoordinateFile2(file), (QStringList{"X", "Y", "12.5", "", " 7 ", ""}));
}

TEST_F(CoordinateFiles, AThreeColumnSheetLeavesThePointNumberOut)
{
    EXPECT_EQ(VyExcelUtil::readCoordinateFile2(rows({{1, 100, 200}, {2, 300, 400}})),
              (QStringList{"100", "200", "300", "400"}));
    EXPECT_EQ(VyExcelUtil::readCoordinateFile2(rows({{1, 2, 3, 4}}, "four.xlsx")),
              (QStringList{"1", "2", "3", "4"}));
}

TEST_F(CoordinateFiles, ATableTypedAwayFromA1IsReadWhereItStands)
{
    const QString file = workbook([](QXlsx::Document& document) {
        for (int row = 3; row <= 4; ++row) {
            document.write(row, 2, row);
            document.write(row, 3, row * 10);
            document.write(row, 4, row * 100);
        }
    });
    EXPECT_EQ(VyExcelUtil::readCoordinateFile2(file), (QStringList{"30", "300", "40", "400"}));
    EXPECT_EQ(VyExcelUtil::readCoordinateFile(file),
              (Points{{3, 30}, {300, 4}, {40, 400}, {3, 30}}));
}

TEST_F(CoordinateFiles, NothingToReadOrPairGivesNothing)
{
    EXPECT_EQ(VyExcelUtil::readCoordinateFile(path("missing.xlsx")), Points{});
    EXPECT_EQ(VyExcelUtil::readCoordinateFile(rows({{1, 2, 3}})), Points{});
    EXPECT_TRUE(VyExcelUtil::readCoordinateFile2(path("missing.xlsx")).isEmpty());
    EXPECT_TRUE(VyExcelUtil::readCoordinateFile2(QString()).isEmpty());
    QXlsx::Document empty;
    empty.addSheet("Sheet1");
    ASSERT_TRUE(empty.saveAs(path("empty.xlsx")));
    EXPECT_TRUE(VyExcelUtil::readCoordinateFile2(path("empty.xlsx")).isEmpty());
}

} // namespace
