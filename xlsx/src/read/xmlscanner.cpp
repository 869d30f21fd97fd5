#include "read/xmlscanner.h"

#include "read/xmlreader.h"

#include <algorithm>
#include <cstring>

namespace QXlsx::detail {

namespace {

// Character classes by table: the scanner asks these once or twice per byte.
enum : quint8 { Space = 1, NameStop = 2, TextSpecial = 4, ValueSpecial = 8, NameStart = 16, Colon = 32 };

struct CharClasses
{
    quint8 of[256] = {};
    constexpr CharClasses()
    {
        for (char c : {' ', '\n', '\t', '\r'})
            of[quint8(c)] |= Space | NameStop | (c == ' ' ? 0 : ValueSpecial);
        for (char c : {'/', '>', '='})
            of[quint8(c)] |= NameStop;
        // Text ends at "<"; "&" and "\r" mean it needs resolving. Values end at a quote
        // and may not hold "<".
        for (char c : {'<', '&', '\r'})
            of[quint8(c)] |= TextSpecial | ValueSpecial;
        for (char c : {'"', '\''})
            of[quint8(c)] |= ValueSpecial;
        for (int c = 0; c < 256; ++c) {
            if ((c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_' || c == ':' || c >= 0x80)
                of[c] |= NameStart;
        }
        of[quint8(':')] |= Colon;
    }
};
constexpr CharClasses Classes;

inline bool is(char c, quint8 kind) { return Classes.of[quint8(c)] & kind; }
inline bool isSpace(char c) { return is(c, Space); }

inline bool isNameStart(char c) { return is(c, NameStart); }

// Where a name ends: at white space, "/", ">" or "=" (or the end of the buffer).
inline const char* nameEnd(const char* p, const char* end)
{
    while (p < end && !is(*p, NameStop))
        ++p;
    return p;
}

// The same, and in the same pass where its local part starts, after its first ":".
inline const char* nameEnd(const char* p, const char* end, const char** localStart)
{
    *localStart = p;
    const char* first = p;
    for (; p < end; ++p) {
        const quint8 kind = Classes.of[quint8(*p)];
        if (kind & (NameStop | Colon)) {
            if (kind & NameStop)
                break;
            if (*localStart == first)
                *localStart = p + 1;
        }
    }
    return p;
}

inline const char* skipSpace(const char* p, const char* end)
{
    while (p < end && isSpace(*p))
        ++p;
    return p;
}

// Names are a few bytes: a loop beats the library search this runs for every tag.
inline std::string_view localPart(std::string_view qualifiedName)
{
    for (size_t i = 0; i < qualifiedName.size(); ++i)
        if (qualifiedName[i] == ':')
            return qualifiedName.substr(i + 1);
    return qualifiedName;
}

// Text with nothing to resolve is handed over where it lies.
bool needsDecoding(std::string_view raw, bool attribute)
{
    for (char c : raw) {
        if (c == '&' || c == '\r' || (attribute && (c == '\n' || c == '\t')))
            return true;
    }
    return false;
}

bool isXmlChar(quint32 c)
{
    return c == 0x9 || c == 0xA || c == 0xD || (c >= 0x20 && c <= 0xD7FF)
        || (c >= 0xE000 && c <= 0xFFFD) || (c >= 0x10000 && c <= 0x10FFFF);
}

void appendUtf8(std::string& out, quint32 c)
{
    if (c < 0x80) {
        out += char(c);
    } else if (c < 0x800) {
        out += char(0xC0 | (c >> 6));
        out += char(0x80 | (c & 0x3F));
    } else if (c < 0x10000) {
        out += char(0xE0 | (c >> 12));
        out += char(0x80 | ((c >> 6) & 0x3F));
        out += char(0x80 | (c & 0x3F));
    } else {
        out += char(0xF0 | (c >> 18));
        out += char(0x80 | ((c >> 12) & 0x3F));
        out += char(0x80 | ((c >> 6) & 0x3F));
        out += char(0x80 | (c & 0x3F));
    }
}

// The character of a reference "#65", "#x41" or "amp" (without & and ;), or 0.
quint32 referencedCharacter(std::string_view name)
{
    if (name == "lt") return '<';
    if (name == "gt") return '>';
    if (name == "amp") return '&';
    if (name == "quot") return '"';
    if (name == "apos") return '\'';
    if (name.size() < 2 || name[0] != '#')
        return 0;
    const bool hex = name[1] == 'x';
    name.remove_prefix(hex ? 2 : 1);
    if (name.empty())
        return 0;
    quint32 c = 0;
    for (char d : name) {
        int digit;
        if (d >= '0' && d <= '9') digit = d - '0';
        else if (hex && d >= 'a' && d <= 'f') digit = d - 'a' + 10;
        else if (hex && d >= 'A' && d <= 'F') digit = d - 'A' + 10;
        else return 0;
        c = c * (hex ? 16 : 10) + quint32(digit);
        if (c > 0x10FFFF)
            return 0;
    }
    return isXmlChar(c) ? c : 0;
}

} // namespace

const std::string_view* ScannedTag::value(std::string_view localName) const
{
    for (int i = 0; i < attributeCount; ++i) {
        if (localPart(attributes[i].name) == localName)
            return &attributes[i].value;
    }
    return nullptr;
}

XmlScanner::XmlScanner(ScanHandler& handler) : m_handler(handler) {}

void XmlScanner::fail(const char* reason)
{
    if (m_stopped)
        return;
    m_stopped = true;
    m_error = QStringLiteral("%1 near byte %2").arg(QLatin1String(reason)).arg(m_offset);
}

bool XmlScanner::feed(const char* data, size_t size)
{
    // An unfinished token is completed a piece at a time: through the next ">" when
    // that is enough, and it is scanned again only once it has doubled since the scan
    // that found it unfinished, so a long token costs time in proportion to its length
    // however small the chunks.
    while (!m_tail.empty() && size > 0 && !m_stopped) {
        const size_t wanted = 2 * m_tailScanned > m_tail.size() ? 2 * m_tailScanned - m_tail.size() : 0;
        const void* close = std::memchr(data, '>', size);
        size_t take = close ? size_t(static_cast<const char*>(close) - data) + 1 : size;
        take = std::max(take, std::min(size, wanted));
        m_tail.append(data, take);
        data += take;
        size -= take;
        if (m_tail.size() < 2 * m_tailScanned)
            break;   // the chunk ran out first
        const size_t used = scan(m_tail.data(), m_tail.size());
        m_tail.erase(0, used);
        m_tailScanned = m_tail.size();
    }
    if (size > 0 && !m_stopped) {
        const size_t used = scan(data, size);
        m_tail.assign(data + used, size - used);
        m_tailScanned = m_tail.size();
    }
    return !m_stopped;
}

bool XmlScanner::finish()
{
    if (!m_tail.empty() && !m_stopped)
        m_tail.erase(0, scan(m_tail.data(), m_tail.size()));
    if (m_stopped)
        return false;
    if (std::any_of(m_tail.begin(), m_tail.end(), [](char c) { return !isSpace(c); })) {
        fail("the part ends inside markup");
        return false;
    }
    if (m_depth > 0 || !m_rootEnded) {
        fail("the part ends before its root element does");
        return false;
    }
    return true;
}

// Hands over every complete token of the buffer; gives how many bytes they took.
size_t XmlScanner::scan(const char* data, size_t size)
{
    const char* p = data;
    const char* end = data + size;
    while (p < end && !m_stopped) {
        // Tags straight to their scanners: nearly every token of a sheet is one, and the
        // general dispatch cost as much as scanning an end tag.
        size_t used;
        if (*p != '<')
            used = scanText(p, end);
        else if (m_shortcuts && (used = m_handler.shortcut(p, end)) != 0) {
            // the handler took a whole element
        } else if (end - p >= 2 && p[1] == '/')
            used = scanEndTag(p, end);
        else if (end - p >= 2 && isNameStart(p[1]))
            used = scanStartTag(p, end);
        else
            used = scanMarkup(p, end);
        if (used == 0)
            break;
        p += used;
        m_offset += used;
    }
    return size_t(p - data);
}

size_t XmlScanner::scanText(const char* p, const char* end)
{
    // Texts between tags are mostly a few bytes: a plain loop beats memchr. It stops at
    // the first byte of the text class, "<" for a text with nothing to resolve.
    const char* lt = p;
    while (lt < end && !is(*lt, TextSpecial))
        ++lt;
    const bool plain = lt < end && *lt == '<';
    while (lt < end && *lt != '<')
        ++lt;
    if (lt == end)
        return 0;   // text ends at markup, which has not come yet
    const std::string_view raw(p, size_t(lt - p));
    if (plain) {
        m_handler.text(raw, raw);
        return raw.size();
    }
    m_text.clear();
    if (!decodeText(raw, false, m_text))
        return 0;
    m_handler.text(m_text, raw);
    return raw.size();
}

size_t XmlScanner::scanMarkup(const char* p, const char* end)
{
    const std::string_view rest(p, size_t(end - p));
    if (rest.size() < 2)
        return 0;
    if (rest[1] == '/')
        return scanEndTag(p, end);
    if (rest[1] == '?') {
        const size_t close = rest.find("?>", 2);
        if (close == std::string_view::npos)
            return 0;
        m_handler.other(rest.substr(0, close + 2));
        return close + 2;
    }
    if (rest[1] != '!') {
        fail("malformed start tag");   // a start tag's name comes straight after the "<"
        return 0;
    }
    if (rest.size() >= 4 && rest.compare(0, 4, "<!--") == 0) {
        const size_t close = rest.find("-->", 4);
        if (close == std::string_view::npos)
            return 0;
        m_handler.other(rest.substr(0, close + 3));
        return close + 3;
    }
    if (rest.size() >= 9 && rest.compare(0, 9, "<![CDATA[") == 0) {
        const size_t close = rest.find("]]>", 9);
        if (close == std::string_view::npos)
            return 0;
        const std::string_view content = rest.substr(9, close - 9);
        m_text.clear();
        for (size_t i = 0; i < content.size(); ++i) {
            if (content[i] != '\r')
                m_text += content[i];
            else if (i + 1 >= content.size() || content[i + 1] != '\n')
                m_text += '\n';
        }
        m_handler.text(m_text, rest.substr(0, close + 3));
        return close + 3;
    }
    if (rest.size() < 9)
        return 0;   // too short yet to tell what it is
    fail(rest.compare(0, 9, "<!DOCTYPE") == 0 ? "document type declarations are not accepted"
                                              : "malformed markup");
    return 0;
}

size_t XmlScanner::scanStartTag(const char* p, const char* end)
{
    const char* start = p;
    const char* nameStart = p + 1;   // a name start, as scan() found
    const char* localStart;
    p = nameEnd(nameStart, end, &localStart);
    if (p == end)
        return 0;
    const std::string_view qualifiedName(nameStart, size_t(p - nameStart));

    // First the tag's extent and its attributes as written; values are resolved once
    // the whole tag is there.
    m_attributes.clear();
    bool selfClosing = false;
    bool resolve = false;        // a value holds references or white space to normalise
    bool declarations = false;   // an attribute may declare a namespace
    for (;;) {
        p = skipSpace(p, end);
        if (p == end)
            return 0;
        if (*p == '>') {
            ++p;
            break;
        }
        if (*p == '/') {
            if (p + 1 == end)
                return 0;
            if (p[1] != '>') {
                fail("malformed start tag");
                return 0;
            }
            selfClosing = true;
            p += 2;
            break;
        }
        const char* attributeStart = p;
        p = nameEnd(p, end);
        if (p == attributeStart) {
            fail("malformed attribute");
            return 0;
        }
        const std::string_view name(attributeStart, size_t(p - attributeStart));
        p = skipSpace(p, end);
        if (p + 1 >= end)
            return 0;
        if (*p != '=') {
            fail("malformed attribute");
            return 0;
        }
        p = skipSpace(p + 1, end);
        if (p == end)
            return 0;
        const char quote = *p;
        if (quote != '"' && quote != '\'') {
            fail("malformed attribute");
            return 0;
        }
        const char* close = p + 1;
        for (; close < end && *close != quote; ++close) {
            if (is(*close, ValueSpecial)) {
                if (*close == '<') {
                    fail("malformed attribute");
                    return 0;
                }
                if (*close != '"' && *close != '\'')
                    resolve = true;
            }
        }
        if (close == end)
            return 0;
        declarations = declarations || (name.size() >= 5 && name[0] == 'x');
        m_attributes.push_back({name, std::string_view(p + 1, size_t(close - p - 1))});
        p = close + 1;
    }
    if (m_depth == 0 && m_rootEnded) {
        fail("content after the root element");
        return 0;
    }

    if (resolve) {
        m_values.clear();
        m_values.reserve(size_t(p - start));   // resolving never lengthens a value: no moves
        for (ScannedAttribute& attribute : m_attributes) {
            if (!needsDecoding(attribute.value, true))
                continue;
            const size_t from = m_values.size();
            if (!decodeText(attribute.value, true, m_values))
                return 0;
            attribute.value = std::string_view(m_values.data() + from, m_values.size() - from);
        }
    }

    ScannedTag tag;
    tag.qualifiedName = qualifiedName;
    tag.name = std::string_view(localStart, size_t(qualifiedName.data() + qualifiedName.size() - localStart));
    tag.raw = std::string_view(start, size_t(p - start));
    tag.attributes = m_attributes.data();
    tag.attributeCount = int(m_attributes.size());
    tag.selfClosing = selfClosing;
    ++m_depth;
    if (declarations)
        noteDeclarations();
    m_handler.startElement(tag);
    if (selfClosing) {
        m_handler.endElement(tag.name, qualifiedName, std::string_view());
        leaveElement();
    }
    return size_t(p - start);
}

void XmlScanner::noteDeclarations()
{
    for (const ScannedAttribute& attribute : m_attributes) {
        const std::string_view name = attribute.name;
        if (name.size() < 5 || name.compare(0, 5, "xmlns") != 0 || (name.size() > 5 && name[5] != ':'))
            continue;
        m_declarations.push_back({std::string(name.size() > 5 ? name.substr(6) : std::string_view()),
                                  std::string(attribute.value), m_depth});
        m_innermostDeclaration = m_depth;
    }
}

void XmlScanner::dropDeclarations()
{
    while (!m_declarations.empty() && m_declarations.back().depth == m_depth)
        m_declarations.pop_back();
    m_innermostDeclaration = m_declarations.empty() ? 0 : m_declarations.back().depth;
}

size_t XmlScanner::scanEndTag(const char* p, const char* end)
{
    // Nearly always "</name>": the name runs up to the ">".
    const char* localStart;
    const char* nameStop = nameEnd(p + 2, end, &localStart);
    const char* closeAt = nameStop;
    if (nameStop == end || *nameStop != '>' || nameStop == p + 2 || m_depth == 0) {
        closeAt = p + 2;
        while (closeAt < end && *closeAt != '>')
            ++closeAt;
        if (closeAt == end)
            return 0;
        nameStop = nameEnd(p + 2, closeAt, &localStart);
        if (nameStop == p + 2 || skipSpace(nameStop, closeAt) != closeAt || m_depth == 0) {
            fail("malformed end tag");
            return 0;
        }
    }
    const std::string_view qualifiedName(p + 2, size_t(nameStop - p - 2));
    const std::string_view raw(p, size_t(closeAt + 1 - p));
    m_handler.endElement(std::string_view(localStart, size_t(nameStop - localStart)), qualifiedName, raw);
    leaveElement();
    return raw.size();
}

// Appends raw with references resolved and line ends normalised; in attribute values,
// white space characters written as such become spaces.
bool XmlScanner::decodeText(std::string_view raw, bool attribute, std::string& out)
{
    for (size_t i = 0; i < raw.size(); ++i) {
        const char c = raw[i];
        if (c == '&') {
            const size_t semicolon = raw.find(';', i + 1);
            const quint32 character = semicolon == std::string_view::npos
                ? 0 : referencedCharacter(raw.substr(i + 1, semicolon - i - 1));
            if (character == 0) {
                fail("malformed or unknown reference");
                return false;
            }
            appendUtf8(out, character);
            i = semicolon;
        } else if (c == '\r') {
            if (i + 1 < raw.size() && raw[i + 1] == '\n')
                ++i;
            out += attribute ? ' ' : '\n';
        } else if (attribute && (c == '\n' || c == '\t')) {
            out += ' ';
        } else {
            out += c;
        }
    }
    return true;
}

void ElementCapture::begin(const ScannedTag& tag, const XmlScanner& scanner)
{
    m_xml.clear();
    m_prefixes.clear();
    m_scanner = &scanner;
    m_captureDepth = scanner.depth();
    m_depth = 0;
    m_rootEnd = 1 + int(tag.qualifiedName.size());
    start(tag);
}

void ElementCapture::notePrefix(std::string_view qualifiedName)
{
    const size_t colon = qualifiedName.find(':');
    if (colon == std::string_view::npos)
        return;
    const std::string_view prefix = qualifiedName.substr(0, colon);
    if (prefix == "xml" || prefix == "xmlns")
        return;
    for (const auto& known : m_prefixes)
        if (known == prefix)
            return;
    m_prefixes.emplace_back(prefix);
}

void ElementCapture::openTag(const ScannedTag& tag)
{
    m_xml.append('<').append(tag.qualifiedName.data(), int(tag.qualifiedName.size()));
    notePrefix(tag.qualifiedName);
    for (int i = 0; i < tag.attributeCount; ++i) {
        const ScannedAttribute& attribute = tag.attributes[i];
        m_xml.append(' ').append(attribute.name.data(), int(attribute.name.size())).append("=\"");
        appendEscaped(m_xml, attribute.value, true);
        m_xml.append('"');
        notePrefix(attribute.name);
    }
}

void ElementCapture::start(const ScannedTag& tag)
{
    if (m_tagOpen)
        m_xml.append('>');
    openTag(tag);
    m_tagOpen = true;
    ++m_depth;
}

bool ElementCapture::end(std::string_view qualifiedName)
{
    if (m_tagOpen) {
        m_xml.append("/>");
        m_tagOpen = false;
    } else {
        m_xml.append("</").append(qualifiedName.data(), int(qualifiedName.size())).append('>');
    }
    return --m_depth == 0;
}

void ElementCapture::text(std::string_view text)
{
    if (m_tagOpen) {
        m_xml.append('>');
        m_tagOpen = false;
    }
    appendEscaped(m_xml, text, false);
}

QByteArray ElementCapture::take()
{
    QByteArray declarations;
    const auto& inScope = m_scanner->declarations();
    for (const auto& prefix : m_prefixes) {
        for (auto d = inScope.rbegin(); d != inScope.rend(); ++d) {
            if (d->prefix != prefix)
                continue;
            if (d->depth >= m_captureDepth)
                break;   // declared on the element itself or inside it
            declarations.append(" xmlns:").append(prefix.data(), int(prefix.size())).append("=\"");
            appendEscaped(declarations, d->uri, true);
            declarations.append('"');
            break;
        }
    }
    if (!declarations.isEmpty())
        m_xml.insert(m_rootEnd, declarations);
    m_depth = 0;
    QByteArray xml;
    xml.swap(m_xml);
    return xml;
}

} // namespace QXlsx::detail
