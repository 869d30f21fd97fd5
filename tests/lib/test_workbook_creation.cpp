#include "vygisutil.h"

#include "xlsxdocument.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace {

class WorkbookCreation : public ::testing::Test
{
protected:
    QString path(const QString& name) const { return m_dir.filePath(name); }

    static QByteArray contentOf(const QString& path)
    {
        QFile file(path);
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }

    QTemporaryDir m_dir;
};

void expectBlankWorkbook(const QString& path)
{
    QXlsx::Document document(path);
    EXPECT_EQ(document.sheetNames(), QStringList{QStringLiteral("Sheet1")});
    ASSERT_NE(document.currentWorksheet(), nullptr);
    EXPECT_FALSE(document.dimension().isValid());
}

TEST_F(WorkbookCreation, CreateMakesABlankWorkbookWhereNoFileExists)
{
    const QString file = path(QStringLiteral("new.xlsx"));
    VyExcelUtil::createExcel(file);
    ASSERT_TRUE(QFile::exists(file));
    expectBlankWorkbook(file);
}

TEST_F(WorkbookCreation, CreateLeavesAnExistingFileAlone)
{
    const QString file = path(QStringLiteral("notes.xlsx"));
    {
        QFile existing(file);
        ASSERT_TRUE(existing.open(QIODevice::WriteOnly));
        existing.write("not a workbook at all");
    }
    VyExcelUtil::createExcel(file);
    EXPECT_EQ(contentOf(file), QByteArray("not a workbook at all"));
}

TEST_F(WorkbookCreation, CreateUsesThePathAsGiven)
{
    const QString noExtension = path(QStringLiteral("book"));
    VyExcelUtil::createExcel(noExtension);
    EXPECT_TRUE(QFile::exists(noExtension));
    EXPECT_FALSE(QFile::exists(noExtension + QStringLiteral(".xlsx")));

    const QString inMissingFolder = path(QStringLiteral("missing/book.xlsx"));
    VyExcelUtil::createExcel(inMissingFolder);
    EXPECT_FALSE(QFile::exists(inMissingFolder));
}

TEST_F(WorkbookCreation, ClearEmptiesAWorkbookOfSeveralSheets)
{
    const QString file = path(QStringLiteral("data.xlsx"));
    {
        QXlsx::Document document;
        document.write(1, 1, QStringLiteral("kept?"));
        document.addSheet(QStringLiteral("Second"));
        document.write(3, 3, 42);
        ASSERT_TRUE(document.saveAs(file));
    }
    EXPECT_TRUE(VyExcelUtil::clearExcel(file));
    expectBlankWorkbook(file);
}

TEST_F(WorkbookCreation, ClearOnAMissingPathCreatesNothing)
{
    const QString file = path(QStringLiteral("absent.xlsx"));
    EXPECT_FALSE(VyExcelUtil::clearExcel(file));
    EXPECT_FALSE(QFile::exists(file));
}

} // namespace
