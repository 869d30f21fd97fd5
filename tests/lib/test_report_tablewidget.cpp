#include "test_report_support.h"

#include "vygisutil.h"

#include <QTableWidget>

namespace {

class TableWidgetReport : public reporttest::ReportTest
{
protected:
    // Row r shows "r:0" to "r:3", with its column-0 check box in state.
    void addRows(std::initializer_list<Qt::CheckState> states)
    {
        for (Qt::CheckState state : states) {
            const int row = m_table.rowCount();
            m_table.insertRow(row);
            for (int column = 0; column < 4; ++column)
                m_table.setItem(row, column, new QTableWidgetItem(QStringLiteral("%1:%2")
                                                                      .arg(row).arg(column)));
            m_table.item(row, 0)->setCheckState(state);
        }
    }
    void report()
    {
        ASSERT_TRUE(VyExcelUtil::exportExcelByTableWidget(path(), &m_table));
        open(path());
    }

    QTableWidget m_table{0, 4};
};

TEST_F(TableWidgetReport, TickedRowsFollowTheTranslatedHeaderWithoutGaps)
{
    reporttest::MarkingTranslator translator;
    addRows({Qt::Unchecked, Qt::Checked, Qt::Unchecked, Qt::Unchecked, Qt::PartiallyChecked});
    m_table.item(0, 1)->setCheckState(Qt::Checked);   // only the first column's check box counts
    report();
    EXPECT_EQ(row(1, 4), QStringList({"~Standard description", "~Related field",
                                      "~Related parameter", "~Error description"}));
    EXPECT_EQ(row(2, 5), QStringList({"1:0", "1:1", "1:2", "1:3", "-"}));
    EXPECT_EQ(row(3, 4), QStringList({"4:0", "4:1", "4:2", "4:3"}));
    EXPECT_EQ(m_book->dimension().lastRow(), 3);
    EXPECT_DOUBLE_EQ(m_book->columnWidth(9), 40.0);
}

TEST_F(TableWidgetReport, MissingItemsAreUntickedOrEmpty)
{
    addRows({Qt::Checked, Qt::Checked});
    delete m_table.takeItem(0, 0);
    delete m_table.takeItem(1, 2);
    m_table.item(1, 3)->setText(QStringLiteral(" 12 "));
    report();
    EXPECT_EQ(row(2, 4), QStringList({"1:0", "1:1", "", " 12 "}));
    EXPECT_EQ(m_book->dimension().lastRow(), 2);
}

TEST_F(TableWidgetReport, TheSaveDoesNotDecideTheResultButAMissingTableDoes)
{
    EXPECT_TRUE(VyExcelUtil::exportExcelByTableWidget(unwritablePath(), &m_table));
    EXPECT_FALSE(VyExcelUtil::exportExcelByTableWidget(path(), nullptr));
    EXPECT_FALSE(QFile::exists(path()));
}

} // namespace
