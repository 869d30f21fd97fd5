#include "test_export_support.h"

#include "vygisutil.h"

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

using FeatureLayerExport = ExportTest;

TEST_F(FeatureLayerExport, WritesStyledTitleHeaderAndFeaturesAsText)
{
    const auto layer = roads();
    ASSERT_TRUE(VyExcelUtil::export2Excel(path(), layer.get(), false, {}));

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

TEST_F(FeatureLayerExport, HeadsFieldsWithTheirAliasesInBrackets)
{
    const auto layer = roads();
    ASSERT_TRUE(VyExcelUtil::export2Excel(path(), layer.get(), true, {}));
    EXPECT_EQ(SavedSheet(path()).rowTexts(2, 3),
              QStringList({"ID()", "NAME(Road name)", "AREA()"}));
}

TEST_F(FeatureLayerExport, PacksFieldsLeftAfterExclusionIgnoringUnknownIndexes)
{
    const auto layer = roads();
    ASSERT_TRUE(VyExcelUtil::export2Excel(path(), layer.get(), false, {0, 9}));

    SavedSheet sheet(path());
    EXPECT_EQ(sheet.merges(), QStringList{"A1:B1"});
    EXPECT_EQ(sheet.rowTexts(2, 3), QStringList({"NAME", "AREA", ""}));
    EXPECT_EQ(sheet.rowTexts(3, 3), QStringList({"Main St", "1234.5", ""}));
}

TEST_F(FeatureLayerExport, WritesWhatTheLayerFilterAdmitsAndNoRowWithoutACursor)
{
    const auto layer = roads();
    layer->SetQueryFilter(TsQueryFilter("ID = 2"));
    ASSERT_TRUE(VyExcelUtil::export2Excel(path("one.xlsx"), layer.get(), false, {}));
    EXPECT_EQ(SavedSheet(path("one.xlsx")).rowTexts(3, 2), QStringList({"2", "Mill Rd"}));
    EXPECT_EQ(SavedSheet(path("one.xlsx")).extent(), "A1:C3");

    layer->SetQueryFilter(TsQueryFilter("ID = 3"));
    ASSERT_TRUE(VyExcelUtil::export2Excel(path("none.xlsx"), layer.get(), false, {}));
    EXPECT_EQ(SavedSheet(path("none.xlsx")).extent(), "A1:C2");

    // The layer refuses a cursor for a filter on a field it lacks.
    layer->SetQueryFilter(TsQueryFilter("NOSUCHFIELD = 1"));
    ASSERT_TRUE(VyExcelUtil::export2Excel(path("nocursor.xlsx"), layer.get(), false, {}));
    EXPECT_EQ(SavedSheet(path("nocursor.xlsx")).extent(), "A1:C2");
}

TEST_F(FeatureLayerExport, RefusesWhatItCannotExportWithoutTouchingFiles)
{
    const auto layer = roads();
    const auto schemaless = roads();
    schemaless->SetFieldsAvailable(false);
    const QString kept = existingFile();

    EXPECT_FALSE(VyExcelUtil::export2Excel(QString(), layer.get(), false, {}));
    EXPECT_FALSE(VyExcelUtil::export2Excel(kept, nullptr, false, {}));
    EXPECT_FALSE(VyExcelUtil::export2Excel(kept, schemaless.get(), false, {}));
    EXPECT_FALSE(VyExcelUtil::export2Excel(kept, layer.get(), false, {0, 1, 2}));
    EXPECT_TRUE(keptIntact(kept));
}

TEST_F(FeatureLayerExport, MoreFeaturesThanSheetRowsGivesFalseAndSavesNothing)
{
    // Rows 3 to 1,048,576 take 1,048,574 features; one more cannot be placed.
    auto layer = TsRefPtr<TsMemoryFeatureLayer>::create("Big", TsLayer::PointLayer);
    layer->AddField("ID", TsField::IntegerField);
    for (std::int32_t id = 0; id < 1048575; ++id)
        layer->AddFeature({id});
    const QString kept = existingFile();

    EXPECT_FALSE(VyExcelUtil::export2Excel(kept, layer.get(), false, {}));
    EXPECT_TRUE(keptIntact(kept));
}

} // namespace
