#include "test_export_support.h"

#include "vygisutil.h"

#include "tsmemorylayer.h"

using namespace VyObjects;

namespace {

// Fields NAME (alias "Well name"), x (lower case) and DEPTH; a point without height, one
// with height, one feature shaped as a line and one without shape.
TsRefPtr<TsMemoryFeatureLayer> wells()
{
    auto layer = TsRefPtr<TsMemoryFeatureLayer>::create("Wells", TsLayer::PointLayer);
    layer->AddField("NAME", TsField::StringField, "Well name");
    layer->AddField("x", TsField::StringField);
    layer->AddField("DEPTH", TsField::DoubleField);
    const auto shape = [](TsGeometry* geometry) { return TsRefPtr<TsGeometry>(geometry); };
    layer->AddFeature({"W1", "low", 12.25}, shape(new TsGeoPoint(500100.125, 4200200.5)));
    layer->AddFeature({"W2", "high", 3.0}, shape(new TsGeoPoint(1.0 / 3.0, 2.0, 87.5)));
    layer->AddFeature({"W3", "", 0.5}, shape(new TsGeoPath(TsGeometry::PolylineGeometry,
                                                           {TsPoint(0, 0), TsPoint(1, 1)})));
    layer->AddFeature({"W4", "", 0.0});
    return layer;
}

using Names = std::vector<QString>;
using CoordinateExport = ExportTest;

TEST_F(CoordinateExport, WritesHeaderThenCoordinatesAndFieldsAsPlainText)
{
    const auto layer = wells();
    ASSERT_TRUE(VyExcelUtil::export2ExcelHasXYZ(path(), layer.get(), Names{"X", "Y", "Z", "DEPTH"},
                                                false, {}));

    SavedSheet sheet(path());
    EXPECT_EQ(sheet.rowTexts(1, 4), QStringList({"X", "Y", "Z", "DEPTH"}));
    EXPECT_EQ(sheet.rowTexts(2, 4), QStringList({"500100.125", "4200200.5", "0", "12.25"}));
    EXPECT_EQ(sheet.rowTexts(3, 4), QStringList({"0.33333333", "2", "87.5", "3"}));
    EXPECT_EQ(sheet.value(3, 2).userType(), QMetaType::QString);
    EXPECT_TRUE(sheet.format(1, 1).isEmpty() && sheet.format(3, 4).isEmpty());
    EXPECT_TRUE(sheet.merges().isEmpty());
    EXPECT_DOUBLE_EQ(sheet.rowHeight(1), sheet.rowHeight(2));
    EXPECT_EQ(expectOpenpyxlReadsAsTheEngine(path()), 14);
}

TEST_F(CoordinateExport, OnlyUpperCaseNamesAreCoordinatesAndRepeatsAreKept)
{
    const auto layer = wells();
    ASSERT_TRUE(VyExcelUtil::export2ExcelHasXYZ(path(), layer.get(), Names{"x", "X", "x"}, false,
                                                {}));
    EXPECT_EQ(SavedSheet(path()).rowTexts(2, 3), QStringList({"low", "500100.125", "low"}));
}

TEST_F(CoordinateExport, FeatureWithoutAPointKeepsItsRowWithEmptyCoordinates)
{
    const auto layer = wells();
    ASSERT_TRUE(VyExcelUtil::export2ExcelHasXYZ(path(), layer.get(), Names{"X", "NAME", "Z"},
                                                false, {}));

    SavedSheet sheet(path());
    EXPECT_EQ(sheet.rowTexts(4, 3), QStringList({"", "W3", ""}));
    EXPECT_EQ(sheet.rowTexts(5, 3), QStringList({"", "W4", ""}));
    EXPECT_FALSE(sheet.hasCell(5, 1));
}

TEST_F(CoordinateExport, AliasesComeFromTheLayerFieldsOnly)
{
    const auto layer = wells();
    ASSERT_TRUE(VyExcelUtil::export2ExcelHasXYZ(path(), layer.get(),
                                                Names{"name", "DEPTH", "Y", "OTHER"}, true, {}));
    EXPECT_EQ(SavedSheet(path()).rowTexts(1, 4),
              QStringList({"name(Well name)", "DEPTH()", "Y", "OTHER"}));
}

TEST_F(CoordinateExport, ExcludedPositionsLeaveTheirColumnsOut)
{
    const auto layer = wells();
    ASSERT_TRUE(VyExcelUtil::export2ExcelHasXYZ(path(), layer.get(), Names{"X", "Y", "NAME"},
                                                false, {1, 5}));
    EXPECT_EQ(SavedSheet(path()).rowTexts(1, 3), QStringList({"X", "NAME", ""}));
}

TEST_F(CoordinateExport, RefusesWhatItCannotExportWithoutTouchingFiles)
{
    const auto layer = wells();
    const auto schemaless = wells();
    schemaless->SetFieldsAvailable(false);
    const QString kept = existingFile();

    EXPECT_FALSE(VyExcelUtil::export2ExcelHasXYZ(QString(), layer.get(), Names{"X"}, false, {}));
    EXPECT_FALSE(VyExcelUtil::export2ExcelHasXYZ(kept, nullptr, Names{"X"}, false, {}));
    EXPECT_FALSE(VyExcelUtil::export2ExcelHasXYZ(kept, schemaless.get(), Names{"X"}, false, {}));
    EXPECT_FALSE(VyExcelUtil::export2ExcelHasXYZ(kept, layer.get(), Names{}, false, {}));
    EXPECT_FALSE(VyExcelUtil::export2ExcelHasXYZ(kept, layer.get(), Names{"X"}, false, {0}));
    EXPECT_TRUE(keptIntact(kept));
}

} // namespace
