#include "sharedstrings.h"

#include "model/stringpool.h"
#include "textlimit.h"
#include "xmlsink.h"

#include <cstring>

namespace QXlsx::detail {

namespace {

bool isBlank(char c)
{
    return c == ' ' || c == '\t' || c == '\n' || c == '\r';
}

// Readers drop blanks around a text and may fold line breaks unless told not to.
bool needsPreserve(const char* text, int size)
{
    return size > 0
           && (isBlank(text[0]) || isBlank(text[size - 1])
               || std::memchr(text, '\n', size_t(size)) != nullptr);
}

} // namespace

void writeSharedStrings(XmlSink& out, const StringPool& strings, quint64 referenceCount)
{
    const quint32 count = strings.count();
    out.literal("<?xml version=\"1.0\" encoding=\"UTF-8\" standalone=\"yes\"?>\n"
                "<sst xmlns=\"http://schemas.openxmlformats.org/spreadsheetml/2006/main\" count=\"");
    out.appendUInt(qMax<quint64>(referenceCount, count));
    out.literal("\" uniqueCount=\"");
    out.appendUInt(count);
    out.literal("\">");
    for (quint32 i = 0; i < count; ++i) {
        if (strings.isRich(i)) {
            out.literal("<si>");
            out.append(strings.richXml(i));
            out.literal("</si>");
            continue;
        }
        int size = 0;
        const char* text = strings.utf8(i, &size);
        size = cellTextBytes(text, size);
        const bool preserve = needsPreserve(text, size);
        if (!preserve && out.appendPlainElement("<si><t>", text, size_t(size), "</t></si>"))
            continue;
        if (preserve)
            out.literal("<si><t xml:space=\"preserve\">");
        else
            out.literal("<si><t>");
        out.appendText(text, size_t(size));
        out.literal("</t></si>");
    }
    out.literal("</sst>");
}

} // namespace QXlsx::detail
