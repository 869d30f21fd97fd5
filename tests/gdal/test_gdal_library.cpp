// The library's exports, joins and reports on files, as the application runs
// them on layers opened through GDAL.

#include "gdaltesting.h"

#include <gdal_priv.h>
#include <ogrsf_frmts.h>

namespace {

using namespace VyObjects;
using gdaltest::GdalTest;
using gdaltest::text;

TEST_F(GdalTest, LayerExportWritesTheFilteredFeaturesWithAliases)
{
    const TsRefPtr<TsGdalFeatureLayer> parcels =
        layer(open(parcelsFile())).dynamicCast<TsGdalFeatureLayer>();
    ASSERT_TRUE(parcels);
    parcels->SetQueryFilter(TsQueryFilter("AREA > 100"));
    const QString out = file("parcels.xlsx");
    ASSERT_TRUE(VyExcelUtil::export2Excel(out, parcels.get(), true, {}));

    const std::vector<QStringList> rows = sheet(out);
    ASSERT_EQ(rows.size(), 4u);
    EXPECT_EQ(rows[1], QStringList({"PARCEL(Parcel number)", "AREA(Area)", "OWNER()", "CODE()"}));
    EXPECT_EQ(rows[2], QStringList({"P-1", "120.5", "Ann", "1"}));
    EXPECT_EQ(rows[3], QStringList({"P-3", "300", "Bob", "3"}));
}

TEST_F(GdalTest, PointExportGivesCoordinatesWithHeights)
{
    const TsRefPtr<TsFeatureLayer> parcels = layer(open(parcelsFile(QStringLiteral("parcels.shp"))));
    const QString out = file("points.xlsx");
    ASSERT_TRUE(VyExcelUtil::export2ExcelHasXYZ(out, parcels.get(), {"PARCEL", "X", "Y", "Z"}, false, {}));
    const std::vector<QStringList> rows = sheet(out);
    ASSERT_EQ(rows.size(), 5u);
    EXPECT_EQ(rows[4], QStringList({"P-4", "13", "23", "8"}));
}

TEST_F(GdalTest, TableExportWritesEveryRowOfAnAttributeTable)
{
    const QString path = layerFile("owners.gpkg", "owners", TsLayer::TableLayer,
                                   {{"NAME"}, {"SHARE", TsField::DoubleField}}, {{"Ann", 0.5}, {"Bob"}});
    QString error;
    const QString out = file("owners.xlsx");
    ASSERT_TRUE(VyExcelUtil::export2Excel(out, open(path)->table("owners", &error)));
    const std::vector<QStringList> rows = sheet(out);
    ASSERT_EQ(rows.size(), 4u);
    EXPECT_EQ(rows[2], QStringList({"Ann", "0.5"}));
    EXPECT_EQ(rows[3], QStringList({"Bob", ""}));
}

// GeoPackages join inside a transaction, shapefiles with the provider's own
// record of what changed.
class JoinFormat : public GdalTest, public ::testing::WithParamInterface<const char*>
{
};

TEST_P(JoinFormat, JoinLandsInTheFile)
{
    const QString path = parcelsFile(QStringLiteral("parcels.") + GetParam());
    const QString join = workbook({{"Parcel", "Owner", "Area"}, {"P-1", "Dora", "121"}, {"P-3", "Eve", "x"}});
    {
        const TsRefPtr<TsFeatureLayer> parcels = layer(open(path, TsGdalDataSource::Update));
        ASSERT_TRUE(VyExcelUtil::assocationFromExcel(join, "parcel", parcels.get(), {}));
    }
    const TsRefPtr<TsFeatureLayer> reread = layer(open(path));
    EXPECT_EQ(values(*reread, "OWNER"), QStringList({"Dora", "", "Eve", "Cy"}));
    // "x" is no number: the area keeps its value rather than becoming null.
    EXPECT_EQ(values(*reread, "AREA"), QStringList({"121", "80.25", "300", "99.99"}));
}

INSTANTIATE_TEST_SUITE_P(Formats, JoinFormat, ::testing::Values("gpkg", "shp"));

TEST_F(GdalTest, JoinIntoReadOnlySourceChangesNothing)
{
    const QString path = parcelsFile();
    const QByteArray before = bytes(path);
    const QString join = workbook({{"PARCEL", "OWNER"}, {"P-1", "Dora"}});
    {
        const TsRefPtr<TsFeatureLayer> parcels = layer(open(path, TsGdalDataSource::ReadOnly));
        EXPECT_FALSE(VyExcelUtil::assocationFromExcel(join, "PARCEL", parcels.get(), {}));
    }
    EXPECT_EQ(bytes(path), before);
}

// A GeoPackage whose CODE column refuses nulls, written with GDAL alone.
QString parcelsWithRequiredCode(const QString& path)
{
    GDALAllRegister();
    GDALDriver* driver = GetGDALDriverManager()->GetDriverByName("GPKG");
    GDALDataset* dataset = driver->Create(path.toUtf8().constData(), 0, 0, 0, GDT_Unknown, nullptr);
    OGRLayer* layer = dataset->CreateLayer("parcels", nullptr, wkbPoint, nullptr);
    OGRFieldDefn parcel("PARCEL", OFTString);
    OGRFieldDefn code("CODE", OFTInteger);
    code.SetNullable(FALSE);
    EXPECT_EQ(layer->CreateField(&parcel), OGRERR_NONE);
    EXPECT_EQ(layer->CreateField(&code), OGRERR_NONE);
    for (int i = 1; i <= 2; ++i) {
        OGRFeatureUniquePtr feature(OGRFeature::CreateFeature(layer->GetLayerDefn()));
        feature->SetField(0, QStringLiteral("P-%1").arg(i).toUtf8().constData());
        feature->SetField(1, i);
        EXPECT_EQ(layer->CreateFeature(feature.get()), OGRERR_NONE);
    }
    GDALClose(dataset);
    return path;
}

TEST_F(GdalTest, JoinThatFailsHalfwayIsRolledBack)
{
    const QString path = parcelsWithRequiredCode(file("required.gpkg"));
    // The second row's blank code cannot be stored once the first has been.
    const QString join = workbook({{"PARCEL", "CODE"}, {"P-1", "7"}, {"P-2", ""}});
    {
        const TsRefPtr<TsGdalFeatureLayer> parcels =
            layer(open(path, TsGdalDataSource::Update)).dynamicCast<TsGdalFeatureLayer>();
        VyExcelUtil::assocationFromExcel(join, "PARCEL", parcels.get(), {});
        EXPECT_TRUE(parcels->errorString().contains("undone")) << parcels->errorString().toStdString();
    }
    EXPECT_EQ(values(*layer(open(path)), "CODE"), QStringList({"1", "2"}));
}

TEST_F(GdalTest, AbortedEditsOfFilesWithoutTransactionsAreSetBack)
{
    const QString path = parcelsFile(QStringLiteral("parcels.geojson"));
    {
        const TsRefPtr<TsFeatureLayer> parcels = layer(open(path, TsGdalDataSource::Update));
        std::vector<int> ids;
        ASSERT_TRUE(parcels->Search(TsQueryFilter("PARCEL = 'P-2'"), ids));
        ASSERT_TRUE(parcels->StartOperation(nullptr));
        EXPECT_TRUE(parcels->layer_edit_buffer()->ChangeAttribute(ids.at(0), "OWNER", "Zed", true));
        EXPECT_EQ(values(*parcels, "OWNER", TsQueryFilter("PARCEL = 'P-2'")), QStringList({"Zed"}));
        EXPECT_TRUE(parcels->AbortOperation());
    }
    EXPECT_EQ(values(*layer(open(path)), "OWNER"), QStringList({"Ann", "", "Bob", "Cy"}));
}

} // namespace
