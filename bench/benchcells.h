#pragma once

// The cells of the write and read workloads, shared with the peer programs in peers/
// (cells.py, libxlsxwriter_write.c), which spell the same rule: a title row, a header
// row, then rows of ten text cells, words in the even columns ("Feature 12-4") and
// numbers as text in the odd ones ("12.8660"). Every text differs from the others, so a
// shared string table gains nothing from repeats. Data rows beyond what one sheet holds
// go on to a next sheet, which starts again with the title and header rows.

#include <QString>


namespace bench {

constexpr int kColumns = 10;
constexpr int kFirstDataRow = 3;   // 1-based: below the title and the header
constexpr int kDataRowsPerSheet = 1048576 - 2;

inline QString titleText()
{
    return QStringLiteral("Benchmark cells");
}

inline QString headerText(int column)
{
    return QStringLiteral("Column %1").arg(column + 1);
}

// The decimal digits of value at out; returns the position after them. Written by hand,
// as in the C peer: printf-style formatting would cost a fifth of the write itself.
inline char* appendDigits(char* out, unsigned value, int minimumDigits = 1)
{
    char reversed[12];
    int count = 0;
    do {
        reversed[count++] = static_cast<char>('0' + value % 10);
        value /= 10;
    } while (value != 0 || count < minimumDigits);
    while (count > 0)
        *out++ = reversed[--count];
    return out;
}

// The text of data row r (from 0) and column c (from 0).
inline QString cellText(int r, int c)
{
    char buffer[48];
    char* end = buffer;
    if (c % 2 == 0) {
        for (const char* word = "Feature "; *word; ++word)
            *end++ = *word;
        end = appendDigits(end, static_cast<unsigned>(r));
        *end++ = '-';
        end = appendDigits(end, static_cast<unsigned>(c));
    } else {
        end = appendDigits(end, static_cast<unsigned>(r));
        *end++ = '.';
        end = appendDigits(end, static_cast<unsigned>((r * 7 + c * 1237) % 10000), 4);
    }
    return QString::fromLatin1(buffer, static_cast<int>(end - buffer));
}

} // namespace bench
