// Reading check rules and transaction templates.

#include "test_import_support.h"

#include <QTranslator>

namespace {

using Rules = QVector<QStringList>;

class CheckRules : public ImportTest
{
protected:
    bool read(const QString& file) { return VyExcelUtil::readAttributeCheckRuleFromExcel(file, m_rules); }

    Rules m_rules{{"stale"}};
};

// A second call returns only its own rows.
TEST_F(CheckRules, TwoEnglishTitleRowsAreSkippedAndAnyOtherFirstCellSkipsOneRow)
{
    const struct { QList<QVariantList> rows; Rules rules; } cases[] = {
        {{{" Related layer ", "Field", "Rule", "Value"}, {"Bezugsebene", "Feld", "Regel", "Wert"},
          {"roads", "WIDTH", ">", 2.5}}, {{"roads", "WIDTH", ">", "2.5"}}},
        {{{"related layer", "b", "c", "d"}, {"roads", "WIDTH", ">", "2"}}, {{"roads", "WIDTH", ">", "2"}}},
        {{{QVariant(), "b", "c", "d"}, {"rivers", "NAME", "", "x"}}, {{"rivers", "NAME", "", "x"}}},
        {{{"Related layer", "b", "c", "d"}}, {}},
        // Rows keep their width and empty rows their place.
        {{{"Rules"}, {QVariant(), "a", QVariant(), " d "}, {}, {"x", QVariant(), QVariant(), QVariant(), StoredBlank}},
         {{"", "a", "", " d ", ""}, {"", "", "", "", ""}, {"x", "", "", "", ""}}},
    };
    for (const auto& c : cases) {
        EXPECT_TRUE(read(rows(c.rows)));
        EXPECT_EQ(m_rules, c.rules);
    }
}

TEST_F(CheckRules, ATranslatedTitleIsATitleToo)
{
    class German : public QTranslator
    {
    public:
        bool isEmpty() const override { return false; }
        QString translate(const char*, const char* source, const char*, int) const override
        {
            return qstrcmp(source, "Related layer") == 0 ? QStringLiteral("Bezugsebene") : QString();
        }
    } german;
    QCoreApplication::installTranslator(&german);
    std::vector<Rules> results;
    for (const char* title : {"Bezugsebene", "Related layer"}) {
        EXPECT_TRUE(read(rows({{title, "b", "c", "d"}, {"t", "", "", ""}, {"r", "", "", ""}})));
        results.push_back(m_rules);
    }
    QCoreApplication::removeTranslator(&german);
    EXPECT_EQ(results, std::vector<Rules>(2, Rules{{"r", "", "", ""}}));
}

TEST_F(CheckRules, NothingIsReadFromOtherThanFourOrFiveColumnsOrNoWorkbook)
{
    const QString files[] = {rows({{"a", "b", "c"}, {"1", "2", "3"}}),
                             rows({{"a", "b", "c", "d", "e"}, {"1", "2", "3", "4", "5", "stray"}}),
                             QString(), path("missing.xlsx")};
    for (const QString& file : files) {
        m_rules = {{"stale"}};
        EXPECT_FALSE(read(file)) << file.toStdString();
        EXPECT_TRUE(m_rules.isEmpty()) << file.toStdString();
    }
}

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
