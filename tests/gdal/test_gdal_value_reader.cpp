// TsGdalValueReader: the features a cursor hands out, read without host features.

#include "gdaltesting.h"
#include "tsgdalvaluereader.h"

#include <gdal_priv.h>
#include <ogrsf_frmts.h>

#include <limits>

namespace {

using namespace VyObjects;
using gdaltest::GdalTest;
using gdaltest::text;

class ValueReaderTest : public GdalTest
{
protected:
    // Every kind of field the provider reads, written through GDAL itself: booleans,
    // 16-bit, 32-bit and 64-bit integers, singles, doubles, dates, date-times with a
    // zone, times of day (read as text) and texts, each feature with other nulls and
    // texts (empty, non-ASCII, a surrogate pair).
    QString everyTypeFile() const
    {
        const QString path = file(QStringLiteral("types.gpkg"));
        GDALAllRegister();
        GDALDriver* driver = GetGDALDriverManager()->GetDriverByName("GPKG");
        std::unique_ptr<GDALDataset> dataset(driver->Create(path.toUtf8().constData(), 0, 0, 0, GDT_Unknown, nullptr));
        OGRLayer* layer = dataset->CreateLayer("types", nullptr, wkbPoint, nullptr);
        const struct { const char* name; OGRFieldType type; OGRFieldSubType subType; } fields[] = {
            {"FLAG", OFTInteger, OFSTBoolean}, {"SMALL", OFTInteger, OFSTInt16},
            {"COUNT", OFTInteger, OFSTNone},  {"BIG", OFTInteger64, OFSTNone},
            {"RATIO", OFTReal, OFSTFloat32},  {"AREA", OFTReal, OFSTNone},
            {"DAY", OFTDate, OFSTNone},       {"SEEN", OFTDateTime, OFSTNone},
            {"AT", OFTTime, OFSTNone},        {"NAME", OFTString, OFSTNone}};
        for (const auto& field : fields) {
            OGRFieldDefn definition(field.name, field.type);
            definition.SetSubType(field.subType);
            layer->CreateField(&definition);
        }
        const char* names[] = {"Ann", "", "Zo\xC3\xAB \xF0\x9F\x8C\xB2", nullptr};
        for (int i = 0; i < 8; ++i) {
            OGRFeature feature(layer->GetLayerDefn());
            feature.SetField(0, i % 2);
            feature.SetField(1, -i);
            feature.SetField(2, i * 1000);
            feature.SetField(3, static_cast<GIntBig>((std::int64_t(1) << 53) + i));
            feature.SetField(4, 0.1 * i);
            feature.SetField(5, 1234.5678 * i);
            feature.SetField(6, 2020 + i, 2, 29 - i % 2);
            feature.SetField(7, 2021, 7, 14, 10 + i, 30, 15.25f, 100 + 4 * i);
            feature.SetField(8, 0, 0, 0, i, 5, 7.0f);
            if (names[i % 4])
                feature.SetField(9, names[i % 4]);
            feature.SetFieldNull(i);   // one null each, in another field
            OGRPoint point(i, -i);
            feature.SetGeometry(&point);
            EXPECT_EQ(layer->CreateFeature(&feature), OGRERR_NONE);
        }
        return path;
    }

    // What the reader gives for every field of every feature, written as the values a
    // host feature holds: "t:" and the text for a text it hands out itself.
    static QStringList read(TsGdalFeatureLayer& layer, const TsQueryFilter& filter)
    {
        QStringList seen;
        const std::unique_ptr<TsGdalValueReader> reader = TsGdalValueReader::open(layer, filter);
        EXPECT_TRUE(reader);
        const int width = layer.GetFields()->GetFieldCount();
        while (reader && reader->next()) {
            for (int i = 0; i < width; ++i) {
                QString found;
                TsVariant value;
                if (reader->readText(i, found)) {
                    seen.append(QStringLiteral("t:") + found);
                    continue;
                }
                reader->readValue(i, value);
                seen.append(describe(value));
            }
        }
        return seen;
    }

