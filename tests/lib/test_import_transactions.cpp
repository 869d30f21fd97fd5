#include "test_import_support.h"

#include "vygisutil.h"

namespace {

using Pairs = QMap<QString, QString>;

class TransactionTemplates : public ImportTest
{
protected:
    bool read(const QString& file) { return VyExcelUtil::readTransactionTemplateFile(file, m_pairs); }

    Pairs m_pairs{{"STALE", "ENTRY"}};
};

TEST_F(TransactionTemplates, PairsAreTrimmedAndUpperCasedFromRowOne)
{
    EXPECT_TRUE(read(rows({{"Source", "Target"}, {"Parcel ", "owner"}, {12, 3.5}})));
    EXPECT_EQ(m_pairs, (Pairs{{"SOURCE", "TARGET"}, {"PARCEL", "OWNER"}, {"12", "3.5"}}));
}

TEST_F(TransactionTemplates, TheLowerOfTwoEqualNamesSuppliesTheValue)
{
    EXPECT_TRUE(read(rows({{"road", "first"}, {" ROAD", "second"}})));
    EXPECT_EQ(m_pairs, (Pairs{{"ROAD", "SECOND"}}));
}

TEST_F(TransactionTemplates, MissingCellsGiveEmptyTexts)
{
    const QString file = workbook([](QXlsx::Document& document) {
        document.write(3, 1, "river");
        document.write(4, 2, "lake");
    });
    // Rows 1 and 2 above the used range and the missing A4 all give the empty key.
    EXPECT_TRUE(read(file));
    EXPECT_EQ(m_pairs, (Pairs{{"", "LAKE"}, {"RIVER", ""}}));
}

TEST_F(TransactionTemplates, NothingIsReadFromOtherThanTwoColumnsOrNoWorkbook)
{
    const QString files[] = {rows({{"a"}, {"b"}}), rows({{"a", "b"}, {"c", "d", "stray"}}), QString(),
                             path("missing.xlsx")};
    for (const QString& file : files) {
        m_pairs = {{"STALE", "ENTRY"}};
        EXPECT_FALSE(read(file)) << file.toStdString();
        EXPECT_TRUE(m_pairs.isEmpty()) << file.toStdString();
    }
}

TEST_F(TransactionTemplates, ASecondCallReturnsOnlyItsOwnPairs)
{
    EXPECT_TRUE(read(rows({{"a", "b"}})));
    EXPECT_TRUE(read(rows({{"c", "d"}})));
    EXPECT_EQ(m_pairs, (Pairs{{"C", "D"}}));
}

} // namespace
