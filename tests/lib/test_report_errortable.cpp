#include "test_report_support.h"

#include "vygisutil.h"

namespace {

using ErrorTable = reporttest::ReportTest;

TEST_F(ErrorTable, TriplesFollowACentredHeaderAsPlainText)
{
    ASSERT_TRUE(VyExcelUtil::exportErrorTable({"overlap", "2", "roads", "gap", "10", "parcels"},
                                              path()));
    open(path());
    EXPECT_EQ(row(1, 3), QStringList({"Error Type", "Layer Count", "Layer Name"}));
    EXPECT_EQ(m_book->read(3, 1), "gap");
    EXPECT_EQ(m_book->read(3, 2), "10") << "numbers stay text";
    EXPECT_TRUE(m_book->cellAt(3, 3)->format().isEmpty()) << "data cells are not bordered";
    EXPECT_EQ(m_book->dimension().lastRow(), 3);
}

TEST_F(ErrorTable, RejectedListsAndPathsLeaveNoFile)
{
    EXPECT_FALSE(VyExcelUtil::exportErrorTable({}, path()));
    EXPECT_FALSE(VyExcelUtil::exportErrorTable({"a", "1", "b", "c"}, path()));
    EXPECT_FALSE(QFile::exists(path()));
    EXPECT_FALSE(VyExcelUtil::exportErrorTable({"a", "1", "b"}, unwritablePath()));
}

TEST_F(ErrorTable, AnExistingWorkbookKeepsItsOtherContent)
{
    QXlsx::Document book;
    QXlsx::Format bold;
    bold.setFontBold(true);
    book.write(5, 4, QStringLiteral("remark"), bold);
    book.addSheet(QStringLiteral("Notes"));
    book.write(2, 2, 42);
    book.selectSheet(QStringLiteral("Sheet1"));
    ASSERT_TRUE(book.saveAs(path()));

    ASSERT_TRUE(VyExcelUtil::exportErrorTable({"dangle", "1", "rivers"}, path()));
    open(path());
    EXPECT_EQ(m_book->read(2, 3), "rivers");
    EXPECT_TRUE(m_book->cellAt(5, 4)->format().fontBold());
    ASSERT_TRUE(m_book->selectSheet(QStringLiteral("Notes")));
    EXPECT_EQ(m_book->read(2, 2), 42.0);
}

TEST_F(ErrorTable, AnActiveChartSheetLeavesTheFileAlone)
{
    python("b = openpyxl.Workbook()\nb.create_chartsheet('Chart')\nb.active = 1\nb.save(sys.argv[1])\n", path());
    SKIP_IF_TOOL_FAILED();
    const QByteArray before = bytesOf(path());
    EXPECT_FALSE(VyExcelUtil::exportErrorTable({"dangle", "1", "rivers"}, path()));
    EXPECT_EQ(bytesOf(path()), before);
}

} // namespace
