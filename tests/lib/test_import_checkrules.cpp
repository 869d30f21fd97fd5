#include "test_import_support.h"

#include "vygisutil.h"

#include <QTranslator>

namespace {

using importtest::ImportTest;

class CheckRules : public ImportTest
{
protected:
    bool read(const QString& file) { return VyExcelUtil::readAttributeCheckRuleFromExcel(file, m_rules); }

    QVector<QStringList> m_rules{{"stale"}};
};

TEST_F(CheckRules, TwoEnglishTitleRowsAreSkipped)
{
    const QString file = rows({{" Related layer ", "Field", "Rule", "Value"},
                               {"Bezugsebene", "Feld", "Regel", "Wert"},
                               {"roads", "WIDTH", ">", 2.5}});
    EXPECT_TRUE(read(file));
    EXPECT_EQ(m_rules, (QVector<QStringList>{{"roads", "WIDTH", ">", "2.5"}}));
}

TEST_F(CheckRules, AnyOtherFirstCellSkipsOneRow)
{
    EXPECT_TRUE(read(rows({{"related layer", "b", "c", "d"}, {"roads", "WIDTH", ">", "2"}})));
    EXPECT_EQ(m_rules, (QVector<QStringList>{{"roads", "WIDTH", ">", "2"}}));

    EXPECT_TRUE(read(rows({{QVariant(), "b", "c", "d"}, {"rivers", "NAME", "", "x"}}, "blank.xlsx")));
    EXPECT_EQ(m_rules, (QVector<QStringList>{{"rivers", "NAME", "", "x"}}));
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
    const bool read1 = read(rows({{"Bezugsebene", "b", "c", "d"}, {"t", "", "", ""}, {"r", "", "", ""}}));
    const QVector<QStringList> translated = m_rules;
    const bool read2 = read(rows({{"Related layer", "b", "c", "d"}, {"t", "", "", ""}, {"r", "", "", ""}},
                                 "english.xlsx"));
    QCoreApplication::removeTranslator(&german);

    EXPECT_TRUE(read1);
    EXPECT_EQ(translated, (QVector<QStringList>{{"r", "", "", ""}}));
    EXPECT_TRUE(read2);
    EXPECT_EQ(m_rules, (QVector<QStringList>{{"r", "", "", ""}}));
}

TEST_F(CheckRules, RowsKeepTheirWidthAndEmptyRowsTheirPlace)
{
    const QString file = workbook([](QXlsx::Document& document) {
        document.write(1, 1, "Rules");
        document.write(2, 2, "a");
        document.write(2, 4, " d ");
        document.write(4, 1, "x");
        document.write(4, 5, QVariant(), [] { QXlsx::Format f; f.setFontBold(true); return f; }());
    });
    EXPECT_TRUE(read(file));
    EXPECT_EQ(m_rules, (QVector<QStringList>{{"", "a", "", " d ", ""},
                                             {"", "", "", "", ""},
                                             {"x", "", "", "", ""}}));
}

TEST_F(CheckRules, OnlyFourOrFiveColumnsAreARuleSheet)
{
    EXPECT_FALSE(read(rows({{"a", "b", "c"}, {"1", "2", "3"}})));
    EXPECT_TRUE(m_rules.isEmpty());
    EXPECT_FALSE(read(rows({{"a", "b", "c", "d", "e"}, {"1", "2", "3", "4", "5", "stray"}}, "six.xlsx")));
    EXPECT_TRUE(m_rules.isEmpty());
}

TEST_F(CheckRules, NothingToReadLeavesTheVectorEmpty)
{
    EXPECT_FALSE(read(QString()));
    EXPECT_TRUE(m_rules.isEmpty());
    m_rules = {{"stale"}};
    EXPECT_FALSE(read(path("missing.xlsx")));
    EXPECT_TRUE(m_rules.isEmpty());
    m_rules = {{"stale"}};
    EXPECT_TRUE(read(rows({{"Related layer", "b", "c", "d"}})));
    EXPECT_TRUE(m_rules.isEmpty());
}

TEST_F(CheckRules, ASecondCallReturnsOnlyItsOwnRows)
{
    EXPECT_TRUE(read(rows({{"t", "b", "c", "d"}, {"first", "", "", ""}})));
    EXPECT_TRUE(read(rows({{"t", "b", "c", "d"}, {"second", "", "", ""}}, "second.xlsx")));
    EXPECT_EQ(m_rules, (QVector<QStringList>{{"second", "", "", ""}}));
}

} // namespace
