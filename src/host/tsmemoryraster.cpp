#include "tsmemoryraster.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace VyObjects {

namespace {

// Cell positions far beyond any grid are clamped before conversion, so the
// conversion to int never overflows.
long long cellIndex(double position)
{
    if (std::isnan(position))
        return std::numeric_limits<int>::min();
    const double limit = static_cast<double>(std::numeric_limits<int>::max());
    return static_cast<long long>(std::clamp(std::floor(position), -limit, limit));
}

} // namespace

// A NaN no-data value marks its cells as NaN, which no comparison finds.
bool TsMemoryRaster::holdsNoValue(double value) const
{
    return value == m_noData || std::isnan(value);
}

TsMemoryRaster::TsMemoryRaster(const TsRect& extent, int columns, int rows, double noDataValue)
    : m_extent(extent),
      m_columns(std::max(columns, 1)),
      m_rows(std::max(rows, 1)),
      m_noData(noDataValue),
      m_values(static_cast<std::size_t>(m_columns) * static_cast<std::size_t>(m_rows), noDataValue)
{
}

TsMemoryRaster::~TsMemoryRaster() = default;

void TsMemoryRaster::SetValue(int column, int row, double value)
{
    if (column >= 0 && column < m_columns && row >= 0 && row < m_rows)
        m_values[static_cast<std::size_t>(row) * static_cast<std::size_t>(m_columns)
                 + static_cast<std::size_t>(column)] = value;
}

void TsMemoryRaster::SetValues(const std::vector<double>& values)
{
    std::copy_n(values.begin(), std::min(values.size(), m_values.size()), m_values.begin());
}

double TsMemoryRaster::GetPixelSizeX() const
{
    return m_extent.Width() / m_columns;
}

double TsMemoryRaster::GetPixelSizeY() const
{
    return m_extent.Height() / m_rows;
}

TsRefPtr<TsPixelBlock> TsMemoryRaster::CreatePixelBlock(const TsSize& size) const
{
    if (size.width <= 0 || size.height <= 0)
        return nullptr;
    return TsRefPtr<TsPixelBlock>::create(size, 1, m_noData);
}

bool TsMemoryRaster::ReadPixelBlock(TsPoint cell, TsPixelBlock* block, int level) const
{
    if (!block)
        return false;
    block->Clear();
    if (level != 0)
        return false;
    const long long left = cellIndex(cell.x);
    const long long top = cellIndex(cell.y);
    const TsSize size = block->GetSize();
    bool anyValue = false;
    for (int row = 0; row < size.height; ++row) {
        for (int column = 0; column < size.width; ++column) {
            const long long x = left + column;
            const long long y = top + row;
            if (x < 0 || x >= m_columns || y < 0 || y >= m_rows)
                continue;
            const double value = m_values[static_cast<std::size_t>(y * m_columns + x)];
            if (holdsNoValue(value))
                continue;
            block->SetPixelValue(1, column, row, value);
            anyValue = true;
        }
    }
    return anyValue;
}

} // namespace VyObjects
