#include "clitesting.h"

#include <QFile>

using ToolReports = ToolTest;

TEST_F(ToolReports, ErrorsComeFromArgumentsAndCsvFiles)
{
    const QString csv = file("errors.csv");
    writeBytes(csv, "Must not overlap,3,countries\n");
    const QString workbook = file("errors.xlsx");
    const ToolRun run = vygis({"errors", workbook, "Gap", "1", "land", "--from", csv});
    EXPECT_EQ(run.status, 0) << run.err.toStdString();
    const std::vector<QStringList> rows = sheet(workbook);
    ASSERT_EQ(rows.size(), 3u);
    EXPECT_EQ(rows[0], (QStringList{"Error Type", "Layer Count", "Layer Name"}));
    EXPECT_EQ(rows[1], (QStringList{"Gap", "1", "land"}));
    EXPECT_EQ(rows[2], (QStringList{"Must not overlap", "3", "countries"}));

    EXPECT_EQ(vygis({"errors", workbook, "Gap", "1"}).status, 2);
}

TEST_F(ToolReports, TopologyReportsEveryFindingOfTheJson)
{
    const QString report = file("topology.xlsx");
    const ToolRun run = vygis({"topology", sample("topology.json"), report});
    EXPECT_EQ(run.status, 0) << run.err.toStdString();
    const std::vector<QStringList> rows = sheet(report);
    ASSERT_EQ(rows.size(), 5u);   // header, four findings
    EXPECT_EQ(rows[0].value(6), "Feature 2");
    EXPECT_EQ(rows[2], (QStringList{QString(), QString(), "2", "countries", QString(), "57", "58", "3.38,6.52",
                                    "countries"}));
    EXPECT_EQ(rows[4], rows[3]);   // the unreadable finding repeats the one before
}

TEST_F(ToolReports, TopologyRefusesJsonOfAnotherShape)
{
    const QString json = file("bad.json");
    writeBytes(json, R"({"errors": [{"number": 1}, {"layer": "roads"}]})");
    const ToolRun run = vygis({"topology", json, file("out.xlsx")});
    EXPECT_EQ(run.status, 1);
    EXPECT_TRUE(run.err.contains("errors[1]: unknown member \"layer\"")) << run.err.toStdString();
    EXPECT_FALSE(QFile::exists(file("out.xlsx")));

    const ToolRun notJson = vygis({"topology", sample("cities.xlsx"), file("out.xlsx")});
    EXPECT_EQ(notJson.status, 1);
    EXPECT_TRUE(notJson.err.contains("not JSON"));
}

TEST_F(ToolReports, ElevationReadsTextPointsAgainstTheDem)
{
    const QString report = file("elevations.xlsx");
    const ToolRun run = vygis({"elevation", sample("elevation-points.txt"), sample("dem.tif"), report});
    EXPECT_EQ(run.status, 0) << run.err.toStdString();
    const std::vector<QStringList> rows = sheet(report);
    ASSERT_EQ(rows.size(), 17u);   // header, five headings, eleven points
    EXPECT_EQ(rows[1].value(0), "Asia");
    EXPECT_EQ(rows[2].value(0), "1");
    EXPECT_EQ(rows[2].value(1), "116.4074,39.9042");
    EXPECT_EQ(rows[2].value(2), "384.0000");
    EXPECT_EQ(rows[16].value(2), "Not within the range of Dem data!");
}

TEST_F(ToolReports, ElevationReadsWorkbookPointsAsACoordinateTable)
{
    const QString report = file("elevations.xlsx");
    const ToolRun run = vygis({"elevation", sample("paris-outline.xlsx"), sample("dem.tif"), report});
    EXPECT_EQ(run.status, 0) << run.err.toStdString();
    const std::vector<QStringList> rows = sheet(report);
    ASSERT_EQ(rows.size(), 5u);
    EXPECT_EQ(rows[1].value(1), "2.2200,48.8200");
}

TEST_F(ToolReports, ElevationFailsOnMissingPoints)
{
    const QString report = file("elevations.xlsx");
    const ToolRun noPoints = vygis({"elevation", file("none.txt"), sample("dem.tif"), report});
    EXPECT_EQ(noPoints.status, 1);
    EXPECT_TRUE(noPoints.err.contains("none.txt: no such file"));
    EXPECT_FALSE(QFile::exists(report));
}
