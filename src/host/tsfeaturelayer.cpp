#include "tsfeaturelayer.h"

namespace VyObjects {

TsFeature::TsFeature(int id, const TsRefPtr<TsFields>& fields, std::vector<TsVariant> values,
                     const TsRefPtr<TsGeometry>& geometry)
    : TsRow(id, fields, std::move(values)), m_geometry(geometry)
{
}

TsFeatureCursor::~TsFeatureCursor() = default;
TsLayerEditBuffer::~TsLayerEditBuffer() = default;

TsFeatureLayer::TsFeatureLayer(const TsString& name, LayerType type)
    : TsLayer(name, type)
{
}

TsFeatureLayer::~TsFeatureLayer() = default;

} // namespace VyObjects
