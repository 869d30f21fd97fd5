// Report workbooks, read back as a user sees them: check errors, topology errors, ticked
// table rows and elevations.

#include "libtesting.h"

#include "tsmemoryraster.h"
#include "tsmemorytopology.h"

#include <QCoreApplication>
#include <QTableWidget>
#include <QTranslator>

#include <memory>

namespace {

using namespace VyObjects;

// Prefixes every text translated in the "QObject" context with "~", so a test can tell
// translated headers from copied data.
class MarkingTranslator : public QTranslator
{
public:
    MarkingTranslator() { QCoreApplication::installTranslator(this); }
    ~MarkingTranslator() override { QCoreApplication::removeTranslator(this); }
    bool isEmpty() const override { return false; }
    QString translate(const char* context, const char* source, const char*, int) const override
    {
        return qstrcmp(context, "QObject") == 0 ? "~" + QString::fromLatin1(source) : QString();
    }
};

class ReportTest : public LibraryTest
{
protected:
    QString unwritablePath() const { return path(QStringLiteral("no/dir.xlsx")); }

    void open(const QString& file) { m_book = std::make_unique<QXlsx::Document>(file); }

    // The texts of columns 1 to columns of row; "-" where no cell is stored, "?" for a
    // cell that is not a centred text cell with a thin border all round.
    QStringList row(int number, int columns) const
    {
        const QStringList centred{"center", "center", "", "thin", "thin", "thin", "thin"};
        QStringList texts;
        for (int column = 1; column <= columns; ++column) {
            const QXlsx::Cell* cell = m_book->cellAt(number, column);
            texts << (!cell ? QStringLiteral("-")
                            : cell->cellType() == QXlsx::Cell::StringType && styleOf(cell->format()) == centred
                                  ? cell->value().toString()
                                  : QStringLiteral("?"));
        }
        return texts;
    }

    // The values of rows cells of the column from row 2 down, as texts.
    QStringList column(int number, int rows) const
    {
        QStringList texts;
        for (int r = 2; r < 2 + rows; ++r)
            texts << m_book->read(r, number).toString();
        return texts;
    }

