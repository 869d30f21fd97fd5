#include "test_export_support.h"

#include "vygisutil.h"

#include "tsmemorylayer.h"
#include "vyapplication.h"

using namespace VyObjects;

namespace {

// Wells: NAME (alias "Well name"), x (a field, lower case), DEPTH; a well without height,
// one with height, one with a line for a shape and one without a shape.
TsRefPtr<TsMemoryFeatureLayer> wells()
{
    auto layer = TsRefPtr<TsMemoryFeatureLayer>::create("Wells", TsLayer::PointLayer);
    layer->AddField("NAME", TsField::StringField, "Well name");
    layer->AddField("x", TsField::StringField);
    layer->AddField("DEPTH", TsField::DoubleField);
    layer->AddFeature({"W1", "low", 12.25}, TsRefPtr<TsGeometry>(new TsGeoPoint(500100.125, 4200200.5)));
    layer->AddFeature({"W2", "high", 3.0}, TsRefPtr<TsGeometry>(new TsGeoPoint(1.0 / 3.0, 2.0, 87.5)));
    layer->AddFeature({"W3", "", 0.5},
                      TsRefPtr<TsGeometry>(new TsGeoPath(TsGeometry::PolylineGeometry,
                                                         {TsPoint(0, 0), TsPoint(1, 1)})));
    layer->AddFeature({"W4", "", 0.0});
    return layer;
}

std::vector<QString> names(std::initializer_list<const char*> list)
{
    std::vector<QString> result;
    for (const char* name : list)
        result.push_back(QString::fromUtf8(name));
    return result;
}

using CoordinateExport = ExportTest;

TEST_F(CoordinateExport, WritesHeaderRowThenCoordinatesAndFieldsAsPlainText)
{
    const auto layer = wells();
    ASSERT_TRUE(VyExcelUtil::export2ExcelHasXYZ(path(), layer.get(), names({"X", "Y", "NAME"}),
                                                false, {}));

    SavedSheet sheet(path());
    EXPECT_EQ(sheet.rowTexts(1, 3), QStringList({"X", "Y", "NAME"}));
    EXPECT_EQ(sheet.rowTexts(2, 3), QStringList({"500100.125", "4200200.5", "W1"}));
    EXPECT_EQ(sheet.rowTexts(3, 3), QStringList({"0.33333333", "2", "W2"}));
    EXPECT_EQ(sheet.value(3, 2).userType(), QMetaType::QString);
    EXPECT_TRUE(sheet.format(1, 1).isEmpty());
    EXPECT_TRUE(sheet.format(2, 3).isEmpty());
    EXPECT_TRUE(sheet.merges().isEmpty());
    EXPECT_DOUBLE_EQ(sheet.rowHeight(1), sheet.rowHeight(2));
}

TEST_F(CoordinateExport, HeightIsZeroForPointsWithoutOne)
{
    const auto layer = wells();
    ASSERT_TRUE(VyExcelUtil::export2ExcelHasXYZ(path(), layer.get(), names({"Z"}), false, {}));

    SavedSheet sheet(path());
    EXPECT_EQ(sheet.text(2, 1), VyApplication::doubleToQString(0.0, 8));
    EXPECT_EQ(sheet.text(3, 1), "87.5");
}

TEST_F(CoordinateExport, OnlyUpperCaseNamesAreCoordinatesAndRepeatsAreKept)
{
    const auto layer = wells();
    ASSERT_TRUE(VyExcelUtil::export2ExcelHasXYZ(path(), layer.get(), names({"x", "X", "x"}),
                                                false, {}));
    EXPECT_EQ(SavedSheet(path()).rowTexts(2, 3), QStringList({"low", "500100.125", "low"}));
}

TEST_F(CoordinateExport, FeatureWithoutAPointKeepsItsRowWithEmptyCoordinates)
{
    const auto layer = wells();
    ASSERT_TRUE(VyExcelUtil::export2ExcelHasXYZ(path(), layer.get(),
                                                names({"X", "NAME", "Z"}), false, {}));

    SavedSheet sheet(path());
    EXPECT_EQ(sheet.rowTexts(4, 3), QStringList({"", "W3", ""}));
    EXPECT_EQ(sheet.rowTexts(5, 3), QStringList({"", "W4", ""}));
    EXPECT_FALSE(sheet.hasCell(5, 1));
}

TEST_F(CoordinateExport, AliasesComeFromTheLayerFieldsOnly)
{
    const auto layer = wells();
    ASSERT_TRUE(VyExcelUtil::export2ExcelHasXYZ(path(), layer.get(),
                                                names({"name", "DEPTH", "Y", "OTHER"}), true, {}));
    EXPECT_EQ(SavedSheet(path()).rowTexts(1, 4),
              QStringList({"name(Well name)", "DEPTH()", "Y", "OTHER"}));
}

TEST_F(CoordinateExport, ExcludedPositionsLeaveTheirColumnsOut)
{
    const auto layer = wells();
    ASSERT_TRUE(VyExcelUtil::export2ExcelHasXYZ(path(), layer.get(),
                                                names({"X", "Y", "NAME"}), false, {1, 5}));
    EXPECT_EQ(SavedSheet(path()).rowTexts(1, 3), QStringList({"X", "NAME", ""}));
}

TEST_F(CoordinateExport, FilterAdmittingNothingGivesTheHeaderRowOnly)
{
    const auto layer = wells();
    layer->SetQueryFilter(TsQueryFilter("NAME = 'none'"));
    ASSERT_TRUE(VyExcelUtil::export2ExcelHasXYZ(path(), layer.get(), names({"X", "NAME"}),
                                                false, {}));
    EXPECT_EQ(SavedSheet(path()).extent().toString(), "A1:B1");
}

TEST_F(CoordinateExport, RejectsBadInputWithoutTouchingFiles)
{
    const auto layer = wells();
    const auto schemaless = wells();
    schemaless->SetFieldsAvailable(false);
    const QString kept = existingFile();

    EXPECT_FALSE(VyExcelUtil::export2ExcelHasXYZ(QString(), layer.get(), names({"X"}), false, {}));
    EXPECT_FALSE(VyExcelUtil::export2ExcelHasXYZ(kept, nullptr, names({"X"}), false, {}));
    EXPECT_FALSE(VyExcelUtil::export2ExcelHasXYZ(kept, schemaless.get(), names({"X"}), false, {}));
    EXPECT_FALSE(VyExcelUtil::export2ExcelHasXYZ(kept, layer.get(), {}, false, {}));
    EXPECT_FALSE(VyExcelUtil::export2ExcelHasXYZ(kept, layer.get(), names({"X"}), false, {0}));
    EXPECT_EQ(contentOf(kept), "earlier content");
}

} // namespace
