#include "textlimit.h"

#include "model/stringpool.h"

namespace QXlsx::detail {

int cellTextBytes(const char* utf8, int size)
{
    // A UTF-8 text has no more UTF-16 units than bytes.
    if (size <= MaxCellTextUnits)
        return size;
    int units = 0;
    int at = 0;
    while (at < size) {
        const quint8 lead = quint8(utf8[at]);
        const int bytes = lead < 0x80 ? 1 : lead < 0xE0 ? 2 : lead < 0xF0 ? 3 : 4;
        // Four bytes are a character beyond the Basic Multilingual Plane: a surrogate
        // pair, kept whole or left out whole.
        const int characterUnits = bytes == 4 ? 2 : 1;
        if (units + characterUnits > MaxCellTextUnits || at + bytes > size)
            break;
        units += characterUnits;
        at += bytes;
    }
    return at;
}

std::vector<quint32> textsOverCellLimit(const StringPool& strings)
{
    std::vector<quint32> over;
    if (strings.longestText() <= MaxCellTextUnits)
        return over;
    for (quint32 i = 0; i < strings.count(); ++i) {
        int size = 0;
        const char* text = strings.utf8(i, &size);
        if (size > MaxCellTextUnits && cellTextBytes(text, size) < size && !strings.isRich(i))
            over.push_back(i);
    }
    return over;
}

} // namespace QXlsx::detail
