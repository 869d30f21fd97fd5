#include "test_import_support.h"

namespace VyObjects {
static void PrintTo(const TsPoint& point, std::ostream* out)
{
    *out << '(' << point.x << ", " << point.y << ')';
}
} // namespace VyObjects

namespace {

using VyObjects::TsPoint;
using Points = std::vector<TsPoint>;
using CoordinateFiles = ImportTest;

TEST_F(CoordinateFiles, PairsTextsInReadingOrderIntoAClosedRing)
{
    const struct { QList<QVariantList> rows; Points ring; } cases[] = {
        {{{10, 20}, {30.5, "40"}, {50, 60}, {70, 80}}, {{10, 20}, {30.5, 40}, {50, 60}, {70, 80}, {10, 20}}},
        // A header row is data too; texts that are no numbers, a decimal comma too, read as zero.
        {{{"X", "Y"}, {"12,5", 3}}, {{0, 0}, {0, 3}, {0, 0}}},
        {{{1, 100, 200}, {2, 300, 400}}, {{1, 100}, {200, 2}, {300, 400}, {1, 100}}},
        // A missing cell is zero, and a stored blank is passed over: five texts do not pair.
        {{{5, QVariant()}, {7, 8}}, {{5, 0}, {7, 8}, {5, 0}}},
        {{{5, StoredBlank}, {7, 8}, {9, 10}}, {}},
        {{{5, StoredBlank, 6}, {7, StoredBlank, 8}}, {{5, 6}, {7, 8}, {5, 6}}},
        {{{1, 2, 3}}, {}},
        // A table typed away from A1 is read where it stands.
        {{{}, {}, {QVariant(), 3, 30, 300}, {QVariant(), 4, 40, 400}}, {{3, 30}, {300, 4}, {40, 400}, {3, 30}}},
    };
    for (const auto& c : cases)
        EXPECT_EQ(VyExcelUtil::readCoordinateFile(rows(c.rows)), c.ring);
    EXPECT_EQ(VyExcelUtil::readCoordinateFile(path("missing.xlsx")), Points{});
}

TEST_F(CoordinateFiles, TextsKeepTheirPositionsRowByRowLeavingAPointNumberOut)
{
    const struct { QList<QVariantList> rows; QStringList texts; } cases[] = {
        {{{"X", "Y"}, {12.5}, {" 7 ", StoredBlank}}, {"X", "Y", "12.5", "", " 7 ", ""}},
        {{{1, 100, 200}, {2, 300, 400}}, {"100", "200", "300", "400"}},   // three columns
        {{{1, 2, 3, 4}}, {"1", "2", "3", "4"}},
        {{{}, {}, {QVariant(), 3, 30, 300}, {QVariant(), 4, 40, 400}}, {"30", "300", "40", "400"}},
    };
    for (const auto& c : cases)
        EXPECT_EQ(VyExcelUtil::readCoordinateFile2(rows(c.rows)), c.texts);
    EXPECT_TRUE(VyExcelUtil::readCoordinateFile2(path("missing.xlsx")).isEmpty());
    EXPECT_TRUE(VyExcelUtil::readCoordinateFile2(QString()).isEmpty());
    EXPECT_TRUE(VyExcelUtil::readCoordinateFile2(workbook([](QXlsx::Document& empty) { empty.addSheet("Sheet1"); }))
                    .isEmpty());
}

} // namespace
