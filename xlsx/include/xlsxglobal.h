#pragma once

#include "xlsx_export.h"

namespace QXlsx {

// The grid of a worksheet: A1 to XFD1048576.
constexpr int MaxRows = 1048576;
constexpr int MaxColumns = 16384;

} // namespace QXlsx
