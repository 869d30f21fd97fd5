// Creating, clearing and reading whole workbooks.

#include "libtesting.h"

#include <iterator>

namespace {

using WorkbookCreation = LibraryTest;

void expectBlankWorkbook(const QString& path)
{
    QXlsx::Document document(path);
    EXPECT_EQ(document.sheetNames(), QStringList{QStringLiteral("Sheet1")});
    ASSERT_NE(document.currentWorksheet(), nullptr);
    EXPECT_FALSE(document.dimension().isValid());
}

TEST_F(WorkbookCreation, CreateMakesABlankWorkbookAtThePathAsGivenWhereNoFileExists)
{
    const QString file = path(QStringLiteral("new.xlsx"));
    VyExcelUtil::createExcel(file);
    ASSERT_TRUE(QFile::exists(file));
    expectBlankWorkbook(file);
    const QString noExtension = path(QStringLiteral("book"));
    VyExcelUtil::createExcel(noExtension);
    EXPECT_TRUE(QFile::exists(noExtension));
    EXPECT_FALSE(QFile::exists(noExtension + QStringLiteral(".xlsx")));
    const QString inMissingFolder = path(QStringLiteral("missing/book.xlsx"));
    VyExcelUtil::createExcel(inMissingFolder);
    EXPECT_FALSE(QFile::exists(inMissingFolder));
    const QString existing = fileWith("not a workbook at all");
    VyExcelUtil::createExcel(existing);
    EXPECT_EQ(bytesOf(existing), QByteArray("not a workbook at all"));
}

TEST_F(WorkbookCreation, ClearEmptiesAWorkbookOfSeveralSheetsButCreatesNothing)
{
    const QString file = workbook([](QXlsx::Document& document) {
        document.write(1, 1, QStringLiteral("kept?"));
        document.addSheet(QStringLiteral("Second"));
        document.write(3, 3, 42);
    });
    EXPECT_TRUE(VyExcelUtil::clearExcel(file));
    expectBlankWorkbook(file);
    EXPECT_FALSE(VyExcelUtil::clearExcel(path(QStringLiteral("absent.xlsx"))));
    EXPECT_FALSE(QFile::exists(path(QStringLiteral("absent.xlsx"))));
}

using SheetReading = LibraryTest;
using Rows = std::vector<QStringList>;

TEST_F(SheetReading, GivesEveryRowFromA1AsTextsWithEmptyStringsWhereNoCellIs)
{
    const struct { QList<QVariantList> cells; Rows rows; } cases[] = {
        {{{"A1", "B1", "C1"}, {"A2", QVariant(), "C2"}}, {{"A1", "B1", "C1"}, {"A2", "", "C2"}}},
        {{{"top"}, {}, {QVariant(), "bottom"}}, {{"top", ""}, {"", ""}, {"", "bottom"}}},
        {{{12.5, 3, true}}, {{"12.5", "3", "true"}}},   // the variant's text of a number
        {{{}, {}, {QVariant(), "B3"}, {QVariant(), QVariant(), "C4"}},
         {{"", "", ""}, {"", "", ""}, {"", "B3", ""}, {"", "", "C4"}}},
    };
    // Rows are appended behind what the vector held.
    Rows read{QStringList{QStringLiteral("before")}};
    for (const auto& c : cases) {
        VyExcelUtil::getExcelData(rows(c.cells), read);
        EXPECT_EQ(Rows(read.end() - c.rows.size(), read.end()), c.rows);
    }
    EXPECT_EQ(read.front(), QStringList{"before"});
    EXPECT_EQ(read.size(), 11u);
}

// Formats of whole rows and columns written out cell by cell, and stray formats, as other
// programs leave them: the sheet still reads as the rows its values stand in.
TEST_F(SheetReading, TwoRowsOfValuesReadAsTwoRowsWhateverFormatsLieAroundThem)
{
    constexpr int LastRow = 1048576, LastColumn = 16384;
    QXlsx::Format bold;
    bold.setFontBold(true);
    const std::function<void(QXlsx::Document&)> formats[] = {
        [&](QXlsx::Document& d) { d.write(LastRow, LastColumn, QVariant(), bold); },
        [&](QXlsx::Document& d) { d.write(LastRow - 1, LastColumn - 1, QVariant(), bold); },
        [&](QXlsx::Document& d) {
            for (int column = 3; column <= LastColumn; ++column) {
                d.write(1, column, QVariant(), bold);
                d.write(2, column, QVariant(), bold);
            }
        },
        [&](QXlsx::Document& d) {
            for (int row = 3; row <= LastRow; ++row)
                d.write(row, 1, QVariant(), bold);
        },
    };
    for (size_t f = 0; f < std::size(formats); ++f) {
        Rows read;
        VyExcelUtil::getExcelData(workbook([&](QXlsx::Document& d) {
            d.write(1, 1, QStringLiteral("name"));
            d.write(1, 2, QStringLiteral("value"));
            d.write(2, 1, QStringLiteral("x"));
            d.write(2, 2, 12.5);
            formats[f](d);
        }), read);
        EXPECT_EQ(read, (Rows{{"name", "value"}, {"x", "12.5"}})) << "formats " << f;
    }
}

TEST_F(SheetReading, NothingIsAppendedForMissingEmptyOrFarTooWideSheets)
{
    Rows read;
    VyExcelUtil::getExcelData(path("absent.xlsx"), read);
    VyExcelUtil::getExcelData(workbook([](QXlsx::Document& empty) { empty.addSheet(QStringLiteral("Sheet1")); }), read);
    // A far-away stray cell must not exhaust memory.
    VyExcelUtil::getExcelData(workbook([](QXlsx::Document& document) {
        document.write(1, 1, QStringLiteral("data"));
        document.write(1048576, 16384, QStringLiteral("stray"));
    }), read);
    EXPECT_TRUE(read.empty());
}

} // namespace
