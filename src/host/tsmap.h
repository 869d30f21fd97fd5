#ifndef VYGIS_TSMAP_H
#define VYGIS_TSMAP_H

#include "tsbase.h"
#include "tslayer.h"
#include "vygishost_export.h"

#include <vector>

namespace VyObjects {

// The layers of one map, in drawing order from the top.
class VYGIS_HOST_EXPORT TsMap : public TsRefBase
{
public:
    TsMap() = default;

    // A null layer, or one the map already holds, is not added.
    void AddLayer(const TsRefPtr<TsLayer>& layer);
    bool RemoveLayer(const TsRefPtr<TsLayer>& layer);
    int GetLayerCount() const { return static_cast<int>(m_layers.size()); }

    // Every layer with includeHidden, otherwise only the visible ones.
    std::vector<TsRefPtr<TsLayer>> GetLayers(bool includeHidden) const;

protected:
    ~TsMap() override;

private:
    std::vector<TsRefPtr<TsLayer>> m_layers;
};

} // namespace VyObjects

#endif // VYGIS_TSMAP_H
