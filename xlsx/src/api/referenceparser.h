#pragma once

#include <QStringView>

namespace QXlsx::detail {

// Parses "B7" or "$B$7" (letters in either case) into a 1-based row and column. On
// anything else, or an address beyond the grid, both are set to -1 and false returned.
bool parseCellReference(QStringView text, int* row, int* column);

} // namespace QXlsx::detail
