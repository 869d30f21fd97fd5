#include "layertesting.h"

using namespace VyObjects;

class ToolLayers : public ToolTest
{
protected:
    // A GeoPackage layer of three countries whose capitals and continents are still empty.
    QString countriesPackage()
    {
        return pointLayer(file("countries.gpkg"), "countries", {{"name"}, {"capital"}, {"continent"}},
                          {{TsString("France")}, {TsString("Kenya")}, {TsString("Chile")}});
    }
};

TEST_F(ToolLayers, ExportWritesTheLayersFeaturesBelowTitleAndHeader)
{
    const QString workbook = file("countries.xlsx");
    const ToolRun run = vygis({"export", sample("countries-110m.json") + QStringLiteral(":countries"),
                               workbook, "--exclude", "id"});
    EXPECT_EQ(run.status, 0) << run.err.toStdString();
    const std::vector<QStringList> rows = sheet(workbook);
    ASSERT_EQ(rows.size(), 179u);
    EXPECT_EQ(rows[0].value(0), "countries_attribute table");
    EXPECT_EQ(rows[1], QStringList{"name"});
    EXPECT_EQ(rows[2], QStringList{"Fiji"});
}

TEST_F(ToolLayers, ExportWithColumnsWritesCoordinatesAndFilteredFeatures)
{
    const QString workbook = file("cities.xlsx");
    const ToolRun run = vygis({"export", sample("cities.geojson"), workbook, "--where", "POP_MILLIONS > 20",
                               "--columns", "X", "Y", "Z", "NAME"});
    EXPECT_EQ(run.status, 0) << run.err.toStdString();
    const std::vector<QStringList> rows = sheet(workbook);
    ASSERT_EQ(rows.size(), 3u);
    EXPECT_EQ(rows[0], (QStringList{"X", "Y", "Z", "NAME"}));
    EXPECT_EQ(rows[1], (QStringList{"116.4074", "39.9042", "0", "Beijing"}));
}

TEST_F(ToolLayers, ExportTableWritesEveryRow)
{
    const QString csv = file("codes.csv");
    writeBytes(csv, "CODE,LABEL\n1,one\n2,two\n");
    const QString workbook = file("codes.xlsx");
    const ToolRun run = vygis({"export-table", csv, workbook});
    EXPECT_EQ(run.status, 0) << run.err.toStdString();
    const std::vector<QStringList> rows = sheet(workbook);
    ASSERT_EQ(rows.size(), 4u);
    EXPECT_EQ(rows[0].value(0), "codes_attribute table");
    EXPECT_EQ(rows[3], (QStringList{"2", "two"}));
}

TEST_F(ToolLayers, MissingSourcesLayersAndColumnsAreNamed)
{
    const QString workbook = file("out.xlsx");
    const ToolRun noFile = vygis({"export", file("none.gpkg"), workbook});
    EXPECT_EQ(noFile.status, 1);
    EXPECT_TRUE(noFile.err.contains("none.gpkg")) << noFile.err.toStdString();
    const ToolRun noLayer = vygis({"export", sample("countries-110m.json") + QStringLiteral(":rivers"), workbook});
    EXPECT_EQ(noLayer.status, 1);
    EXPECT_TRUE(noLayer.err.contains("rivers")) << noLayer.err.toStdString();
    const ToolRun noColumn = vygis({"export", sample("cities.geojson"), workbook, "--exclude", "HEIGHT"});
    EXPECT_EQ(noColumn.status, 2);
    EXPECT_TRUE(noColumn.err.contains("no column HEIGHT"));
    const ToolRun badFilter = vygis({"export", sample("cities.geojson"), workbook, "--where", "HEIGHT > 3"});
    EXPECT_EQ(badFilter.status, 1);
    EXPECT_TRUE(badFilter.err.contains("cannot be applied")) << badFilter.err.toStdString();
    EXPECT_FALSE(QFile::exists(workbook));
}

TEST_F(ToolLayers, JoinWritesWorkbookColumnsIntoTheLayer)
{
    const QString package = countriesPackage();
    const ToolRun run = vygis({"join", sample("country-facts.xlsx"),
                               package + QStringLiteral(":countries"), "--key", "name",
                               "--map", "CAPITAL CITY=capital"});
    EXPECT_EQ(run.status, 0) << run.err.toStdString();
    EXPECT_EQ(layerValues(package, "capital"), (QStringList{"Paris", "Nairobi", "<null>"}));
    EXPECT_EQ(layerValues(package, "continent"), (QStringList{"Europe", "Africa", "<null>"}));
}

TEST_F(ToolLayers, JoinWithoutKeyColumnWarnsAndChangesNothing)
{
    const QString package = countriesPackage();
    const ToolRun run = vygis({"join", sample("name-pairs.xlsx"), package, "--key", "name"});
    EXPECT_EQ(run.status, 1);
    EXPECT_TRUE(run.err.contains("The assocation field is not consistent with the excel key field!"));
    EXPECT_EQ(layerValues(package, "capital"), (QStringList{"<null>", "<null>", "<null>"}));

    const ToolRun noField = vygis({"join", sample("country-facts.xlsx"), package, "--key", "iso"});
    EXPECT_EQ(noField.status, 1);
    EXPECT_TRUE(noField.err.contains("no field ISO"));
    const ToolRun readOnly = vygis({"join", sample("country-facts.xlsx"),
                                    sample("countries-110m.json"), "--key", "name"});
    EXPECT_EQ(readOnly.status, 1);
}

TEST_F(ToolLayers, LayerNameAvoidsTheSourcesLayerNames)
{
    const QString package = countriesPackage();
    EXPECT_EQ(vygis({"layer-name", package, "Countries"}).out, "Countries-1\n");
    EXPECT_EQ(vygis({"layer-name", package, "rivers"}).out, "rivers\n");
    EXPECT_EQ(vygis({"layer-name", file("none.gpkg"), "rivers"}).status, 1);
}
