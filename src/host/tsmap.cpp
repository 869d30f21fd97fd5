#include "tsmap.h"

#include <algorithm>

namespace VyObjects {

TsMap::~TsMap() = default;

void TsMap::AddLayer(const TsRefPtr<TsLayer>& layer)
{
    if (layer && std::find(m_layers.begin(), m_layers.end(), layer) == m_layers.end())
        m_layers.push_back(layer);
}

bool TsMap::RemoveLayer(const TsRefPtr<TsLayer>& layer)
{
    const auto found = std::find(m_layers.begin(), m_layers.end(), layer);
    if (found == m_layers.end())
        return false;
    m_layers.erase(found);
    return true;
}

std::vector<TsRefPtr<TsLayer>> TsMap::GetLayers(bool includeHidden) const
{
    std::vector<TsRefPtr<TsLayer>> layers;
    for (const TsRefPtr<TsLayer>& layer : m_layers) {
        if (includeHidden || layer->IsVisible())
            layers.push_back(layer);
    }
    return layers;
}

} // namespace VyObjects
