#include "test_import_support.h"

#include "vygisutil.h"

#include <QTranslator>

namespace {

class CheckRules : public ImportTest
{
protected:
    bool read(const QString& file) { return VyExcelUtil::readAttributeCheckRuleFromExcel(file, m_rules); }

    QVector<QStringList> m_rules{{"stale"}};
};

TEST_F(CheckRules, TwoEnglishTitleRowsAreSkippedAndAnyOtherFirstCellSkipsOneRow)
{
    const struct { QList<QVariantList> rows; QVector<QStringList> rules; } cases[] = {
        {{{" Related layer ", "Field", "Rule", "Value"}, {"Bezugsebene", "Feld", "Regel", "Wert"},
          {"roads", "WIDTH", ">", 2.5}}, {{"roads", "WIDTH", ">", "2.5"}}},
        {{{"related layer", "b", "c", "d"}, {"roads", "WIDTH", ">", "2"}}, {{"roads", "WIDTH", ">", "2"}}},
        {{{QVariant(), "b", "c", "d"}, {"rivers", "NAME", "", "x"}}, {{"rivers", "NAME", "", "x"}}},
    };
    for (const auto& c : cases) {
        EXPECT_TRUE(read(rows(c.rows)));
        EXPECT_EQ(m_rules, c.rules);   // a second call returns only its own rows
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
    m_rules = {{"stale"}};
    EXPECT_TRUE(read(rows({{"Related layer", "b", "c", "d"}})));
    EXPECT_TRUE(m_rules.isEmpty());
}

} // namespace
