#include "tsraster.h"

#include <algorithm>

namespace VyObjects {

TsPixelBlock::TsPixelBlock(const TsSize& size, int bandCount, double noDataValue)
    : m_size(TsSize(std::max(size.width, 0), std::max(size.height, 0))),
      m_bandCount(std::max(bandCount, 0)),
      m_noData(noDataValue),
      m_values(static_cast<std::size_t>(m_size.width) * static_cast<std::size_t>(m_size.height)
                   * static_cast<std::size_t>(m_bandCount),
               noDataValue)
{
}

double TsPixelBlock::GetPixelValue(int band, int column, int row) const
{
    return contains(band, column, row) ? m_values[offset(band, column, row)] : m_noData;
}

void TsPixelBlock::SetPixelValue(int band, int column, int row, double value)
{
    if (contains(band, column, row))
        m_values[offset(band, column, row)] = value;
}

void TsPixelBlock::Clear()
{
    std::fill(m_values.begin(), m_values.end(), m_noData);
}

bool TsPixelBlock::contains(int band, int column, int row) const
{
    return band >= 1 && band <= m_bandCount && column >= 0 && column < m_size.width
        && row >= 0 && row < m_size.height;
}

std::size_t TsPixelBlock::offset(int band, int column, int row) const
{
    const auto width = static_cast<std::size_t>(m_size.width);
    const auto height = static_cast<std::size_t>(m_size.height);
    return (static_cast<std::size_t>(band - 1) * height + static_cast<std::size_t>(row)) * width
         + static_cast<std::size_t>(column);
}

TsRasterProps::~TsRasterProps() = default;

} // namespace VyObjects
