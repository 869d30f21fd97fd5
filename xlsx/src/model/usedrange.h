#pragma once

#include "xlsxcellrange.h"

namespace QXlsx::detail {

class SheetData;

// The range of a sheet that a user sees in use, computed from its stored cells: every
// cell holding a value or a formula, and the formatted empty cells beside them. The
// <dimension> element a file carries plays no part. usedrange.cpp says which formatted
// empty cells count and why.
CellRange usedRange(const SheetData& sheet);

} // namespace QXlsx::detail
