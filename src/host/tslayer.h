#ifndef VYGIS_TSLAYER_H
#define VYGIS_TSLAYER_H

#include "tsbase.h"
#include "vygishost_export.h"

namespace VyObjects {

// A layer of a map: a name, a kind and whether it is drawn. Layers that are
// only shown (annotation, raster) are plain TsLayers; feature layers add
// their data.
class VYGIS_HOST_EXPORT TsLayer : public TsRefBase
{
public:
    // A fixed underlying type, so that any int the application stores is a valid value.
    enum LayerType : int {
        UnknownLayer = 0,
        PointLayer = 1,
        MultiPointLayer = 2,
        LineLayer = 3,
        PolygonLayer = 4,
        AnnotationLayer = 5,
        RasterLayer = 6,
        TableLayer = 7
    };

    TsLayer(const TsString& name, LayerType type);

    TsString GetLayerName() const { return m_name; }
    void SetLayerName(TsString name) { m_name = std::move(name); }
    LayerType GetLayerType() const { return m_type; }
    bool IsVisible() const { return m_visible; }
    void SetVisible(bool visible) { m_visible = visible; }

protected:
    ~TsLayer() override;

private:
    TsString m_name;
    LayerType m_type;
    bool m_visible = true;
};

} // namespace VyObjects

#endif // VYGIS_TSLAYER_H
