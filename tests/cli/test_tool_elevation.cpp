// vygis elevation: cells without a value, the lines of text point files, and the files
// the command must not write over.

#include "clitesting.h"

#include "tsgdal.h"

#include <QFile>

namespace {

using namespace VyObjects;

const QString outOfRange = QStringLiteral("Not within the range of Dem data!");

class ToolElevation : public ToolTest
{
protected:
    // Three columns by two rows over x 0..30, y 0..20: the middle cell of the top row and
    // the last cell hold noData.
    QString dem(double noData = -32768)
    {
        const QString path = file("dem.tif");
        QFile::remove(path);
        QString error;
        EXPECT_TRUE(TsGdalDataSource::createRaster(path, TsRect(0, 30, 0, 20), 3, 2,
                                                   {1, noData, 3, 4, 5, noData}, noData, &error))
            << error.toStdString();
        return path;
    }

    QString textFile(const QString& name, const QByteArray& content)
    {
        writeBytes(file(name), content);
        return file(name);
    }

    ToolRun elevation(const QByteArray& points, const QStringList& more = {})
    {
        return vygis(QStringList{"elevation", textFile("points.txt", points), dem(), file("report.xlsx")} + more);
    }

    // Columns A to C of the report's rows below its header.
    std::vector<QStringList> reportRows() const
    {
        std::vector<QStringList> rows = sheet(file("report.xlsx"));
        return rows.empty() ? rows : std::vector<QStringList>(rows.begin() + 1, rows.end());
    }
};

TEST_F(ToolElevation, CellsWithoutValueGetTheOutOfRangeTextWhateverTheNoDataNumber)
{
    for (const double noData : {-32768.0, -9999.0, 0.0, 3.4e38}) {
        const ToolRun run = vygis({"elevation", textFile("points.txt", "5 15\n15 15\n25 5\n15 5\n"),
                                   dem(noData), file("report.xlsx"), "--overwrite"});
        ASSERT_EQ(run.status, 0) << run.err.toStdString();
        std::vector<QStringList> elevations;
        for (const QStringList& row : reportRows())
            elevations.push_back({row.value(0), row.value(2)});
        EXPECT_EQ(elevations, (std::vector<QStringList>{{"1", "1.0000"}, {"2", outOfRange}, {"3", outOfRange},
                                                        {"4", "5.0000"}}))
            << noData;
    }
}

struct PointText
{
    const char* name;
    QByteArray content;
    std::vector<QStringList> rows;   // columns A and B of the report
    QString note;                    // on standard error; empty: nothing there
};

TEST_F(ToolElevation, TextLinesReadAsPointsHeadingsOrHeadersAndTheRestIsReported)
{
    const std::vector<PointText> cases{
        {"id, x, y", "7,5,15\n8;25;5\n", {{"1", "5.0000,15.0000"}, {"2", "25.0000,5.0000"}}, {}},
        {"X,Y header", "X,Y\n5,15\n", {{"1", "5.0000,15.0000"}}, "points.txt: line 1 (X,Y) taken for a column header"},
        {"id;lon;lat header", "# cities\nid;lon;lat\n1;5;15\n", {{"1", "5.0000,15.0000"}},
         "points.txt: line 2 (id;lon;lat) taken for a column header"},
        {"header of another width is a heading", "X,Y\n1,5,15\n", {{"X,Y", ""}, {"1", "5.0000,15.0000"}}, {}},
        {"spaced words are a heading", "North Africa\n5 15\n", {{"North Africa", ""}, {"1", "5.0000,15.0000"}}, {}},
        {"lines that are neither", "5,15\n12.5,abc\n1,2,3,4\n\n12,5;18,3\n25,5\n",
         {{"1", "5.0000,15.0000"}, {"2", "25.0000,5.0000"}},
         "points.txt: 3 lines skipped, neither a point nor a heading: lines 2, 3, 5"},
        {"many skipped lines", "1\n2\n3\n4\n5\n6\n5,15\n", {{"1", "5.0000,15.0000"}},
         "points.txt: 6 lines skipped, neither a point nor a heading: lines 1, 2, 3, 4, 5, ..."},
    };
    for (const PointText& text : cases) {
        const ToolRun run = elevation(text.content, {"--overwrite"});
        ASSERT_EQ(run.status, 0) << text.name << ": " << run.err.toStdString();
        std::vector<QStringList> rows;
        for (const QStringList& row : reportRows())
            rows.push_back({row.value(0), row.value(1)});
        EXPECT_EQ(rows, text.rows) << text.name;
        if (text.note.isEmpty())
            EXPECT_EQ(run.err, QString()) << text.name;
        else
            EXPECT_TRUE(run.err.contains(text.note)) << text.name << ": " << run.err.toStdString();
    }
}

TEST_F(ToolElevation, FileWithoutAPointLineIsRefused)
{
    const ToolRun run = elevation("X,Y\nNorth\n12.5,abc\n");
    EXPECT_EQ(run.status, 1);
    EXPECT_TRUE(run.err.contains("points.txt: no line holds a point")) << run.err.toStdString();
    EXPECT_FALSE(QFile::exists(file("report.xlsx")));
}

// Folders, GeoPackages and --overwrite are the shared safety table's; these refusals are
// elevation's own.
TEST_F(ToolElevation, RefusedOutputsAreLeftByteForByte)
{
    const QString points = textFile("points.txt", "5 15\n");
    const QString raster = dem();
    const QString csv = textFile("heights.csv", "NAME,HEIGHT\nA,1\n");
    const std::vector<std::pair<QString, QString>> refused{
        {raster, "is also an input"},
        {points, "is also an input"},
        {csv, "--overwrite"},
    };
    for (const auto& [output, reason] : refused) {
        const QByteArray before = bytesOf(output);
        const ToolRun run = vygis({"elevation", points, raster, output});
        EXPECT_EQ(run.status, 1) << output.toStdString();
        EXPECT_TRUE(run.err.contains(output) && run.err.contains(reason)) << run.err.toStdString();
        EXPECT_EQ(bytesOf(output), before) << output.toStdString();
    }
}

TEST_F(ToolElevation, UnreadableRasterIsNamedWithTheReason)
{
    const QString notARaster = textFile("dem.csv", "NAME,CODE\nA,1\n");
    const ToolRun run = vygis({"elevation", textFile("points.txt", "5 15\n"), notARaster, file("report.xlsx")});
    EXPECT_EQ(run.status, 1);
    EXPECT_TRUE(run.err.contains(notARaster + QStringLiteral(": holds no raster"))) << run.err.toStdString();
    EXPECT_FALSE(QFile::exists(file("report.xlsx")));
}

} // namespace
