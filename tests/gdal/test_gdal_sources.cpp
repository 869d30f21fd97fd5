// The provider's own promises: what a data source opens as, how fields and
// points read, how filters select, and what bad sources say.

#include "gdaltesting.h"

#include <gdal_priv.h>
#include <ogrsf_frmts.h>

namespace {

using namespace VyObjects;
using gdaltest::GdalTest;
using gdaltest::text;

TEST_F(GdalTest, GeoPackageFieldsKeepNamesAliasesTypesAndPrecisions)
{
    const TsRefPtr<TsFeatureLayer> parcels = layer(open(parcelsFile()), QStringLiteral("parcels"));
    ASSERT_TRUE(parcels);
    EXPECT_EQ(parcels->GetLayerType(), TsLayer::PointLayer);
    const TsRefPtr<TsFields> fields = parcels->GetFields();
    ASSERT_EQ(fields->GetFieldCount(), 4);
    EXPECT_EQ(text(fields->GetField(0)->GetName()), "PARCEL");
    EXPECT_EQ(text(fields->GetField(0)->GetAliasName()), "Parcel number");
    EXPECT_EQ(fields->GetField(0)->GetFieldType(), TsField::StringField);
    EXPECT_EQ(text(fields->GetField(1)->GetAliasName()), "Area");
    EXPECT_EQ(fields->GetField(1)->GetFieldType(), TsField::DoubleField);
    EXPECT_EQ(fields->GetField(3)->GetFieldType(), TsField::IntegerField);
    EXPECT_TRUE(parcels->FindField("owner"));
    EXPECT_FALSE(parcels->FindField("ROAD"));
}

// Every vector format gets the same features through the writer and gives
// them back through cursors, searches and features by id.
class VectorFormat : public GdalTest, public ::testing::WithParamInterface<const char*>
{
};

TEST_P(VectorFormat, WrittenPointsReadBackThroughFilters)
{
    const TsRefPtr<TsFeatureLayer> parcels = layer(open(parcelsFile(QStringLiteral("parcels.") + GetParam())));
    ASSERT_TRUE(parcels);
    EXPECT_EQ(parcels->GetLayerType(), TsLayer::PointLayer);
    EXPECT_EQ(values(*parcels, "PARCEL"), QStringList({"P-1", "P-2", "P-3", "P-4"}));
    EXPECT_EQ(values(*parcels, "PARCEL", TsQueryFilter("AREA >= 100")), QStringList({"P-1", "P-3"}));
    EXPECT_EQ(values(*parcels, "PARCEL", TsQueryFilter("OWNER = 'Bob'")), QStringList({"P-3"}));
    EXPECT_EQ(values(*parcels, "PARCEL", TsQueryFilter("OWNER = 'bob'")), QStringList());
    EXPECT_EQ(values(*parcels, "PARCEL", TsQueryFilter("OWNER >= 'a'")), QStringList());
    EXPECT_EQ(values(*parcels, "PARCEL", TsQueryFilter("CODE <> 2")), QStringList({"P-1", "P-3", "P-4"}));

    std::vector<int> ids;
    ASSERT_TRUE(parcels->Search(TsQueryFilter("PARCEL = 'P-3'"), ids));
    ASSERT_EQ(ids.size(), 1u);
    const TsRefPtr<TsGeoPoint> point = parcels->GetFeature(ids[0])->GetGeometry().dynamicCast<TsGeoPoint>();
    ASSERT_TRUE(point);
    double x = 0, y = 0, z = 0;
    point->QueryCoordsXYZ(&x, &y, &z);
    EXPECT_EQ(TsPoint(x, y), TsPoint(12, 22));
    EXPECT_EQ(z, 7);
}

INSTANTIATE_TEST_SUITE_P(Formats, VectorFormat, ::testing::Values("gpkg", "shp", "geojson", "csv"));

TEST_F(GdalTest, FilterComparesAsTheHostDoes)
{
    const TsRefPtr<TsFeatureLayer> parcels = layer(open(parcelsFile()));
    ASSERT_TRUE(parcels);
    // Text literals compare with a value's text, also for numbers.
    EXPECT_EQ(values(*parcels, "PARCEL", TsQueryFilter("CODE = '4'")), QStringList({"P-4"}));
    EXPECT_EQ(values(*parcels, "PARCEL", TsQueryFilter("\"OWNER\" IS NULL")), QStringList({"P-2"}));
    EXPECT_EQ(values(*parcels, "PARCEL", TsQueryFilter("OWNER <> 'Ann'")), QStringList({"P-3", "P-4"}));
    EXPECT_EQ(values(*parcels, "PARCEL", TsQueryFilter("owner = 'ann'")), QStringList());
    TsQueryFilter predicate("AREA < 200");
    predicate.SetPredicate([](const TsRow& row) { return row.GetID() % 2 == 0; });
    EXPECT_EQ(values(*parcels, "PARCEL", predicate), QStringList({"P-2", "P-4"}));
}

TEST_F(GdalTest, CursorsOnOneLayerReadIndependently)
{
    const TsRefPtr<TsFeatureLayer> parcels = layer(open(parcelsFile()));
    ASSERT_TRUE(parcels);
    const TsRefPtr<TsFeatureCursor> all = parcels->GetFeatureCursor(TsQueryFilter());
    const TsRefPtr<TsFeatureCursor> large = parcels->GetFeatureCursor(TsQueryFilter("AREA > 100"));
    QList<int> seen;
    for (int i = 0; i < 4; ++i) {
        seen.append(all->NextFeature()->GetID());
        const TsRefPtr<TsFeature> next = large->NextFeature();
        seen.append(next ? next->GetID() : 0);
        parcels->GetFeature(2);
    }
    EXPECT_EQ(seen, QList<int>({1, 1, 2, 3, 3, 0, 4, 0}));
    EXPECT_FALSE(all->NextFeature());
}

TEST_F(GdalTest, AttributeOnlyLayersOpenAsTables)
{
    const QString path = file("owners.csv");
    QFile csv(path);
    ASSERT_TRUE(csv.open(QIODevice::WriteOnly));
    csv.write("NAME,SHARE\nAnn,0.5\nBob,12\nCy,3\n");
    csv.close();

    const TsRefPtr<TsGdalDataSource> source = open(path);
    QString error;
    ASSERT_FALSE(source->featureLayer(QString(), &error));
    EXPECT_TRUE(error.contains("has no geometry")) << error.toStdString();
    const TsRefPtr<TsTable> owners = source->table(QString(), &error);
    ASSERT_TRUE(owners);
    EXPECT_EQ(text(owners->GetTableName()), "owners");
    // CSV values are texts, compared as numbers where they read as numbers.
    const TsRefPtr<TsRowCursor> rows = owners->GetRowCursor(TsQueryFilter("SHARE > 2"));
    ASSERT_TRUE(rows);
    QStringList names;
    while (const TsRefPtr<TsRow> row = rows->NextRow()) {
        TsVariant name;
        row->GetValue(0, name);
        names.append(text(name.ToString()));
    }
    EXPECT_EQ(names, QStringList({"Bob", "Cy"}));
}

TEST_F(GdalTest, RasterBandDescribesItsGridAndReadsCells)
{
    const QString path = file("dem.tif");
    QString error;
    ASSERT_TRUE(TsGdalDataSource::createRaster(path, TsRect(100, 130, 200, 220), 3, 2,
                                               {1, 2, 3, 4, 5, 6}, -1, &error))
        << error.toStdString();
    const TsRefPtr<TsRasterProps> dem = open(path)->raster(1, &error);
    ASSERT_TRUE(dem) << error.toStdString();
    const TsRect extent = dem->GetExtent();
    EXPECT_EQ(std::vector<double>({extent.minX, extent.maxX, extent.minY, extent.maxY}),
              std::vector<double>({100, 130, 200, 220}));
    EXPECT_EQ(dem->GetPixelSizeX(), 10);
    EXPECT_EQ(dem->GetPixelSizeY(), 10);
    const TsRefPtr<TsPixelBlock> block = dem->CreatePixelBlock(TsSize(2, 2));
    EXPECT_TRUE(dem->ReadPixelBlock(TsPoint(2, 1), block.get(), 0));
    EXPECT_EQ(block->GetPixelValue(1, 0, 0), 6);
    EXPECT_EQ(block->GetPixelValue(1, 1, 0), -1) << "outside the grid";
    EXPECT_FALSE(dem->ReadPixelBlock(TsPoint(3, 0), block.get(), 0));
}

TEST_F(GdalTest, MapListsTheLayersOfASource)
{
    const QString path = parcelsFile();
    {
        QString error;
        const TsRefPtr<TsGdalDataSource> source = open(path, TsGdalDataSource::Update);
        ASSERT_TRUE(source->createLayer("owners", TsLayer::TableLayer, {{"NAME"}}, &error))
            << error.toStdString();
    }
    const TsRefPtr<TsMap> map = open(path)->map();
    const std::vector<TsRefPtr<TsLayer>> layers = map->GetLayers(true);
    ASSERT_EQ(layers.size(), 2u);
    EXPECT_EQ(text(layers[0]->GetLayerName()), "parcels");
    EXPECT_EQ(layers[1]->GetLayerType(), TsLayer::TableLayer);

    const TsRefPtr<TsLayer> another = layer(open(path), "parcels");
    VyUniversalFunction::setLayerName(map.get(), another);
    EXPECT_EQ(text(another->GetLayerName()), "parcels-1");
}

TEST_F(GdalTest, BadSourcesSayWhichFileAndWhatIsWrong)
{
    QString error;
    const QString missing = file("missing.gpkg");
    EXPECT_FALSE(TsGdalDataSource::open(missing, TsGdalDataSource::ReadOnly, &error));
    EXPECT_EQ(error, missing + ": no such file");

    const QString junk = file("junk.dat");
    QFile junkFile(junk);
    ASSERT_TRUE(junkFile.open(QIODevice::WriteOnly));
    junkFile.write("neither vector nor raster\n");
    junkFile.close();
    EXPECT_FALSE(TsGdalDataSource::open(junk, TsGdalDataSource::ReadOnly, &error));
    EXPECT_EQ(error, junk + ": not a format GDAL reads");

    const QString path = parcelsFile();
    const TsRefPtr<TsGdalDataSource> source = open(path);
    EXPECT_FALSE(source->featureLayer("roads", &error));
    EXPECT_EQ(error, path + ": no layer \"roads\" (it has: parcels)");
    EXPECT_FALSE(source->raster(1, &error));
    EXPECT_EQ(error, path + ": holds no raster");

    const TsRefPtr<TsGdalFeatureLayer> parcels = layer(source).dynamicCast<TsGdalFeatureLayer>();
    std::vector<int> ids{7};
    EXPECT_FALSE(parcels->Search(TsQueryFilter("ROAD = 1"), ids));
    EXPECT_TRUE(ids.empty());
    EXPECT_EQ(parcels->errorString(),
              path + ", layer \"parcels\": the filter \"ROAD = 1\" names no field of the layer");
    EXPECT_FALSE(parcels->StartOperation(nullptr));
    EXPECT_EQ(parcels->errorString(), path + ", layer \"parcels\": the data source is opened read-only");
}

} // namespace
