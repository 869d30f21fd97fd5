#include "test_import_support.h"

#include "vygisutil.h"

#include <QTableWidget>

namespace {

class TableWidgetImport : public ImportTest
{
protected:
    TableWidgetImport() : m_table(0, 4) {}

    bool import(const QString& file, const QStringList& keys)
    {
        QMap<QString, int> accepted;
        for (const QString& key : keys)
            accepted.insert(key, 0);
        return VyExcelUtil::importExcelToTableWidget(file, accepted, &m_table);
    }

    // The texts of a widget row, "-" where a cell has no item.
    QStringList row(int r) const
    {
        QStringList texts;
        for (int c = 0; c < m_table.columnCount(); ++c) {
            const QTableWidgetItem* item = m_table.item(r, c);
            texts.append(item ? item->text() : QStringLiteral("-"));
        }
        return texts;
    }

    QTableWidget m_table;
};

TEST_F(TableWidgetImport, AppendsAcceptedRowsInSheetOrderBelowTheWidgetsOwnRows)
{
    m_table.setRowCount(1);
    m_table.setItem(0, 0, new QTableWidgetItem("earlier"));
    const QString file = rows({{"Key", "B", "C", "D", "E"},
                               {"K1", "b1", "c1", "d1", "e1"},
                               {"other", "b2", "c2", "d2"},
                               {"K2", "b3", "c3", "d3"},
                               {"K1", "b4", "c4", "d4"}});
    m_table.setColumnCount(5);

    EXPECT_TRUE(import(file, {"K1", "K2"}));

    ASSERT_EQ(m_table.rowCount(), 4);
    EXPECT_EQ(row(0), (QStringList{"earlier", "-", "-", "-", "-"}));
    EXPECT_EQ(row(1), (QStringList{"K1", "b1", "c1", "d1", "-"}));
    EXPECT_EQ(row(2), (QStringList{"K2", "b3", "c3", "d3", "-"}));
    EXPECT_EQ(row(3), (QStringList{"K1", "b4", "c4", "d4", "-"}));
}

TEST_F(TableWidgetImport, ComparesKeysExactlyAndNumbersByTheirText)
{
    const QString file = rows({{"Key"}, {12}, {12.5}, {"k1"}, {" K1"}, {"K1"}});
    EXPECT_TRUE(import(file, {"12", "12.5", "K1"}));
    ASSERT_EQ(m_table.rowCount(), 3);
    EXPECT_EQ(m_table.item(0, 0)->text(), "12");
    EXPECT_EQ(m_table.item(1, 0)->text(), "12.5");
    EXPECT_EQ(m_table.item(2, 0)->text(), "K1");
}

TEST_F(TableWidgetImport, ShowsDatesAsYearMonthDayHoursAndMinutes)
{
    const QString file = rows({{"Key"},
                               {"K1", QDateTime(QDate(2024, 3, 5), QTime(14, 7, 59)),
                                QDate(1999, 12, 31), 45000.5}});
    EXPECT_TRUE(import(file, {"K1"}));
    ASSERT_EQ(m_table.rowCount(), 1);
    EXPECT_EQ(row(0), (QStringList{"K1", "2024/03/05 14:07", "1999/12/31 00:00", "45000.5"}));
}

TEST_F(TableWidgetImport, RefusesARowKeyedByATimeOfDayAndAbandonsTheRestOfARowAtOne)
{
    // A time alone is a date in December 1899; no text it could show is imported.
    const QString file = rows({{"Key"}, {QTime(10, 30), "b"}, {"K1", "b", QTime(8, 0), "d"}, {"K1", "b", "c", "d"}});
    EXPECT_TRUE(import(file, {"1899/12/30 10:30", "1899/12/31 10:30", "0.4375", "K1"}));
    ASSERT_EQ(m_table.rowCount(), 2);
    EXPECT_EQ(row(0), (QStringList{"K1", "b", "-", "-"}));
    EXPECT_EQ(row(1), (QStringList{"K1", "b", "c", "d"}));
}

TEST_F(TableWidgetImport, MissingCellsLeaveWidgetCellsWithoutItems)
{
    const QString file = workbook([](QXlsx::Document& document) {
        document.write(1, 1, "Key");
        document.write(2, 1, "K1");
        document.write(2, 3, "c");
        document.write(2, 4, QVariant(), QXlsx::Format()); // a stored blank
        document.write(3, 5, "far");                         // widens the used range only
    });
    EXPECT_TRUE(import(file, {"K1"}));
    ASSERT_EQ(m_table.rowCount(), 1);
    EXPECT_EQ(row(0), (QStringList{"K1", "-", "c", ""}));
}

TEST_F(TableWidgetImport, ANarrowWidgetGetsItemsOnlyForItsColumns)
{
    QTableWidget narrow(0, 2);
    QTableWidget none(0, 0);
    const QString file = rows({{"Key"}, {"K1", "b", "c", "d"}});
    QMap<QString, int> keys{{"K1", 0}};

    EXPECT_TRUE(VyExcelUtil::importExcelToTableWidget(file, keys, &narrow));
    EXPECT_TRUE(VyExcelUtil::importExcelToTableWidget(file, keys, &none));

    ASSERT_EQ(narrow.rowCount(), 1);
    EXPECT_EQ(narrow.columnCount(), 2);
    EXPECT_EQ(narrow.item(0, 0)->text(), "K1");
    EXPECT_EQ(narrow.item(0, 1)->text(), "b");
    EXPECT_EQ(none.rowCount(), 1);
    EXPECT_EQ(none.columnCount(), 0);
}

TEST_F(TableWidgetImport, ASortingWidgetKeepsEachRowTogetherAndStaysSorting)
{
    m_table.setSortingEnabled(true);
    m_table.sortByColumn(1, Qt::AscendingOrder);
    const QString file = rows({{"Key"}, {"K1", "z", "c1", "d1"}, {"K2", "a", "c2", "d2"}});

    EXPECT_TRUE(import(file, {"K1", "K2"}));

    EXPECT_TRUE(m_table.isSortingEnabled());
    ASSERT_EQ(m_table.rowCount(), 2);
    EXPECT_EQ(row(0), (QStringList{"K2", "a", "c2", "d2"}));
    EXPECT_EQ(row(1), (QStringList{"K1", "z", "c1", "d1"}));
}

TEST_F(TableWidgetImport, AHeaderAloneOrNothingToReadAddsNoRowsButAnswersTrue)
{
    QMap<QString, int> keys{{"", 0}};
    EXPECT_TRUE(import(rows({{"K1", "b", "c", "d"}}), {"K1"}));   // the header row is never compared
    EXPECT_TRUE(import(path("missing.xlsx"), {""}));
    EXPECT_TRUE(VyExcelUtil::importExcelToTableWidget(rows({{"Key"}, {"K1"}}), keys, nullptr));
    EXPECT_EQ(m_table.rowCount(), 0);
}

} // namespace
