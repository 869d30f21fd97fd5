#include "layertesting.h"

using namespace VyObjects;

class ToolLayers : public ToolTest
{
protected:
    // A GeoPackage layer of three countries whose capitals and continents are still empty.
    QString countriesPackage()
    {
        return pointLayer(file(QStringLiteral("countries.gpkg")), QStringLiteral("countries"),
                          {{QStringLiteral("name")}, {QStringLiteral("capital")}, {QStringLiteral("continent")}},
                          {{TsString("France")}, {TsString("Kenya")}, {TsString("Chile")}});
    }
};

TEST_F(ToolLayers, ExportWritesTheLayersFeaturesBelowTitleAndHeader)
{
    const QString workbook = file(QStringLiteral("countries.xlsx"));
    const ToolRun run = vygis({QStringLiteral("export"), sample(QStringLiteral("countries-110m.json")) + QStringLiteral(":countries"),
                               workbook, QStringLiteral("--exclude"), QStringLiteral("id")});
    EXPECT_EQ(run.status, 0) << run.err.toStdString();
    const std::vector<QStringList> rows = sheet(workbook);
    ASSERT_EQ(rows.size(), 179u);
    EXPECT_EQ(rows[0].value(0), QStringLiteral("countries_attribute table"));
    EXPECT_EQ(rows[1], QStringList{QStringLiteral("name")});
    EXPECT_EQ(rows[2], QStringList{QStringLiteral("Fiji")});
}

TEST_F(ToolLayers, ExportWithColumnsWritesCoordinatesAndFilteredFeatures)
{
    const QString workbook = file(QStringLiteral("cities.xlsx"));
    const ToolRun run = vygis({QStringLiteral("export"), sample(QStringLiteral("cities.geojson")), workbook,
                               QStringLiteral("--where"), QStringLiteral("POP_MILLIONS > 20"),
                               QStringLiteral("--columns"), QStringLiteral("X"), QStringLiteral("Y"),
                               QStringLiteral("Z"), QStringLiteral("NAME")});
    EXPECT_EQ(run.status, 0) << run.err.toStdString();
    const std::vector<QStringList> rows = sheet(workbook);
    ASSERT_EQ(rows.size(), 3u);
    EXPECT_EQ(rows[0], (QStringList{QStringLiteral("X"), QStringLiteral("Y"), QStringLiteral("Z"), QStringLiteral("NAME")}));
    EXPECT_EQ(rows[1], (QStringList{QStringLiteral("116.4074"), QStringLiteral("39.9042"), QStringLiteral("0"),
                                    QStringLiteral("Beijing")}));
}

TEST_F(ToolLayers, ExportTableWritesEveryRow)
{
    const QString csv = file(QStringLiteral("codes.csv"));
    QFile table(csv);
    ASSERT_TRUE(table.open(QIODevice::WriteOnly));
    table.write("CODE,LABEL\n1,one\n2,two\n");
    table.close();
    const QString workbook = file(QStringLiteral("codes.xlsx"));
    const ToolRun run = vygis({QStringLiteral("export-table"), csv, workbook});
    EXPECT_EQ(run.status, 0) << run.err.toStdString();
    const std::vector<QStringList> rows = sheet(workbook);
    ASSERT_EQ(rows.size(), 4u);
    EXPECT_EQ(rows[0].value(0), QStringLiteral("codes_attribute table"));
    EXPECT_EQ(rows[3], (QStringList{QStringLiteral("2"), QStringLiteral("two")}));
}

