#ifndef VYGIS_TSBASE_H
#define VYGIS_TSBASE_H

// Base types of the GIS object library: counted references, text, attribute
// values, plane geometry values and the file test.

#include "tsref.h"
#include "tsstring.h"
#include "tsvariant.h"
#include "vygishost_export.h"

#include <cstdint>

namespace VyObjects {

// A position in map units, or a cell position (column, row) in a raster.
struct TsPoint
{
    TsPoint() = default;
    TsPoint(double px, double py) : x(px), y(py) {}

    double x = 0.0;
    double y = 0.0;

    friend bool operator==(const TsPoint& a, const TsPoint& b) { return a.x == b.x && a.y == b.y; }
    friend bool operator!=(const TsPoint& a, const TsPoint& b) { return !(a == b); }
};

// A size in whole cells.
struct TsSize
{
    TsSize() = default;
    TsSize(std::int32_t w, std::int32_t h) : width(w), height(h) {}

    std::int32_t width = 0;
    std::int32_t height = 0;
};

// An axis-aligned extent; the members keep the order min x, max x, min y, max y.
struct TsRect
{
    TsRect() = default;
    TsRect(double x0, double x1, double y0, double y1) : minX(x0), maxX(x1), minY(y0), maxY(y1) {}

    double minX = 0.0;
    double maxX = 0.0;
    double minY = 0.0;
    double maxY = 0.0;

    double Width() const { return maxX - minX; }
    double Height() const { return maxY - minY; }
    // Edges belong to the rectangle.
    bool Contains(const TsPoint& p) const { return minX <= p.x && p.x <= maxX && minY <= p.y && p.y <= maxY; }
};

class VYGIS_HOST_EXPORT TsFile
{
public:
    TsFile() = delete;

    // True when a file (not a folder) stands at path.
    static bool Exists(const TsString& path);
};

} // namespace VyObjects

#endif // VYGIS_TSBASE_H
