#ifndef VYGIS_TESTS_GDALTESTING_H
#define VYGIS_TESTS_GDALTESTING_H

// Shared by the GDAL provider tests: a folder per test, the parcels data
// written into any vector format, workbooks, and readers of what landed.

#include "hosttesting.h"
#include "tsgdal.h"
#include "vygisutil.h"
#include "xlsxdocument.h"

#include <QFile>
#include <QTemporaryDir>

#include <string>

inline void PrintTo(const QString& text, std::ostream* out)
{
    *out << '"' << text.toStdString() << '"';
}

namespace gdaltest {

using namespace VyObjects;

inline QString text(const TsString& value)
{
    return QString::fromStdU16String(value.utf16());
}

class GdalTest : public ReferenceBalanceTest
{
protected:
    QString file(const QString& name) const { return m_dir.filePath(name); }

    TsRefPtr<TsGdalDataSource> open(const QString& path,
                                    TsGdalDataSource::OpenMode mode = TsGdalDataSource::ReadOnly) const
    {
        QString error;
        TsRefPtr<TsGdalDataSource> source = TsGdalDataSource::open(path, mode, &error);
        EXPECT_TRUE(source) << error.toStdString();
        return source;
    }

    TsRefPtr<TsFeatureLayer> layer(const TsRefPtr<TsGdalDataSource>& source,
                                   const QString& name = QString()) const
    {
        QString error;
        TsRefPtr<TsFeatureLayer> found = source ? source->featureLayer(name, &error) : nullptr;
        EXPECT_TRUE(found) << error.toStdString();
        return found;
    }

    // A new file named name (its format by its suffix) holding one layer whose features
    // hold rows, feature k at points[k] where there is one.
    QString layerFile(const QString& name, const QString& layerName, TsLayer::LayerType type,
                      const std::vector<TsGdalFieldDefinition>& fields, const std::vector<std::vector<TsVariant>>& rows,
                      const std::vector<TsRefPtr<TsGeometry>>& points = {}) const
    {
        QString error;
        const TsRefPtr<TsGdalDataSource> source = TsGdalDataSource::create(file(name), &error);
        EXPECT_TRUE(source && source->createLayer(layerName, type, fields, &error)) << error.toStdString();
        const TsRefPtr<TsGdalFeatureWriter> writer = source ? source->featureWriter(layerName, &error) : nullptr;
        for (size_t k = 0; writer && k < rows.size(); ++k)
            writer->addFeature(rows[k], k < points.size() ? points[k] : TsRefPtr<TsGeometry>());
        EXPECT_TRUE(writer && writer->commit(&error)) << error.toStdString();
        return file(name);
    }

    // Four parcels as points with heights: PARCEL (aliased "Parcel number"),
    // AREA (2 decimals, aliased "Area"), OWNER (the second has none), CODE.
    QString parcelsFile(const QString& name = QStringLiteral("parcels.gpkg")) const
    {
        return layerFile(name, QStringLiteral("parcels"), TsLayer::PointLayer,
                         {{"PARCEL", TsField::StringField, "Parcel number", 0}, {"AREA", TsField::DoubleField, "Area", 2},
                          {"OWNER", TsField::StringField, QString(), 0}, {"CODE", TsField::IntegerField, QString(), 0}},
                         {{"P-1", 120.5, "Ann", 1}, {"P-2", 80.25, TsVariant::null(), 2}, {"P-3", 300.0, "Bob", 3},
                          {"P-4", 99.99, "Cy", 4}},
                         {point(10, 20, 5), point(11, 21, 6), point(12, 22, 7), point(13, 23, 8)});
    }

    static TsRefPtr<TsGeometry> point(double x, double y, double z)
    {
        return TsRefPtr<TsGeometry>(new TsGeoPoint(x, y, z));
    }

    // A field's value of every feature the filter admits, as text, in layer order.
    static QStringList values(TsFeatureLayer& source, const char* field,
                              const TsQueryFilter& filter = TsQueryFilter())
    {
        QStringList found;
        TsRefPtr<TsFeatureCursor> cursor = source.GetFeatureCursor(filter);
        EXPECT_TRUE(cursor);
        while (cursor) {
            TsRefPtr<TsFeature> feature = cursor->NextFeature();
            if (!feature)
                break;
            TsVariant value;
            feature->GetValue(TsString(field), value);
            found.append(text(value.ToString()));
        }
        return found;
    }

    // A sheet whose rows hold the given values from A1.
    QString workbook(const QList<QVariantList>& rows) const
    {
        QXlsx::Document document;
        for (int r = 0; r < rows.size(); ++r) {
            for (int c = 0; c < rows[r].size(); ++c)
                document.write(r + 1, c + 1, rows[r][c]);
        }
        EXPECT_TRUE(document.saveAs(file(QStringLiteral("join.xlsx"))));
        return file(QStringLiteral("join.xlsx"));
    }

    static std::vector<QStringList> sheet(const QString& path)
    {
        std::vector<QStringList> rows;
        VyExcelUtil::getExcelData(path, rows);
        return rows;
    }

    static QByteArray bytes(const QString& path)
    {
        QFile file(path);
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }

private:
    QTemporaryDir m_dir;
};

} // namespace gdaltest

#endif // VYGIS_TESTS_GDALTESTING_H
