#include "clitesting.h"

#include <QFile>

using ToolReports = ToolTest;

TEST_F(ToolReports, ErrorsComeFromArgumentsAndCsvFiles)
{
    const QString csv = file(QStringLiteral("errors.csv"));
    QFile list(csv);
    ASSERT_TRUE(list.open(QIODevice::WriteOnly));
    list.write("Must not overlap,3,countries\n");
    list.close();
    const QString workbook = file(QStringLiteral("errors.xlsx"));
    const ToolRun run = vygis({QStringLiteral("errors"), workbook, QStringLiteral("Gap"), QStringLiteral("1"),
                               QStringLiteral("land"), QStringLiteral("--from"), csv});
    EXPECT_EQ(run.status, 0) << run.err.toStdString();
    const std::vector<QStringList> rows = sheet(workbook);
    ASSERT_EQ(rows.size(), 3u);
    EXPECT_EQ(rows[0], (QStringList{QStringLiteral("Error Type"), QStringLiteral("Layer Count"), QStringLiteral("Layer Name")}));
    EXPECT_EQ(rows[1], (QStringList{QStringLiteral("Gap"), QStringLiteral("1"), QStringLiteral("land")}));
    EXPECT_EQ(rows[2], (QStringList{QStringLiteral("Must not overlap"), QStringLiteral("3"), QStringLiteral("countries")}));

    EXPECT_EQ(vygis({QStringLiteral("errors"), workbook, QStringLiteral("Gap"), QStringLiteral("1")}).status, 2);
}

TEST_F(ToolReports, TopologyReportsEveryFindingOfTheJson)
{
    const QString report = file(QStringLiteral("topology.xlsx"));
    const ToolRun run = vygis({QStringLiteral("topology"), sample(QStringLiteral("topology.json")), report});
    EXPECT_EQ(run.status, 0) << run.err.toStdString();
    const std::vector<QStringList> rows = sheet(report);
    ASSERT_EQ(rows.size(), 5u);   // header, four findings
    EXPECT_EQ(rows[0].value(6), QStringLiteral("Feature 2"));
    EXPECT_EQ(rows[2], (QStringList{QString(), QString(), QStringLiteral("2"), QStringLiteral("countries"), QString(),
                                    QStringLiteral("57"), QStringLiteral("58"), QStringLiteral("3.38,6.52"),
                                    QStringLiteral("countries")}));
    EXPECT_EQ(rows[4], rows[3]);   // the unreadable finding repeats the one before
}

TEST_F(ToolReports, TopologyRefusesJsonOfAnotherShape)
{
    const QString json = file(QStringLiteral("bad.json"));
    QFile bad(json);
    ASSERT_TRUE(bad.open(QIODevice::WriteOnly));
    bad.write(R"({"errors": [{"number": 1}, {"layer": "roads"}]})");
    bad.close();
    const ToolRun run = vygis({QStringLiteral("topology"), json, file(QStringLiteral("out.xlsx"))});
    EXPECT_EQ(run.status, 1);
    EXPECT_TRUE(run.err.contains(QStringLiteral("errors[1]: unknown member \"layer\""))) << run.err.toStdString();
    EXPECT_FALSE(QFile::exists(file(QStringLiteral("out.xlsx"))));

    const ToolRun notJson = vygis({QStringLiteral("topology"), sample(QStringLiteral("cities.xlsx")), file(QStringLiteral("out.xlsx"))});
    EXPECT_EQ(notJson.status, 1);
    EXPECT_TRUE(notJson.err.contains(QStringLiteral("not JSON")));
}

TEST_F(ToolReports, ElevationReadsTextPointsAgainstTheDem)
{
    const QString report = file(QStringLiteral("elevations.xlsx"));
    const ToolRun run = vygis({QStringLiteral("elevation"), sample(QStringLiteral("elevation-points.txt")),
                               sample(QStringLiteral("dem.tif")), report});
    EXPECT_EQ(run.status, 0) << run.err.toStdString();
    const std::vector<QStringList> rows = sheet(report);
    ASSERT_EQ(rows.size(), 17u);   // header, five headings, eleven points
    EXPECT_EQ(rows[1].value(0), QStringLiteral("Asia"));
    EXPECT_EQ(rows[2].value(0), QStringLiteral("1"));
    EXPECT_EQ(rows[2].value(1), QStringLiteral("116.4074,39.9042"));
    EXPECT_EQ(rows[2].value(2), QStringLiteral("384.0000"));
    EXPECT_EQ(rows[16].value(2), QStringLiteral("Not within the range of Dem data!"));
}

TEST_F(ToolReports, ElevationReadsWorkbookPointsAsACoordinateTable)
{
    const QString report = file(QStringLiteral("elevations.xlsx"));
    const ToolRun run = vygis({QStringLiteral("elevation"), sample(QStringLiteral("paris-outline.xlsx")),
                               sample(QStringLiteral("dem.tif")), report});
    EXPECT_EQ(run.status, 0) << run.err.toStdString();
    const std::vector<QStringList> rows = sheet(report);
    ASSERT_EQ(rows.size(), 5u);
    EXPECT_EQ(rows[1].value(1), QStringLiteral("2.2200,48.8200"));
}

TEST_F(ToolReports, ElevationFailsOnMissingPoints)
{
    const QString report = file(QStringLiteral("elevations.xlsx"));
    const ToolRun noPoints = vygis({QStringLiteral("elevation"), file(QStringLiteral("none.txt")),
                                    sample(QStringLiteral("dem.tif")), report});
    EXPECT_EQ(noPoints.status, 1);
    EXPECT_TRUE(noPoints.err.contains(QStringLiteral("none.txt: no such file")));
    EXPECT_FALSE(QFile::exists(report));
}
