#pragma once

// The cells of the write and read workloads, shared with the peer programs in peers/
// (cells.py, libxlsxwriter_write.c), which spell the same rule: a title row, a header
// row, then rows of ten text cells, words in the even columns ("Feature 12-4") and
// numbers as text in the odd ones ("12.8660"). Every text differs from the others, so a
// shared string table gains nothing from repeats.

#include <QString>

#include <cstdio>

namespace bench {

constexpr int kColumns = 10;
constexpr int kFirstDataRow = 3;   // 1-based: below the title and the header

inline QString titleText()
{
    return QStringLiteral("Benchmark cells");
}

inline QString headerText(int column)
{
    return QStringLiteral("Column %1").arg(column + 1);
}

// The text of data row r (from 0) and column c (from 0).
inline QString cellText(int r, int c)
{
    char buffer[48];
    const int length = c % 2 == 0
        ? std::snprintf(buffer, sizeof buffer, "Feature %d-%d", r, c)
        : std::snprintf(buffer, sizeof buffer, "%d.%04d", r, (r * 7 + c * 1237) % 10000);
    return QString::fromLatin1(buffer, length);
}

} // namespace bench
