#include "rawxml.h"

#include <cstring>

namespace QXlsx::detail {

namespace {

bool isNameEnd(char c)
{
    return c == ' ' || c == '\t' || c == '\r' || c == '\n' || c == '/' || c == '>';
}

// The qualified name of the tag starting at xml[lt] ('<'), and where it ends.
QByteArray tagName(const QByteArray& xml, int lt)
{
    int end = lt + 1;
    while (end < xml.size() && !isNameEnd(xml[end]))
        ++end;
    return xml.mid(lt + 1, end - lt - 1);
}

// The '>' closing the tag that starts at lt, skipping quoted attribute values.
int tagEnd(const QByteArray& xml, int lt)
{
    char quote = 0;
    for (int i = lt + 1; i < xml.size(); ++i) {
        const char c = xml[i];
        if (quote) {
            if (c == quote)
                quote = 0;
        } else if (c == '"' || c == '\'') {
            quote = c;
        } else if (c == '>') {
            return i;
        }
    }
    return -1;
}

// The next start tag with local name element from position from; -1 if none.
int findStartTag(const QByteArray& xml, const QByteArray& element, int from = 0)
{
    for (int lt = xml.indexOf('<', from); lt >= 0; lt = xml.indexOf('<', lt + 1)) {
        if (lt + 1 < xml.size() && (xml[lt + 1] == '/' || xml[lt + 1] == '?' || xml[lt + 1] == '!'))
            continue;
        if (localNameOf(tagName(xml, lt)) == element)
            return lt;
    }
    return -1;
}

// Where the attribute name starts inside the tag [lt, gt], or -1; valueStart/valueEnd
// bound its value without quotes.
int findAttribute(const QByteArray& xml, int lt, int gt, const QByteArray& attribute,
                  int* valueStart, int* valueEnd)
{
    char quote = 0;
    for (int i = lt + 1; i < gt; ++i) {
        const char c = xml[i];
        if (quote) {
            if (c == quote)
                quote = 0;
            continue;
        }
        if (c == '"' || c == '\'') {
            quote = c;
            continue;
        }
        const bool atStart = (c == ' ' || c == '\t' || c == '\r' || c == '\n');
        if (!atStart || i + 1 + attribute.size() >= gt)
            continue;
        if (std::memcmp(xml.constData() + i + 1, attribute.constData(), size_t(attribute.size())) != 0)
            continue;
        int j = i + 1 + attribute.size();
        while (j < gt && (xml[j] == ' ' || xml[j] == '\t' || xml[j] == '\r' || xml[j] == '\n'))
            ++j;
        if (j >= gt || xml[j] != '=')
            continue;
        ++j;
        while (j < gt && xml[j] != '"' && xml[j] != '\'')
            ++j;
        if (j >= gt)
            return -1;
        const int close = xml.indexOf(xml[j], j + 1);
        if (close < 0 || close > gt)
            return -1;
        *valueStart = j + 1;
        *valueEnd = close;
        return i;
    }
    return -1;
}

} // namespace

QByteArray localNameOf(const QByteArray& qualifiedName)
{
    const int colon = qualifiedName.indexOf(':');
    return colon < 0 ? qualifiedName : qualifiedName.mid(colon + 1);
}

std::vector<RawElement> splitElements(const QByteArray& xml)
{
    std::vector<RawElement> elements;
    int depth = 0;
    int start = -1;
    QByteArray name;
    for (int lt = xml.indexOf('<'); lt >= 0; lt = xml.indexOf('<', lt + 1)) {
        const int gt = tagEnd(xml, lt);
        if (gt < 0)
            break;
        const char kind = lt + 1 < xml.size() ? xml[lt + 1] : 0;
        if (kind == '?' || kind == '!') {
            lt = gt;
            continue;
        }
        if (kind == '/') {
            if (--depth == 0 && start >= 0)
                elements.push_back({name, xml.mid(start, gt + 1 - start)});
        } else {
            if (depth == 0) {
                start = lt;
                name = localNameOf(tagName(xml, lt));
            }
            if (xml[gt - 1] == '/') {
                if (depth == 0)
                    elements.push_back({name, xml.mid(start, gt + 1 - start)});
            } else {
                ++depth;
            }
        }
        lt = gt;
    }
    return elements;
}

QByteArray innerXml(const QByteArray& element)
{
    const int lt = element.indexOf('<');
    const int gt = lt < 0 ? -1 : tagEnd(element, lt);
    if (gt < 0 || element[gt - 1] == '/')
        return QByteArray();
    const int close = element.lastIndexOf("</");
    return close > gt ? element.mid(gt + 1, close - gt - 1) : QByteArray();
}

int countElements(const QByteArray& xml, const QByteArray& localName)
{
    int n = 0;
    for (int lt = findStartTag(xml, localName); lt >= 0; lt = findStartTag(xml, localName, lt + 1))
        ++n;
    return n;
}

QByteArray attributeValue(const QByteArray& xml, const QByteArray& element,
                          const QByteArray& attribute)
{
    const int lt = findStartTag(xml, element);
    const int gt = lt < 0 ? -1 : tagEnd(xml, lt);
    int from = 0;
    int to = 0;
    if (gt < 0 || findAttribute(xml, lt, gt, attribute, &from, &to) < 0)
        return QByteArray();
    return xml.mid(from, to - from);
}

QByteArray withAttribute(const QByteArray& xml, const QByteArray& element,
                         const QByteArray& attribute, const QByteArray& value)
{
    const int lt = findStartTag(xml, element);
    const int gt = lt < 0 ? -1 : tagEnd(xml, lt);
    if (gt < 0)
        return xml;
    QByteArray result = xml;
    int from = 0;
    int to = 0;
    const int at = findAttribute(result, lt, gt, attribute, &from, &to);
    if (at >= 0)
        result.remove(at, to + 1 - at);
    if (!value.isNull())
        result.insert(lt + 1 + tagName(result, lt).size(), " " + attribute + "=\"" + value + "\"");
    return result;
}

QByteArray mapAttribute(const QByteArray& xml, const QByteArray& attribute,
                        const std::function<QByteArray(const QByteArray&)>& map)
{
    QByteArray result = xml;
    for (int lt = result.indexOf('<'); lt >= 0; lt = result.indexOf('<', lt + 1)) {
        const int gt = tagEnd(result, lt);
        if (gt < 0)
            break;
        int from = 0;
        int to = 0;
        if (findAttribute(result, lt, gt, attribute, &from, &to) >= 0) {
            result.replace(from, to - from, map(result.mid(from, to - from)));
            lt = tagEnd(result, lt);
        } else {
            lt = gt;
        }
    }
    return result;
}

int schemaRank(std::initializer_list<const char*> order, const QByteArray& localName)
{
    int rank = 0;
    for (const char* name : order) {
        if (localName == name)
            return rank;
        ++rank;
    }
    return -1;
}

void writeInSchemaOrder(std::initializer_list<const char*> order,
                        const std::vector<RawElement>& kept,
                        const std::function<void(int rank)>& generate,
                        const std::function<void(const RawElement&)>& writeKept)
{
    std::vector<int> ranks;
    ranks.reserve(kept.size());
    int previous = 0;
    for (const RawElement& element : kept) {
        const int rank = schemaRank(order, element.localName);
        previous = rank >= 0 ? rank : previous;
        ranks.push_back(previous);
    }
    const int count = int(order.size());
    for (int rank = 0; rank < count; ++rank) {
        generate(rank);
        for (size_t i = 0; i < kept.size(); ++i)
            if (ranks[i] == rank)
                writeKept(kept[i]);
    }
}

} // namespace QXlsx::detail