    std::unique_ptr<QXlsx::Document> m_book;
};

using ErrorTable = ReportTest;

TEST_F(ErrorTable, TriplesFollowACentredHeaderAsPlainText)
{
    ASSERT_TRUE(VyExcelUtil::exportErrorTable({"overlap", "2", "roads", "gap", "10", "parcels"}, path()));
    open(path());
    EXPECT_EQ(row(1, 3), QStringList({"Error Type", "Layer Count", "Layer Name"}));
    EXPECT_EQ(m_book->read(3, 1), "gap");
    EXPECT_EQ(m_book->read(3, 2), "10") << "numbers stay text";
    EXPECT_TRUE(m_book->cellAt(3, 3)->format().isEmpty()) << "data cells are not bordered";
    EXPECT_EQ(m_book->dimension().lastRow(), 3);
}

TEST_F(ErrorTable, RejectedListsPathsAndChartSheetsLeaveNoFileOrTheFileAlone)
{
    EXPECT_FALSE(VyExcelUtil::exportErrorTable({}, path()));
    EXPECT_FALSE(VyExcelUtil::exportErrorTable({"a", "1", "b", "c"}, path()));
    EXPECT_FALSE(QFile::exists(path()));
    EXPECT_FALSE(VyExcelUtil::exportErrorTable({"a", "1", "b"}, unwritablePath()));
    python("wb.create_chartsheet('Chart')\nwb.active = 1\n", path());
    SKIP_IF_TOOL_FAILED();
    const QByteArray before = bytesOf(path());
    EXPECT_FALSE(VyExcelUtil::exportErrorTable({"dangle", "1", "rivers"}, path()));
    EXPECT_EQ(bytesOf(path()), before);
}

TEST_F(ErrorTable, AnExistingWorkbookKeepsItsOtherContent)
{
    workbook([](QXlsx::Document& book) {
        QXlsx::Format bold;
        bold.setFontBold(true);
        book.write(5, 4, QStringLiteral("remark"), bold);
        book.addSheet(QStringLiteral("Notes"));
        book.write(2, 2, 42);
        book.selectSheet(QStringLiteral("Sheet1"));
    }, "book.xlsx");
    ASSERT_TRUE(VyExcelUtil::exportErrorTable({"dangle", "1", "rivers"}, path()));
    open(path());
    EXPECT_EQ(m_book->read(2, 3), "rivers");
    EXPECT_TRUE(m_book->cellAt(5, 4)->format().fontBold());
    ASSERT_TRUE(m_book->selectSheet(QStringLiteral("Notes")));
    EXPECT_EQ(m_book->read(2, 2), 42.0);
}

TsTopoError error(int number, int feature, int related, int layer, int relatedLayer,
                  const char* errorType = "name is empty")
{
    return {number, 0, feature, related, layer, relatedLayer, "roads", "rivers", "12.5,40.25", "", errorType, false};
}

class TopologyReport : public ReportTest
{
protected:
    void report(bool attributeCheck, std::initializer_list<TsTopoError> errors, int unreadable = -1)
    {
        const auto topology = TsRefPtr<TsMemoryTopology>::create(attributeCheck);
        for (const TsTopoError& e : errors)
            topology->AddError(e);
        topology->MarkUnreadable(unreadable);
        ASSERT_TRUE(VyExcelUtil::exportExcelByTsTopology(path(), topology.get()));
        open(path());
    }
};

TEST_F(TopologyReport, AnEmptyCheckGivesTheTranslatedHeaderInWideColumns)
{
    MarkingTranslator translator;
    report(false, {});
    EXPECT_EQ(row(1, 9), QStringList({"~Error type", "~Status", "~Number", "~Layer", "~Notes", "~Feature 1",
                                      "~Feature 2", "~coordinate", "~Related layer"}));
    for (int column = 1; column <= 9; ++column)
        EXPECT_DOUBLE_EQ(m_book->columnWidth(column), 40.0);
    EXPECT_EQ(m_book->dimension().lastRow(), 1);
}

TEST_F(TopologyReport, ErrorsFollowInIndexOrderAsTextAndAnUnreadableOneRepeatsTheRowBefore)
{
    report(false, {error(7, 3, 0, 1, 1), error(8, -2, 0, 1, 1), error(9, 4, 0, 1, 1)}, 2);
    EXPECT_EQ(row(2, 9), QStringList({"", "-", "7", "roads", "", "3", "", "12.5,40.25", "rivers"}));
    EXPECT_EQ(row(3, 6), QStringList({"", "-", "8", "roads", "", ""}));
    EXPECT_EQ(row(4, 9), row(3, 9));
}

TEST_F(TopologyReport, ErrorTypeIsShownForAnAttributeCheckOnly)
{
    report(true, {error(1, 0, 0, 1, 1), error(2, 0, 0, 1, 1, "")});
    EXPECT_EQ(m_book->read(2, 1), "name is empty");
    EXPECT_EQ(row(3, 1), QStringList({""}));
}

TEST_F(TopologyReport, FeatureTwoNamesOnlyAnotherFeature)
{
    report(false, {error(1, 5, 5, 2, 2),     // a feature against itself
                   error(2, 5, 5, 2, 3),     // the same id on another layer
                   error(3, 5, 6, 2, 2),     // another feature of the layer
                   error(4, 5, 0, 2, 3)});   // none
    EXPECT_EQ(column(7, 4), QStringList({"", "5", "6", ""}));
}


class TableWidgetReport : public ReportTest
{
protected:
    // Row r shows "r:0" to "r:3", with its column-0 check box in state.
    void addRows(std::initializer_list<Qt::CheckState> states)
    {
        for (Qt::CheckState state : states) {
            const int row = m_table.rowCount();
            m_table.insertRow(row);
            for (int column = 0; column < 4; ++column)
                m_table.setItem(row, column, new QTableWidgetItem(QStringLiteral("%1:%2").arg(row).arg(column)));
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
    MarkingTranslator translator;
    addRows({Qt::Unchecked, Qt::Checked, Qt::Unchecked, Qt::Unchecked, Qt::PartiallyChecked});
    m_table.item(0, 1)->setCheckState(Qt::Checked);   // only the first column's check box counts
    report();
    EXPECT_EQ(row(1, 4), QStringList({"~Standard description", "~Related field", "~Related parameter",
                                      "~Error description"}));
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

TEST_F(TableWidgetReport, TheSaveDoesNotDecideTheResultOfEitherReportButAMissingTableOrCheckDoes)
{
    EXPECT_TRUE(VyExcelUtil::exportExcelByTableWidget(unwritablePath(), &m_table));
    EXPECT_FALSE(VyExcelUtil::exportExcelByTableWidget(path(), nullptr));
    EXPECT_TRUE(VyExcelUtil::exportExcelByTsTopology(unwritablePath(), TsRefPtr<TsMemoryTopology>::create(false).get()));
    EXPECT_FALSE(VyExcelUtil::exportExcelByTsTopology(path(), nullptr));
    EXPECT_FALSE(QFile::exists(path()));
}

const char* const Outside = "Not within the range of Dem data!";

class ElevationReport : public ReportTest
{
protected:
    // 100 by 50 map units in cells of 25: the top row holds 10, 20, 30, 40, the bottom
    // row -5, 60.5, 70, 80.
    ElevationReport() { m_dem->SetValues({10, 20, 30, 40, -5, 60.5, 70, 80}); }

    bool query(const QStringList& points, const QString& file)
    {
        return VyExcelUtil::saveQueryElevationOutputFile(file, points, TsRefPtr<TsRasterProps>(m_dem));
    }
    void query(const QStringList& points)
    {
        ASSERT_TRUE(query(points, path()));
        open(path());
    }

    const TsRefPtr<TsMemoryRaster> m_dem = TsRefPtr<TsMemoryRaster>::create(TsRect(0, 100, 0, 50), 4, 2);
};

TEST_F(ElevationReport, HeadingsRestartTheNumberingOfTheirPoints)
{
    MarkingTranslator translator;
    query({"Wells", "", "10", "40", "130", "10", "", "Springs", "60", "20"});
    EXPECT_EQ(row(1, 3), QStringList({"-", "~XYCoordinate", "~Elevation info"}));
    EXPECT_EQ(row(2, 3), QStringList({"Wells", "-", "-"}));
    EXPECT_EQ(row(3, 3), QStringList({"1", "10.0000,40.0000", "10.0000"}));
    EXPECT_EQ(row(4, 3), QStringList({"2", "130.0000,10.0000", QString("~") + Outside}));
    EXPECT_EQ(row(5, 1), QStringList({"Springs"}));
    EXPECT_EQ(row(6, 3), QStringList({"1", "60.0000,20.0000", "70.0000"}));
}

// Edges are inside and read the cell they close, and ground below zero reads as zero.
TEST_F(ElevationReport, EdgesAreInsideAndReadTheCellTheyCloseAndGroundBelowZeroIsZero)
{
    query({"0", "50", "100", "50", "100", "0", "100.0001", "0", "50", "-0.0001", "1", "1"});
    EXPECT_EQ(column(3, 6), QStringList({"10.0000", "40.0000", "80.0000", Outside, Outside, "0.0000"}));
}

TEST_F(ElevationReport, OnlyFiguresOfPointsInsideWidenTheColumns)
{
    query({"A heading longer than any figure", "", "-123456789", "7", "30", "30.5", "99", "1"});
    EXPECT_DOUBLE_EQ(m_book->columnWidth(2), 15 + 10.0) << "the longest, 30.0000,30.5000";
    EXPECT_DOUBLE_EQ(m_book->columnWidth(3), 7 + 10.0);
    query({});
    EXPECT_DOUBLE_EQ(m_book->columnWidth(2), m_book->columnWidth(1));
    EXPECT_EQ(m_book->dimension().lastRow(), 1);
}

// Point texts read and print as Qt reads and prints numbers: blanks and a plus sign, an
// exponent, zero without a sign, and a negative rounding to zero keeps it. Unparsable
// texts and an unpaired entry stay visible.
TEST_F(ElevationReport, PointTextsReadAndPrintAsQtReadsAndPrintsNumbers)
{
    query({" 7", "+8", "1e1", "-0", "-0.00001", "0.5", "12.", ".25"});
    EXPECT_EQ(column(2, 4), QStringList({"7.0000,8.0000", "10.0000,0.0000", "-0.0000,0.5000", "12.0000,0.2500"}));
    query({"east", "60", "5"});
    EXPECT_EQ(row(2, 2), QStringList({"1", "0.0000,60.0000"}));
    EXPECT_EQ(row(3, 1), QStringList({"5"}));
}

TEST_F(ElevationReport, TheRasterReferenceAndBlockAreGivenBack)
{
    const long long liveObjects = TsRefBase::LiveObjectCount();
    EXPECT_TRUE(query({"10", "10", "20", "20"}, path()));
    EXPECT_FALSE(query({"10", "10"}, unwritablePath()));
    EXPECT_EQ(m_dem->RefCount(), 1);
    EXPECT_EQ(TsRefBase::LiveObjectCount(), liveObjects);
    EXPECT_FALSE(VyExcelUtil::saveQueryElevationOutputFile(path(), {"1", "1"}, nullptr));
}

} // namespace
