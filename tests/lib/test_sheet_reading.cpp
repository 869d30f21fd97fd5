#include "vygisutil.h"

#include "xlsxdocument.h"

#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace {

class SheetReading : public ::testing::Test
{
protected:
    QString save(QXlsx::Document& document)
    {
        const QString file = m_dir.filePath(QStringLiteral("sheet%1.xlsx").arg(++m_count));
        EXPECT_TRUE(document.saveAs(file));
        return file;
    }

    QTemporaryDir m_dir;
    int m_count = 0;
};

TEST_F(SheetReading, EmptyCellsBecomeEmptyStringsInTheirColumn)
{
    QXlsx::Document document;
    document.write(1, 1, QStringLiteral("A1"));
    document.write(1, 2, QStringLiteral("B1"));
    document.write(1, 3, QStringLiteral("C1"));
    document.write(2, 1, QStringLiteral("A2"));
    document.write(2, 3, QStringLiteral("C2"));
    std::vector<QStringList> rows;
    VyExcelUtil::getExcelData(save(document), rows);

    ASSERT_EQ(rows.size(), 2u);
    EXPECT_EQ(rows[0], (QStringList{"A1", "B1", "C1"}));
    EXPECT_EQ(rows[1], (QStringList{"A2", "", "C2"}));
}

TEST_F(SheetReading, ARowWithoutCellsGivesEmptyStrings)
{
    QXlsx::Document document;
    document.write(1, 1, QStringLiteral("top"));
    document.write(3, 2, QStringLiteral("bottom"));
    std::vector<QStringList> rows;
    VyExcelUtil::getExcelData(save(document), rows);

    ASSERT_EQ(rows.size(), 3u);
    EXPECT_EQ(rows[1], (QStringList{"", ""}));
}

TEST_F(SheetReading, NumbersComeAsTheirVariantText)
{
    QXlsx::Document document;
    document.write(1, 1, 12.5);
    document.write(1, 2, 3);
    document.write(1, 3, true);
    std::vector<QStringList> rows;
    VyExcelUtil::getExcelData(save(document), rows);

    ASSERT_EQ(rows.size(), 1u);
    EXPECT_EQ(rows[0], (QStringList{"12.5", "3", "true"}));
}

TEST_F(SheetReading, RowsAreAppendedBehindWhatTheVectorHeld)
{
    QXlsx::Document document;
    document.write(1, 1, QStringLiteral("x"));
    const QString file = save(document);
    std::vector<QStringList> rows{QStringList{QStringLiteral("before")}};
    VyExcelUtil::getExcelData(file, rows);
    VyExcelUtil::getExcelData(file, rows);

    ASSERT_EQ(rows.size(), 3u);
    EXPECT_EQ(rows[0], QStringList{"before"});
    EXPECT_EQ(rows[1], QStringList{"x"});
    EXPECT_EQ(rows[2], QStringList{"x"});
}

TEST_F(SheetReading, ARangeStartingAwayFromA1IsReadFromA1)
{
    QXlsx::Document document;
    document.write(3, 2, QStringLiteral("B3"));
    document.write(4, 3, QStringLiteral("C4"));
    std::vector<QStringList> rows;
    VyExcelUtil::getExcelData(save(document), rows);

    ASSERT_EQ(rows.size(), 4u);
    EXPECT_EQ(rows[0], (QStringList{"", "", ""}));
    EXPECT_EQ(rows[2], (QStringList{"", "B3", ""}));
    EXPECT_EQ(rows[3], (QStringList{"", "", "C4"}));
}

TEST_F(SheetReading, NothingIsAppendedForMissingOrUnreadableFiles)
{
    std::vector<QStringList> rows;
    VyExcelUtil::getExcelData(m_dir.filePath(QStringLiteral("absent.xlsx")), rows);
    QXlsx::Document empty;
    empty.addSheet(QStringLiteral("Sheet1"));
    VyExcelUtil::getExcelData(save(empty), rows);
    EXPECT_TRUE(rows.empty());
}

TEST_F(SheetReading, AFarAwayStrayCellDoesNotExhaustMemory)
{
    QXlsx::Document document;
    document.write(1, 1, QStringLiteral("data"));
    document.write(1048576, 16384, QStringLiteral("stray"));
    std::vector<QStringList> rows;
    VyExcelUtil::getExcelData(save(document), rows);
    EXPECT_TRUE(rows.empty());
}

} // namespace