namespace QXlsx::detail {

RootTag rootTag(const QByteArray& kept, const QByteArray& localName, const QByteArray& fallback,
                bool bindRelationshipPrefix)
{
    static const QByteArray main = "http://schemas.openxmlformats.org/spreadsheetml/2006/main";
    static const QByteArray relationships =
        "http://schemas.openxmlformats.org/officeDocument/2006/relationships";
    QByteArray start = kept.trimmed();
    const bool usable = start.startsWith('<') && start.endsWith('>') && start.contains(main)
                        && localNameOf(tagName(start, 0)) == localName;
    if (!usable)
        start = fallback;
    if (start.endsWith("/>"))
        start.replace(start.size() - 2, 2, ">");
    if (attributeValue(start, localName, "xmlns").isNull())
        start = withAttribute(start, localName, "xmlns", main);
    if (bindRelationshipPrefix && attributeValue(start, localName, "xmlns:r").isNull())
        start = withAttribute(start, localName, "xmlns:r", relationships);
    return {start, "</" + tagName(start, 0) + ">"};
}

} // namespace QXlsx::detail

namespace QXlsx::detail {

QByteArray withoutAttributes(const QByteArray& attributes, std::initializer_list<const char*> names)
{
    QByteArray tag = "<t " + attributes + ">";
    for (const char* name : names)
        tag = withAttribute(tag, "t", name, QByteArray());
    return tag.mid(2, tag.size() - 3).trimmed();
}

} // namespace QXlsx::detail
