#pragma once

// Layers that the tool's tests write through the GDAL provider before a run and read
// back after it.

#include "clitesting.h"

#include "tsgdal.h"

#include <vector>

// A new file at path (its format by its suffix) holding a point layer whose features
// hold rows, in the order of fields.
inline QString pointLayer(const QString& path, const QString& name,
                          const std::vector<VyObjects::TsGdalFieldDefinition>& fields,
                          const std::vector<std::vector<VyObjects::TsVariant>>& rows)
{
    using namespace VyObjects;
    QString error;
    const TsRefPtr<TsGdalDataSource> source = TsGdalDataSource::create(path, &error);
    EXPECT_TRUE(source && source->createLayer(name, TsLayer::PointLayer, fields, &error)) << error.toStdString();
    const TsRefPtr<TsGdalFeatureWriter> writer = source ? source->featureWriter(name, &error) : nullptr;
    for (std::size_t i = 0; writer && i < rows.size(); ++i)
        writer->addFeature(rows[i], TsRefPtr<TsGeometry>(new TsGeoPoint(1.0, 2.0)));
    EXPECT_TRUE(writer && writer->commit(&error)) << error.toStdString();
    return path;
}

// The value of field of every feature of the layer at path, in order; a null shows as
// "<null>", apart from an empty text.
inline QStringList layerValues(const QString& path, const char* field)
{
    using namespace VyObjects;
    QString error;
    const TsRefPtr<TsGdalDataSource> source = TsGdalDataSource::open(path, TsGdalDataSource::ReadOnly, &error);
    const TsRefPtr<TsFeatureLayer> layer = source ? source->featureLayer(QString(), &error) : nullptr;
    const TsRefPtr<TsFeatureCursor> cursor = layer ? layer->GetFeatureCursor(TsQueryFilter()) : nullptr;
    QStringList texts;
    while (cursor) {
        const TsRefPtr<TsFeature> feature = cursor->NextFeature();
        if (!feature)
            break;
        TsVariant value;
        feature->GetValue(TsString(field), value);
        texts.append(value.IsNull() || value.IsEmpty() ? QStringLiteral("<null>")
                                                       : QString::fromStdWString(value.ToString().toStdWString()));
    }
    return texts;
}
