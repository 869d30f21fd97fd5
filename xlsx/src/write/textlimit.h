#pragma once

#include <QtGlobal>

#include <vector>

namespace QXlsx::detail {

class StringPool;

// Excel holds at most 32,767 characters in a cell, counted in UTF-16 units, and refuses
// or repairs a file with a longer text. The model keeps every text whole; a save writes
// a longer one cut to the limit, never in the middle of a surrogate pair, and counts the
// cells it cut so that the caller learns of it. Rich text kept from a file is written
// back as read.
constexpr int MaxCellTextUnits = 32767;

// The bytes of a text in the string pool's UTF-8 that hold at most MaxCellTextUnits
// UTF-16 units without splitting a character; size for a text within the limit.
int cellTextBytes(const char* utf8, int size);

// The entries of the pool that a save cuts, in order: in nearly every workbook none,
// which the pool tells without a look at its entries.
std::vector<quint32> textsOverCellLimit(const StringPool& strings);

} // namespace QXlsx::detail
