#include "clitesting.h"

using ToolReaders = ToolTest;

TEST_F(ToolReaders, CoordsPrintsAClosedOutline)
{
    const ToolRun run = vygis({QStringLiteral("coords"), sample(QStringLiteral("paris-outline.xlsx"))});
    EXPECT_EQ(run.status, 0);
    const QStringList points = lines(run.out);
    ASSERT_EQ(points.size(), 5);
    EXPECT_EQ(points.first(), QStringLiteral("2.22,48.82"));
    EXPECT_EQ(points.last(), points.first());

    const ToolRun texts = vygis({QStringLiteral("coords"), QStringLiteral("--texts"), sample(QStringLiteral("paris-outline.xlsx"))});
    EXPECT_EQ(lines(texts.out).size(), 4);
}

TEST_F(ToolReaders, RulesAndPairsPrintCsv)
{
    const ToolRun rules = vygis({QStringLiteral("rules"), sample(QStringLiteral("check-rules.xlsx"))});
    EXPECT_EQ(rules.status, 0);
    EXPECT_EQ(lines(rules.out),
              (QStringList{QStringLiteral("countries,NAME,not empty,,A country has no name"),
                           QStringLiteral("countries,ISO_N3,length,3,The ISO code is not three digits"),
                           QStringLiteral("cities,POP_MILLIONS,range,\"0,40\",Population out of range")}));

    const ToolRun pairs = vygis({QStringLiteral("pairs"), sample(QStringLiteral("name-pairs.xlsx"))});
    EXPECT_EQ(pairs.status, 0);
    EXPECT_EQ(lines(pairs.out), (QStringList{QStringLiteral("CAPITAL CITY,CAPITAL"),
                                             QStringLiteral("CONTINENT,CONTINENT")}));
}

TEST_F(ToolReaders, MissingFilesAndWorkbooksOfTheWrongShapeFail)
{
    const ToolRun missing = vygis({QStringLiteral("pairs"), file(QStringLiteral("none.xlsx"))});
    EXPECT_EQ(missing.status, 1);
    EXPECT_TRUE(missing.err.contains(QStringLiteral("none.xlsx: no such file")));

    const ToolRun rules = vygis({QStringLiteral("rules"), sample(QStringLiteral("paris-outline.xlsx"))});
    EXPECT_EQ(rules.status, 1);
    EXPECT_TRUE(rules.err.contains(QStringLiteral("not a rule workbook")));
    EXPECT_EQ(vygis({QStringLiteral("pairs"), sample(QStringLiteral("cities.xlsx"))}).status, 1);
    EXPECT_EQ(vygis({QStringLiteral("coords"), sample(QStringLiteral("dem.tif"))}).status, 1);
}

TEST_F(ToolReaders, TemplateReadersListTablesAndFields)
{
    const QString workbook = sample(QStringLiteral("field-template.xlsx"));
    const ToolRun names = vygis({QStringLiteral("template"), QStringLiteral("names"), workbook});
    EXPECT_EQ(lines(names.out), (QStringList{QStringLiteral("countries"), QStringLiteral("cities")}));
    EXPECT_EQ(lines(vygis({QStringLiteral("template"), QStringLiteral("tables"), workbook}).out).size(), 9);
    EXPECT_EQ(lines(vygis({QStringLiteral("template"), QStringLiteral("rows"), workbook}).out).value(0),
              QStringLiteral("countries,NAME,String,64,0"));

    const ToolRun fields = vygis({QStringLiteral("template"), QStringLiteral("fields"), workbook, QStringLiteral("cities")});
    EXPECT_EQ(fields.status, 0);
    EXPECT_EQ(lines(fields.out).value(2), QStringLiteral("LAT,Double,10,4"));
    const ToolRun withTable = vygis({QStringLiteral("template"), QStringLiteral("fields"), workbook,
                                     QStringLiteral("cities"), QStringLiteral("--with-table")});
    EXPECT_EQ(lines(withTable.out).value(2), QStringLiteral("cities,LAT,Double,10,4"));

    const ToolRun notATemplate = vygis({QStringLiteral("template"), QStringLiteral("rows"), sample(QStringLiteral("cities.xlsx"))});
    EXPECT_EQ(notATemplate.status, 1);
    EXPECT_TRUE(notATemplate.err.contains(QStringLiteral("not a field template workbook")));
}

TEST_F(ToolReaders, TemplateWritersReplaceRowsOfExistingWorkbooksOnly)
{
    const QString workbook = copyOf(QStringLiteral("field-template.xlsx"));
    const ToolRun write = vygis({QStringLiteral("template"), QStringLiteral("write"), workbook, QStringLiteral("-")},
                                "rivers,NAME,String,80,0\nrivers,LENGTH,Double,12,2\n");
    EXPECT_EQ(write.status, 0) << write.err.toStdString();
    EXPECT_EQ(VyExcelUtil::getImportTemplateTable(workbook),
              (QStringList{QStringLiteral("rivers"), QStringLiteral("NAME"), QStringLiteral("String"),
                           QStringLiteral("80"), QStringLiteral("0"), QStringLiteral("rivers"),
                           QStringLiteral("LENGTH"), QStringLiteral("Double"), QStringLiteral("12"),
                           QStringLiteral("2")}));

    const ToolRun shortRow = vygis({QStringLiteral("template"), QStringLiteral("write"), workbook, QStringLiteral("-")},
                                   "rivers,NAME,String\n");
    EXPECT_EQ(shortRow.status, 1);
    EXPECT_TRUE(shortRow.err.contains(QStringLiteral("five fields")));
    EXPECT_EQ(VyExcelUtil::getImportTemplateTable(workbook).size(), 10);

    const QString names = copyOf(QStringLiteral("table-names.xlsx"));
    EXPECT_EQ(vygis({QStringLiteral("template"), QStringLiteral("write-names"), names, QStringLiteral("rivers"),
                     QStringLiteral("lakes")}).status, 0);
    EXPECT_EQ(VyExcelUtil::readFieldsTemplateTableName(names), (QStringList{QStringLiteral("rivers"), QStringLiteral("lakes")}));

    const QString missing = file(QStringLiteral("missing.xlsx"));
    EXPECT_EQ(vygis({QStringLiteral("template"), QStringLiteral("write-names"), missing, QStringLiteral("x")}).status, 1);
    EXPECT_FALSE(QFile::exists(missing));
}

TEST_F(ToolReaders, DxfCodepageCreatesNoFile)
{
    const QString missing = file(QStringLiteral("missing.dxf"));
    EXPECT_EQ(vygis({QStringLiteral("dxf-codepage"), missing}).status, 1);
    EXPECT_FALSE(QFile::exists(missing));
}
