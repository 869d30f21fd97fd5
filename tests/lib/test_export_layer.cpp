#include "test_export_support.h"

#include "tsmemorylayer.h"

using namespace VyObjects;

namespace {

// Fields ID, NAME (alias "Road name") and AREA (double); two features.
TsRefPtr<TsMemoryFeatureLayer> roads()
{
    auto layer = TsRefPtr<TsMemoryFeatureLayer>::create("Roads", TsLayer::LineLayer);
    layer->AddField("ID", TsField::IntegerField);
    layer->AddField("NAME", TsField::StringField, "Road name");
    layer->AddField("AREA", TsField::DoubleField);
    layer->AddFeature({std::int32_t(1), "Main St", 1234.5});
    layer->AddFeature({std::int32_t(2), "Mill Rd", 1.0 / 3.0});
    return layer;
}

// Fields NAME (alias "Well name"), x (lower case) and DEPTH; a point without height, one
// with height, one feature shaped as a line and one without shape.
TsRefPtr<TsMemoryFeatureLayer> wells()
{
    auto layer = TsRefPtr<TsMemoryFeatureLayer>::create("Wells", TsLayer::PointLayer);
    layer->AddField("NAME", TsField::StringField, "Well name");
    layer->AddField("x", TsField::StringField);
    layer->AddField("DEPTH", TsField::DoubleField);
    layer->AddFeature({"W1", "low", 12.25}, TsRefPtr<TsGeoPoint>::create(500100.125, 4200200.5));
    layer->AddFeature({"W2", "high", 3.0}, TsRefPtr<TsGeoPoint>::create(1.0 / 3.0, 2.0, 87.5));
    layer->AddFeature({"W3", "", 0.5}, TsRefPtr<TsGeoPath>::create(TsGeometry::PolylineGeometry,
                                                                   std::vector<TsPoint>{{0, 0}, {1, 1}}));
    layer->AddFeature({"W4", "", 0.0});
    return layer;
}

using Names = std::vector<QString>;
using LayerExport = ExportTest;

TEST_F(LayerExport, WritesStyledTitleHeaderAndFeaturesAsText)
{
    ASSERT_TRUE(VyExcelUtil::export2Excel(path(), roads().get(), false, {}));
    SavedSheet sheet(path());
    expectTitledTable(sheet, "Roads_attribute table", {"ID", "NAME", "AREA"});
    EXPECT_EQ(sheet.rowTexts(3, 3), QStringList({"1", "Main St", "1234.5"}));
    // Numbers are text cells; floating ones carry at most 8 decimals.
    EXPECT_EQ(sheet.value(4, 3), QVariant(QStringLiteral("0.33333333")));
    EXPECT_EQ(sheet.value(4, 1), QVariant(QStringLiteral("2")));
    expectStyled(sheet.format(4, 3), false);
    EXPECT_EQ(sheet.extent(), "A1:C4");
    EXPECT_EQ(expectOpenpyxlReadsAsTheEngine(path()), 10);
}

TEST_F(LayerExport, HeadsWithAliasesAndPacksFieldsLeftAfterExclusionIgnoringUnknownIndexes)
{
    const auto layer = roads();
    ASSERT_TRUE(VyExcelUtil::export2Excel(path("alias.xlsx"), layer.get(), true, {}));
    EXPECT_EQ(SavedSheet(path("alias.xlsx")).rowTexts(2, 3), QStringList({"ID()", "NAME(Road name)", "AREA()"}));
    ASSERT_TRUE(VyExcelUtil::export2Excel(path(), layer.get(), false, {0, 9}));
    SavedSheet sheet(path());
    EXPECT_EQ(sheet.merges(), QStringList{"A1:B1"});
    EXPECT_EQ(sheet.rowTexts(2, 3), QStringList({"NAME", "AREA", ""}));
    EXPECT_EQ(sheet.rowTexts(3, 3), QStringList({"Main St", "1234.5", ""}));
}

TEST_F(LayerExport, WritesWhatTheLayerFilterAdmitsAndNoRowWithoutACursor)
{
    const auto layer = roads();
    // The layer refuses a cursor for a filter on a field it lacks.
    const struct { const char* filter; const char* extent; } cases[] = {
        {"ID = 2", "A1:C3"}, {"ID = 3", "A1:C2"}, {"NOSUCHFIELD = 1", "A1:C2"}};
    for (const auto& c : cases) {
        layer->SetQueryFilter(TsQueryFilter(c.filter));
        ASSERT_TRUE(VyExcelUtil::export2Excel(path(c.filter), layer.get(), false, {}));
        EXPECT_EQ(SavedSheet(path(c.filter)).extent(), c.extent) << c.filter;
    }
    EXPECT_EQ(SavedSheet(path("ID = 2")).rowTexts(3, 2), QStringList({"2", "Mill Rd"}));
}

TEST_F(LayerExport, BothRefuseWhatTheyCannotExportWithoutTouchingFiles)
{
    const auto layer = roads();
    const auto schemaless = roads();
    schemaless->SetFieldsAvailable(false);
    // Rows 3 to 1,048,576 take 1,048,574 features; one more cannot be placed.
    auto big = TsRefPtr<TsMemoryFeatureLayer>::create("Big", TsLayer::PointLayer);
    big->AddField("ID", TsField::IntegerField);
    for (std::int32_t id = 0; id < 1048575; ++id)
        big->AddFeature({id});
    const QString kept = existingFile();
    EXPECT_FALSE(VyExcelUtil::export2Excel(QString(), layer.get(), false, {}));
    EXPECT_FALSE(VyExcelUtil::export2Excel(kept, nullptr, false, {}));
    EXPECT_FALSE(VyExcelUtil::export2Excel(kept, schemaless.get(), false, {}));
    EXPECT_FALSE(VyExcelUtil::export2Excel(kept, layer.get(), false, {0, 1, 2}));
    EXPECT_FALSE(VyExcelUtil::export2Excel(kept, big.get(), false, {}));
    EXPECT_FALSE(VyExcelUtil::export2ExcelHasXYZ(QString(), layer.get(), Names{"X"}, false, {}));
    EXPECT_FALSE(VyExcelUtil::export2ExcelHasXYZ(kept, nullptr, Names{"X"}, false, {}));
    EXPECT_FALSE(VyExcelUtil::export2ExcelHasXYZ(kept, schemaless.get(), Names{"X"}, false, {}));
    EXPECT_FALSE(VyExcelUtil::export2ExcelHasXYZ(kept, layer.get(), Names{}, false, {}));
    EXPECT_FALSE(VyExcelUtil::export2ExcelHasXYZ(kept, layer.get(), Names{"X"}, false, {0}));
    EXPECT_TRUE(keptIntact(kept));
}

TEST_F(LayerExport, CoordinatesWriteHeaderThenCoordinatesAndFieldsAsPlainText)
{
    ASSERT_TRUE(VyExcelUtil::export2ExcelHasXYZ(path(), wells().get(), Names{"X", "Y", "Z", "DEPTH"}, false, {}));
    SavedSheet sheet(path());
    EXPECT_EQ(sheet.rowTexts(1, 4), QStringList({"X", "Y", "Z", "DEPTH"}));
    EXPECT_EQ(sheet.rowTexts(2, 4), QStringList({"500100.125", "4200200.5", "0", "12.25"}));
    EXPECT_EQ(sheet.rowTexts(3, 4), QStringList({"0.33333333", "2", "87.5", "3"}));
    // A feature without a point keeps its row with empty coordinates.
    EXPECT_EQ(sheet.rowTexts(5, 4), QStringList({"", "", "", "0"}));
    EXPECT_FALSE(sheet.hasCell(5, 1));
    EXPECT_EQ(sheet.value(3, 2).userType(), QMetaType::QString);
    EXPECT_TRUE(sheet.format(1, 1).isEmpty() && sheet.format(3, 4).isEmpty());
    EXPECT_TRUE(sheet.merges().isEmpty());
    EXPECT_DOUBLE_EQ(sheet.rowHeight(1), sheet.rowHeight(2));
    EXPECT_EQ(expectOpenpyxlReadsAsTheEngine(path()), 14);
}

TEST_F(LayerExport, CoordinateColumnsFollowNamesCaseAliasesAndExclusions)
{
    const auto layer = wells();
    const struct { Names names; bool alias; QSet<int> excluded; int row; QStringList texts; } cases[] = {
        // Only upper-case names are coordinates, and repeats are kept.
        {{"x", "X", "x"}, false, {}, 2, {"low", "500100.125", "low"}},
        {{"X", "NAME", "Z"}, false, {}, 4, {"", "W3", ""}},
        // Aliases come from the layer's fields only.
        {{"name", "DEPTH", "Y", "OTHER"}, true, {}, 1, {"name(Well name)", "DEPTH()", "Y", "OTHER"}},
        {{"X", "Y", "NAME"}, false, {1, 5}, 1, {"X", "NAME", ""}},
    };
    for (const auto& c : cases) {
        ASSERT_TRUE(VyExcelUtil::export2ExcelHasXYZ(path(), layer.get(), c.names, c.alias, c.excluded));
        EXPECT_EQ(SavedSheet(path()).rowTexts(c.row, c.texts.size()), c.texts);
    }
}

} // namespace
