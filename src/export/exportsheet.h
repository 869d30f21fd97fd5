#pragma once

// What the attribute exports share beyond the workbook conventions: the size of the one
// sheet they write to, and the way host texts become Qt texts.

#include "tsstring.h"

#include <QString>

namespace vygis {

// The grid of a worksheet. An export never adds a sheet, so records or columns beyond
// these cannot be written at all.
constexpr int kSheetRowCount = 1048576;
constexpr int kSheetColumnCount = 16384;

// Host texts reach Qt through the wide standard string, as every host text does.
inline QString qtText(const VyObjects::TsString& text)
{
    return QString::fromStdWString(text.toStdWString());
}

} // namespace vygis
