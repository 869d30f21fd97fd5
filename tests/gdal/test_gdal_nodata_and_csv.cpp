// Values the provider must not invent or drop: raster cells that hold no value,
// and the coordinate columns of a CSV file.

#include "gdaltesting.h"

#include <cmath>
#include <limits>

namespace {

using namespace VyObjects;
using gdaltest::GdalTest;
using gdaltest::text;

QStringList fieldNames(const TsFields& fields)
{
    QStringList names;
    for (int i = 0; i < fields.GetFieldCount(); ++i)
        names.append(text(fields.GetField(i)->GetName()));
    return names;
}

class GdalNoData : public GdalTest
{
protected:
    // Three columns by two rows over x 0..30, y 0..20, the middle cell of the top row
    // and the last cell holding noData.
    TsRefPtr<TsRasterProps> dem(double noData)
    {
        const QString path = file(QStringLiteral("dem.tif"));
        QString error;
        EXPECT_TRUE(TsGdalDataSource::createRaster(path, TsRect(0, 30, 0, 20), 3, 2,
                                                   {-12, noData, 3, 4, 5, noData}, noData, &error))
            << error.toStdString();
        TsRefPtr<TsRasterProps> raster = open(path)->raster(1, &error);
        EXPECT_TRUE(raster) << error.toStdString();
        return raster;
    }
};

TEST_F(GdalNoData, NoDataCellsReadAsNoValueWhateverTheNoDataNumber)
{
    const double nan = std::numeric_limits<double>::quiet_NaN();
    for (const double noData : {-32768.0, -9999.0, 0.0, 3.4e38, nan}) {
        const TsRefPtr<TsRasterProps> raster = dem(noData);
        ASSERT_TRUE(raster);
        const TsRefPtr<TsPixelBlock> cell = raster->CreatePixelBlock(TsSize(1, 1));
        EXPECT_TRUE(raster->ReadPixelBlock(TsPoint(0, 0), cell.get(), 0)) << noData;
        EXPECT_EQ(cell->GetPixelValue(1, 0, 0), -12) << "a real value below zero stays";
        for (const TsPoint noValue : {TsPoint(1, 0), TsPoint(2, 1)}) {
            EXPECT_FALSE(raster->ReadPixelBlock(noValue, cell.get(), 0)) << noData;
            const double read = cell->GetPixelValue(1, 0, 0);
            EXPECT_TRUE(read == cell->GetNoDataValue() || (std::isnan(noData) && std::isnan(read)));
        }
        QFile::remove(file(QStringLiteral("dem.tif")));
    }
}

TEST_F(GdalNoData, BlockWithSomeValuesReadsThemAndMarksTheRest)
{
    const TsRefPtr<TsRasterProps> raster = dem(-32768);
    ASSERT_TRUE(raster);
    const TsRefPtr<TsPixelBlock> block = raster->CreatePixelBlock(TsSize(2, 2));
    ASSERT_TRUE(raster->ReadPixelBlock(TsPoint(1, 0), block.get(), 0));
    EXPECT_EQ(std::vector<double>({block->GetPixelValue(1, 0, 0), block->GetPixelValue(1, 1, 0),
                                   block->GetPixelValue(1, 0, 1), block->GetPixelValue(1, 1, 1)}),
              std::vector<double>({-32768, 3, 5, -32768}));
}

class GdalCsvColumns : public GdalTest
{
protected:
    QString citiesCsv()
    {
        const QString path = file(QStringLiteral("cities.csv"));
        QFile csv(path);
        EXPECT_TRUE(csv.open(QIODevice::WriteOnly));
        csv.write("Name,Latitude,Longitude,Elevation\nParis,48.8566,2.3522,35\nLima,-12.0464,-77.0428,154\n");
        return path;
    }

    static const QStringList& allColumns()
    {
        static const QStringList columns{"Name", "Latitude", "Longitude", "Elevation"};
        return columns;
    }
};

TEST_F(GdalCsvColumns, CoordinateColumnsMakePointsAndStayFields)
{
    const TsRefPtr<TsFeatureLayer> cities = layer(open(citiesCsv()));
    ASSERT_TRUE(cities);
    EXPECT_EQ(cities->GetLayerType(), TsLayer::PointLayer);
    EXPECT_EQ(fieldNames(*cities->GetFields()), allColumns());
    EXPECT_EQ(values(*cities, "Latitude"), QStringList({"48.8566", "-12.0464"}));
    EXPECT_EQ(values(*cities, "Elevation"), QStringList({"35", "154"}));
    const TsRefPtr<TsFeature> lima = cities->GetFeatureCursor(TsQueryFilter("Name = 'Lima'"))->NextFeature();
    ASSERT_TRUE(lima);
    const TsRefPtr<TsGeoPoint> point = lima->GetGeometry().dynamicCast<TsGeoPoint>();
    ASSERT_TRUE(point);
    double x = 0, y = 0, z = 0;
    point->QueryCoordsXYZ(&x, &y, &z);
    EXPECT_EQ(std::vector<double>({x, y, z}), std::vector<double>({-77.0428, -12.0464, 154}));
}

TEST_F(GdalCsvColumns, SpatialLayersOpenAsTablesOfTheirAttributes)
{
    const std::vector<std::pair<QString, QStringList>> sources{
        {citiesCsv(), allColumns()},
        {parcelsFile(), {"PARCEL", "AREA", "OWNER", "CODE"}},
    };
    for (const auto& [path, columns] : sources) {
        QString error;
        const TsRefPtr<TsTable> table = open(path)->table(QString(), &error);
        ASSERT_TRUE(table) << error.toStdString();
        EXPECT_EQ(fieldNames(*table->GetFields()), columns);
        const TsRefPtr<TsRowCursor> rows = table->GetRowCursor(TsQueryFilter());
        ASSERT_TRUE(rows);
        int count = 0;
        TsVariant last;
        while (const TsRefPtr<TsRow> row = rows->NextRow()) {
            row->GetValue(columns.size() - 1, last);
            ++count;
        }
        EXPECT_EQ(count, path.endsWith(QStringLiteral(".csv")) ? 2 : 4) << path.toStdString();
        EXPECT_EQ(text(last.ToString()), path.endsWith(QStringLiteral(".csv")) ? "154" : "4");
    }
}

} // namespace
