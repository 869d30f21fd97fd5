#pragma once

// The size of the one sheet an attribute export writes to.

namespace vygis {

// The grid of a worksheet. An export never adds a sheet, so records or columns beyond
// these cannot be written at all.
constexpr int kSheetRowCount = 1048576;
constexpr int kSheetColumnCount = 16384;

} // namespace vygis