    // The same from the layer's cursor.
    static QStringList cursorValues(TsFeatureLayer& layer, const TsQueryFilter& filter)
    {
        QStringList seen;
        const TsRefPtr<TsFeatureCursor> cursor = layer.GetFeatureCursor(filter);
        EXPECT_TRUE(cursor);
        for (TsRefPtr<TsFeature> feature = cursor->NextFeature(); feature; feature = cursor->NextFeature()) {
            for (int i = 0; i < feature->GetFields()->GetFieldCount(); ++i) {
                TsVariant value;
                feature->GetValue(i, value);
                const bool handedOutAsText = value.GetType() == TsVariant::StringType && !value.ToString().IsEmpty();
                seen.append(handedOutAsText ? QStringLiteral("t:") + text(value.ToString()) : describe(value));
            }
        }
        return seen;
    }

    static QString describe(const TsVariant& value)
    {
        return QStringLiteral("%1:%2").arg(int(value.GetType())).arg(text(value.ToString()));
    }
};

TEST_F(ValueReaderTest, GivesTheValuesOfTheCursorsFeatures)
{
    const TsRefPtr<TsFeatureLayer> types = layer(open(everyTypeFile()));
    ASSERT_TRUE(types);
    auto& gdalLayer = dynamic_cast<TsGdalFeatureLayer&>(*types);
    TsQueryFilter predicate;
    predicate.SetPredicate([](const TsRow& row) { return row.GetID() % 3 != 0; });
    const struct { const char* name; TsQueryFilter filter; int features; } cases[] = {
        {"every feature", TsQueryFilter(), 8},
        {"compared by GDAL", TsQueryFilter("COUNT >= 3000"), 5},
        {"compared by the provider", TsQueryFilter("COUNT = '3000'"), 1},
        {"by a predicate", predicate, 6},
    };
    for (const auto& c : cases) {
        const QStringList expected = cursorValues(*types, c.filter);
        EXPECT_EQ(expected.size(), c.features * 10) << c.name;
        EXPECT_EQ(read(gdalLayer, c.filter), expected) << c.name;
    }
}

TEST_F(ValueReaderTest, ReadsOnBesideACursorOfTheSameLayer)
{
    const TsRefPtr<TsFeatureLayer> parcels = layer(open(parcelsFile()));
    ASSERT_TRUE(parcels);
    const std::unique_ptr<TsGdalValueReader> reader
        = TsGdalValueReader::open(dynamic_cast<TsGdalFeatureLayer&>(*parcels), TsQueryFilter("AREA > 100"));
    ASSERT_TRUE(reader);
    const TsRefPtr<TsFeatureCursor> all = parcels->GetFeatureCursor(TsQueryFilter());
    QStringList seen;
    for (int i = 0; i < 4; ++i) {
        seen.append(QString::number(all->NextFeature()->GetID()));
        QString parcel;
        seen.append(reader->next() && reader->readText(0, parcel) ? parcel : QStringLiteral("-"));
    }
    EXPECT_EQ(seen, QStringList({"1", "P-1", "2", "P-3", "3", "-", "4", "-"}));
}

TEST_F(ValueReaderTest, RefusesAFilterTheLayerRefuses)
{
    const TsRefPtr<TsFeatureLayer> parcels = layer(open(parcelsFile()));
    ASSERT_TRUE(parcels);
    auto& gdalLayer = dynamic_cast<TsGdalFeatureLayer&>(*parcels);
    EXPECT_FALSE(TsGdalValueReader::open(gdalLayer, TsQueryFilter("NOSUCH = 1")));
    EXPECT_TRUE(gdalLayer.errorString().contains(QStringLiteral("NOSUCH"))) << gdalLayer.errorString().toStdString();
}

} // namespace
