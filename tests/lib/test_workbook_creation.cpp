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

} // namespace
