#include "tsgeo.h"

namespace VyObjects {

TsGeometry::~TsGeometry() = default;

TsGeoPoint::TsGeoPoint(double x, double y) : m_x(x), m_y(y) {}

TsGeoPoint::TsGeoPoint(double x, double y, double z) : m_x(x), m_y(y), m_z(z), m_hasZ(true) {}

bool TsGeoPoint::HasZ(bool& hasZ) const
{
    hasZ = m_hasZ;
    return true;
}

bool TsGeoPoint::QueryCoordsXYZ(double* x, double* y, double* z) const
{
    if (x)
        *x = m_x;
    if (y)
        *y = m_y;
    if (z)
        *z = m_hasZ ? m_z : 0.0;
    return true;
}

TsGeoPath::TsGeoPath(GeometryType type, std::vector<TsPoint> vertices)
    : m_type(type), m_vertices(std::move(vertices))
{
}

} // namespace VyObjects
