#ifndef VYGIS_TSGEO_H
#define VYGIS_TSGEO_H

// Feature geometries. Code that needs one kind asks for it with
// TsRefPtr::dynamicCast, which gives null for any other kind.

#include "tsbase.h"
#include "vygishost_export.h"

#include <vector>

namespace VyObjects {

class VYGIS_HOST_EXPORT TsGeometry : public TsRefBase
{
public:
    enum GeometryType { PointGeometry = 1, PolylineGeometry = 3, PolygonGeometry = 4 };

    virtual GeometryType GetGeometryType() const = 0;

protected:
    TsGeometry() = default;
    ~TsGeometry() override;
};

class VYGIS_HOST_EXPORT TsGeoPoint : public TsGeometry
{
public:
    TsGeoPoint(double x, double y);
    TsGeoPoint(double x, double y, double z);

    GeometryType GetGeometryType() const override { return PointGeometry; }
    double GetX() const { return m_x; }
    double GetY() const { return m_y; }
    // Reports in hasZ whether the point carries a height; returns whether the
    // question could be answered, which for a point is always.
    bool HasZ(bool& hasZ) const;
    // Any of the pointers may be null. A point without height gives z = 0.0.
    bool QueryCoordsXYZ(double* x, double* y, double* z) const;

private:
    double m_x;
    double m_y;
    double m_z = 0.0;
    bool m_hasZ = false;
};

// A line or a ring through a list of vertices.
class VYGIS_HOST_EXPORT TsGeoPath : public TsGeometry
{
public:
    TsGeoPath(GeometryType type, std::vector<TsPoint> vertices);

    GeometryType GetGeometryType() const override { return m_type; }
    const std::vector<TsPoint>& GetVertices() const { return m_vertices; }

private:
    GeometryType m_type;
    std::vector<TsPoint> m_vertices;
};

} // namespace VyObjects

#endif // VYGIS_TSGEO_H
