// Creating, clearing and reading whole workbooks.

#include "libtesting.h"

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