TEST_F(ToolLayers, MissingSourcesLayersAndColumnsAreNamed)
{
    const QString workbook = file(QStringLiteral("out.xlsx"));
    const ToolRun noFile = vygis({QStringLiteral("export"), file(QStringLiteral("none.gpkg")), workbook});
    EXPECT_EQ(noFile.status, 1);
    EXPECT_TRUE(noFile.err.contains(QStringLiteral("none.gpkg"))) << noFile.err.toStdString();
    const ToolRun noLayer = vygis({QStringLiteral("export"), sample(QStringLiteral("countries-110m.json")) + QStringLiteral(":rivers"), workbook});
    EXPECT_EQ(noLayer.status, 1);
    EXPECT_TRUE(noLayer.err.contains(QStringLiteral("rivers"))) << noLayer.err.toStdString();
    const ToolRun noColumn = vygis({QStringLiteral("export"), sample(QStringLiteral("cities.geojson")), workbook,
                                    QStringLiteral("--exclude"), QStringLiteral("HEIGHT")});
    EXPECT_EQ(noColumn.status, 2);
    EXPECT_TRUE(noColumn.err.contains(QStringLiteral("no column HEIGHT")));
    const ToolRun badFilter = vygis({QStringLiteral("export"), sample(QStringLiteral("cities.geojson")), workbook,
                                     QStringLiteral("--where"), QStringLiteral("HEIGHT > 3")});
    EXPECT_EQ(badFilter.status, 1);
    EXPECT_TRUE(badFilter.err.contains(QStringLiteral("cannot be applied"))) << badFilter.err.toStdString();
    EXPECT_FALSE(QFile::exists(workbook));
}

TEST_F(ToolLayers, JoinWritesWorkbookColumnsIntoTheLayer)
{
    const QString package = countriesPackage();
    const ToolRun run = vygis({QStringLiteral("join"), sample(QStringLiteral("country-facts.xlsx")),
                               package + QStringLiteral(":countries"), QStringLiteral("--key"), QStringLiteral("name"),
                               QStringLiteral("--map"), QStringLiteral("CAPITAL CITY=capital")});
    EXPECT_EQ(run.status, 0) << run.err.toStdString();
    EXPECT_EQ(layerValues(package, "capital"), (QStringList{"Paris", "Nairobi", "<null>"}));
    EXPECT_EQ(layerValues(package, "continent"), (QStringList{"Europe", "Africa", "<null>"}));
}

TEST_F(ToolLayers, JoinWithoutKeyColumnWarnsAndChangesNothing)
{
    const QString package = countriesPackage();
    const ToolRun run = vygis({QStringLiteral("join"), sample(QStringLiteral("name-pairs.xlsx")), package,
                               QStringLiteral("--key"), QStringLiteral("name")});
    EXPECT_EQ(run.status, 1);
    EXPECT_TRUE(run.err.contains(QStringLiteral("The assocation field is not consistent with the excel key field!")));
    EXPECT_EQ(layerValues(package, "capital"), (QStringList{"<null>", "<null>", "<null>"}));

    const ToolRun noField = vygis({QStringLiteral("join"), sample(QStringLiteral("country-facts.xlsx")), package,
                                   QStringLiteral("--key"), QStringLiteral("iso")});
    EXPECT_EQ(noField.status, 1);
    EXPECT_TRUE(noField.err.contains(QStringLiteral("no field ISO")));
    const ToolRun readOnly = vygis({QStringLiteral("join"), sample(QStringLiteral("country-facts.xlsx")),
                                    sample(QStringLiteral("countries-110m.json")), QStringLiteral("--key"), QStringLiteral("name")});
    EXPECT_EQ(readOnly.status, 1);
}

TEST_F(ToolLayers, LayerNameAvoidsTheSourcesLayerNames)
{
    const QString package = countriesPackage();
    EXPECT_EQ(vygis({QStringLiteral("layer-name"), package, QStringLiteral("Countries")}).out, QStringLiteral("Countries-1\n"));
    EXPECT_EQ(vygis({QStringLiteral("layer-name"), package, QStringLiteral("rivers")}).out, QStringLiteral("rivers\n"));
    EXPECT_EQ(vygis({QStringLiteral("layer-name"), file(QStringLiteral("none.gpkg")), QStringLiteral("rivers")}).status, 1);
}
