#include "test_import_support.h"

namespace {

using Pairs = QMap<QString, QString>;

class TransactionTemplates : public ImportTest
{
protected:
    bool read(const QString& file) { return VyExcelUtil::readTransactionTemplateFile(file, m_pairs); }

    Pairs m_pairs{{"STALE", "ENTRY"}};
};

// Each call returns only its own pairs.
TEST_F(TransactionTemplates, PairsAreTrimmedAndUpperCasedFromRowOneAndTheLowerOfEqualNamesWins)
{
    const struct { QList<QVariantList> rows; Pairs pairs; } cases[] = {
        {{{"Source", "Target"}, {"Parcel ", "owner"}, {12, 3.5}}, {{"SOURCE", "TARGET"}, {"PARCEL", "OWNER"}, {"12", "3.5"}}},
        {{{"road", "first"}, {" ROAD", "second"}}, {{"ROAD", "SECOND"}}},
        // Rows 1 and 2 above the used range and the missing A4 all give the empty key.
        {{{}, {}, {"river"}, {QVariant(), "lake"}}, {{"", "LAKE"}, {"RIVER", ""}}},
    };
    for (const auto& c : cases) {
        EXPECT_TRUE(read(rows(c.rows)));
        EXPECT_EQ(m_pairs, c.pairs);
    }
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

} // namespace
