#include "api/referenceparser.h"

#include "xlsxglobal.h"

namespace QXlsx::detail {

bool parseCellReference(QStringView text, int* row, int* column)
{
    *row = -1;
    *column = -1;
    qsizetype i = 0;
    const qsizetype n = text.size();
    if (i < n && text[i] == QLatin1Char('$'))
        ++i;
    int col = 0;
    const qsizetype lettersStart = i;
    for (; i < n; ++i) {
        const char16_t c = text[i].unicode();
        int digit;
        if (c >= 'A' && c <= 'Z')
            digit = c - 'A' + 1;
        else if (c >= 'a' && c <= 'z')
            digit = c - 'a' + 1;
        else
            break;
        col = col * 26 + digit;
        if (col > MaxColumns)
            return false;
    }
    if (i == lettersStart)
        return false;
    if (i < n && text[i] == QLatin1Char('$'))
        ++i;
    const qsizetype digitsStart = i;
    int r = 0;
    for (; i < n; ++i) {
        const char16_t c = text[i].unicode();
        if (c < '0' || c > '9')
            return false;
        r = r * 10 + (c - '0');
        if (r > MaxRows)
            return false;
    }
    if (i == digitsStart || r < 1)
        return false;
    *row = r;
    *column = col;
    return true;
}

} // namespace QXlsx::detail
