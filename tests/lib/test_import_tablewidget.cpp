#include "test_import_support.h"


namespace {

using importtest::Shown;
using importtest::shownRows;

class TableWidgetImport : public ImportTest
{
protected:
    bool import(const QString& file, const QStringList& keys, QTableWidget* table = nullptr)
    {
        QMap<QString, int> accepted;
        for (const QString& key : keys)
            accepted.insert(key, 0);
        return VyExcelUtil::importExcelToTableWidget(file, accepted, table ? table : &m_table);
    }

    Shown shown() const { return shownRows(m_table); }

    QTableWidget m_table{0, 4};
};

TEST_F(TableWidgetImport, AppendsAcceptedRowsInSheetOrderBelowTheWidgetsOwnRows)
{
    m_table.setRowCount(1);
    m_table.setItem(0, 0, new QTableWidgetItem("earlier"));
    const QString file = rows({{"Key", "B", "C", "D", "E"}, {"K1", "b1", "c1", "d1", "e1"},
                               {"other", "b2", "c2", "d2"}, {"K2", "b3", "c3", "d3"}, {"K1", "b4", "c4", "d4"}});
    m_table.setColumnCount(5);
    EXPECT_TRUE(import(file, {"K1", "K2"}));
    EXPECT_EQ(shown(), (Shown{{"earlier", "-", "-", "-", "-"}, {"K1", "b1", "c1", "d1", "-"},
                              {"K2", "b3", "c3", "d3", "-"}, {"K1", "b4", "c4", "d4", "-"}}));
}

TEST_F(TableWidgetImport, ShowsTheTextsOfRowsWithAnAcceptedKey)
{
    const struct { QList<QVariantList> rows; QStringList keys; Shown imported; } cases[] = {
        // Keys compare exactly, numbers by their text.
        {{{"Key"}, {12}, {12.5}, {"k1"}, {" K1"}, {"K1"}}, {"12", "12.5", "K1"},
         {{"12", "-", "-", "-"}, {"12.5", "-", "-", "-"}, {"K1", "-", "-", "-"}}},
        {{{"Key"}, {"K1", QDateTime(QDate(2024, 3, 5), QTime(14, 7, 59)), QDate(1999, 12, 31), 45000.5}}, {"K1"},
         {{"K1", "2024/03/05 14:07", "1999/12/31 00:00", "45000.5"}}},
        // A time alone is a date in December 1899; no text it could show is imported, and
        // the rest of a row is abandoned at one.
        {{{"Key"}, {QTime(10, 30), "b"}, {"K1", "b", QTime(8, 0), "d"}, {"K1", "b", "c", "d"}},
         {"1899/12/30 10:30", "1899/12/31 10:30", "0.4375", "K1"}, {{"K1", "b", "-", "-"}, {"K1", "b", "c", "d"}}},
        {{{"K1", "b", "c", "d"}}, {"K1"}, {}},   // the header row is never compared
    };
    for (const auto& c : cases) {
        m_table.setRowCount(0);
        EXPECT_TRUE(import(rows(c.rows), c.keys));
        EXPECT_EQ(shown(), c.imported);
    }
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
    EXPECT_EQ(shown(), (Shown{{"K1", "-", "c", ""}}));
}

TEST_F(TableWidgetImport, ANarrowWidgetGetsItemsOnlyForItsColumns)
{
    QTableWidget narrow(0, 2), none(0, 0);
    const QString file = rows({{"Key"}, {"K1", "b", "c", "d"}});
    EXPECT_TRUE(import(file, {"K1"}, &narrow));
    EXPECT_TRUE(import(file, {"K1"}, &none));
    EXPECT_EQ(shownRows(narrow), (Shown{{"K1", "b"}}));
    EXPECT_EQ(shownRows(none), Shown(1));
}

TEST_F(TableWidgetImport, ASortingWidgetKeepsEachRowTogetherAndStaysSorting)
{
    m_table.setSortingEnabled(true);
    m_table.sortByColumn(1, Qt::AscendingOrder);
    EXPECT_TRUE(import(rows({{"Key"}, {"K1", "z", "c1", "d1"}, {"K2", "a", "c2", "d2"}}), {"K1", "K2"}));
    EXPECT_TRUE(m_table.isSortingEnabled());
    EXPECT_EQ(shown(), (Shown{{"K2", "a", "c2", "d2"}, {"K1", "z", "c1", "d1"}}));
}

TEST_F(TableWidgetImport, NothingToReadOrNoWidgetAddsNoRowsButAnswersTrue)
{
    QMap<QString, int> keys{{"K1", 0}};
    EXPECT_TRUE(import(path("missing.xlsx"), {""}));
    EXPECT_TRUE(VyExcelUtil::importExcelToTableWidget(rows({{"Key"}, {"K1"}}), keys, nullptr));
    EXPECT_EQ(m_table.rowCount(), 0);
}

} // namespace
