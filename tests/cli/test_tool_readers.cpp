#include "clitesting.h"

using ToolReaders = ToolTest;

TEST_F(ToolReaders, CoordsPrintsAClosedOutline)
{
    const ToolRun run = vygis({"coords", sample("paris-outline.xlsx")});
    EXPECT_EQ(run.status, 0);
    const QStringList points = lines(run.out);
    ASSERT_EQ(points.size(), 5);
    EXPECT_EQ(points.first(), "2.22,48.82");
    EXPECT_EQ(points.last(), points.first());

    const ToolRun texts = vygis({"coords", "--texts", sample("paris-outline.xlsx")});
    EXPECT_EQ(lines(texts.out).size(), 4);
}

TEST_F(ToolReaders, RulesAndPairsPrintCsv)
{
    const ToolRun rules = vygis({"rules", sample("check-rules.xlsx")});
    EXPECT_EQ(rules.status, 0);
    EXPECT_EQ(lines(rules.out), (QStringList{"countries,NAME,not empty,,A country has no name",
                           "countries,ISO_N3,length,3,The ISO code is not three digits",
                           "cities,POP_MILLIONS,range,\"0,40\",Population out of range"}));

    const ToolRun pairs = vygis({"pairs", sample("name-pairs.xlsx")});
    EXPECT_EQ(pairs.status, 0);
    EXPECT_EQ(lines(pairs.out), (QStringList{"CAPITAL CITY,CAPITAL", "CONTINENT,CONTINENT"}));
}

TEST_F(ToolReaders, MissingFilesAndWorkbooksOfTheWrongShapeFail)
{
    const ToolRun missing = vygis({"pairs", file("none.xlsx")});
    EXPECT_EQ(missing.status, 1);
    EXPECT_TRUE(missing.err.contains("none.xlsx: no such file"));

    const ToolRun rules = vygis({"rules", sample("paris-outline.xlsx")});
    EXPECT_EQ(rules.status, 1);
    EXPECT_TRUE(rules.err.contains("not a rule workbook"));
    EXPECT_EQ(vygis({"pairs", sample("cities.xlsx")}).status, 1);
    EXPECT_EQ(vygis({"coords", sample("dem.tif")}).status, 1);
}

TEST_F(ToolReaders, TemplateReadersListTablesAndFields)
{
    const QString workbook = sample("field-template.xlsx");
    const ToolRun names = vygis({"template", "names", workbook});
    EXPECT_EQ(lines(names.out), (QStringList{"countries", "cities"}));
    EXPECT_EQ(lines(vygis({"template", "tables", workbook}).out).size(), 9);
    EXPECT_EQ(lines(vygis({"template", "rows", workbook}).out).value(0), "countries,NAME,String,64,0");

    const ToolRun fields = vygis({"template", "fields", workbook, "cities"});
    EXPECT_EQ(fields.status, 0);
    EXPECT_EQ(lines(fields.out).value(2), "LAT,Double,10,4");
    const ToolRun withTable = vygis({"template", "fields", workbook, "cities", "--with-table"});
    EXPECT_EQ(lines(withTable.out).value(2), "cities,LAT,Double,10,4");

    const ToolRun notATemplate = vygis({"template", "rows", sample("cities.xlsx")});
    EXPECT_EQ(notATemplate.status, 1);
    EXPECT_TRUE(notATemplate.err.contains("not a field template workbook"));
}

TEST_F(ToolReaders, TemplateWritersReplaceRowsOfExistingWorkbooksOnly)
{
    const QString workbook = copyOf("field-template.xlsx");
    const ToolRun write = vygis({"template", "write", workbook, "-"},
                                "rivers,NAME,String,80,0\nrivers,LENGTH,Double,12,2\n");
    EXPECT_EQ(write.status, 0) << write.err.toStdString();
    EXPECT_EQ(VyExcelUtil::getImportTemplateTable(workbook), (QStringList{"rivers", "NAME", "String",
                           "80", "0", "rivers", "LENGTH", "Double", "12", "2"}));

    const ToolRun shortRow = vygis({"template", "write", workbook, "-"}, "rivers,NAME,String\n");
    EXPECT_EQ(shortRow.status, 1);
    EXPECT_TRUE(shortRow.err.contains("five fields"));
    EXPECT_EQ(VyExcelUtil::getImportTemplateTable(workbook).size(), 10);

    const QString names = copyOf("table-names.xlsx");
    EXPECT_EQ(vygis({"template", "write-names", names, "rivers", "lakes"}).status, 0);
    EXPECT_EQ(VyExcelUtil::readFieldsTemplateTableName(names), (QStringList{"rivers", "lakes"}));

    const QString missing = file("missing.xlsx");
    EXPECT_EQ(vygis({"template", "write-names", missing, "x"}).status, 1);
    EXPECT_FALSE(QFile::exists(missing));
}

TEST_F(ToolReaders, DxfCodepageCreatesNoFile)
{
    const QString missing = file("missing.dxf");
    EXPECT_EQ(vygis({"dxf-codepage", missing}).status, 1);
    EXPECT_FALSE(QFile::exists(missing));
}
