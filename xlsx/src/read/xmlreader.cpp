#include "read/xmlreader.h"

#include <expat.h>

#include <cstring>

namespace QXlsx::detail {

std::string_view localName(const char* qualifiedName)
{
    const char* colon = std::strchr(qualifiedName, ':');
    return colon ? std::string_view(colon + 1) : std::string_view(qualifiedName);
}

const char* XmlAttributes::value(std::string_view name) const
{
    for (const char** a = m_list; *a; a += 2) {
        if (localName(a[0]) == name)
            return a[1];
    }
    return nullptr;
}

void appendEscaped(QByteArray& out, std::string_view text, bool attribute)
{
    for (char c : text) {
        switch (c) {
        case '&': out.append("&amp;"); break;
        case '<': out.append("&lt;"); break;
        case '>': out.append("&gt;"); break;
        case '"': attribute ? out.append("&quot;") : out.append(c); break;
        case '\t': attribute ? out.append("&#9;") : out.append(c); break;
        case '\n': attribute ? out.append("&#10;") : out.append(c); break;
        case '\r': out.append("&#13;"); break;
        default: out.append(c);
        }
    }
}

QByteArray startTagText(const char* qualifiedName, const XmlAttributes& attributes)
{
    QByteArray tag;
    tag.append('<').append(qualifiedName);
    for (const char** a = attributes.list(); *a; a += 2) {
        tag.append(' ').append(a[0]).append("=\"");
        appendEscaped(tag, a[1], true);
        tag.append('"');
    }
    tag.append('>');
    return tag;
}

namespace {

int hexValue(char c)
{
    if (c >= '0' && c <= '9') return c - '0';
    if (c >= 'a' && c <= 'f') return c - 'a' + 10;
    if (c >= 'A' && c <= 'F') return c - 'A' + 10;
    return -1;
}

// The code unit of an escape "_xHHHH_" at text[i], or -1.
int escapeAt(const std::string& text, size_t i)
{
    if (i + 7 > text.size() || text[i] != '_' || text[i + 1] != 'x' || text[i + 6] != '_')
        return -1;
    int unit = 0;
    for (size_t k = i + 2; k < i + 6; ++k) {
        const int h = hexValue(text[k]);
        if (h < 0)
            return -1;
        unit = unit * 16 + h;
    }
    return unit;
}

void appendUtf8(std::string& out, char32_t cp)
{
    if (cp < 0x80) {
        out += char(cp);
    } else if (cp < 0x800) {
        out += char(0xC0 | (cp >> 6));
        out += char(0x80 | (cp & 0x3F));
    } else if (cp < 0x10000) {
        out += char(0xE0 | (cp >> 12));
        out += char(0x80 | ((cp >> 6) & 0x3F));
        out += char(0x80 | (cp & 0x3F));
    } else {
        out += char(0xF0 | (cp >> 18));
        out += char(0x80 | ((cp >> 12) & 0x3F));
        out += char(0x80 | ((cp >> 6) & 0x3F));
        out += char(0x80 | (cp & 0x3F));
    }
}

bool isHighSurrogate(int u) { return u >= 0xD800 && u <= 0xDBFF; }
bool isLowSurrogate(int u) { return u >= 0xDC00 && u <= 0xDFFF; }

} // namespace

// Runs for every text read, nearly all short and without escapes: a plain loop over
// the bytes costs less than a library search's call.
bool mayHoldEscapes(std::string_view text)
{
    for (size_t i = 0; i + 6 < text.size(); ++i)
        if (text[i] == '_' && text[i + 1] == 'x')
            return true;
    return false;
}

void decodeEscapes(std::string& text)
{
    if (!mayHoldEscapes(text))
        return;
    std::string out;
    out.reserve(text.size());
    for (size_t i = 0; i < text.size();) {
        const int unit = escapeAt(text, i);
        if (unit < 0) {
            out += text[i++];
            continue;
        }
        i += 7;
        if (isHighSurrogate(unit)) {
            const int low = escapeAt(text, i);
            if (isLowSurrogate(low)) {
                i += 7;
                appendUtf8(out, 0x10000 + ((char32_t(unit) - 0xD800) << 10) + (char32_t(low) - 0xDC00));
                continue;
            }
        }
        // A lone surrogate is encoded on its own, as the string pool keeps one.
        appendUtf8(out, char32_t(unit));
    }
    text.swap(out);
}

XmlReader::XmlReader(XmlHandler& handler)
    : m_handler(handler), m_parser(XML_ParserCreate(nullptr))
{
    XML_SetUserData(m_parser, this);
    XML_SetElementHandler(m_parser, &XmlReader::onStart, &XmlReader::onEnd);
    XML_SetCharacterDataHandler(m_parser, &XmlReader::onText);
    XML_SetStartDoctypeDeclHandler(m_parser, &XmlReader::onDoctype);
    XML_SetParamEntityParsing(m_parser, XML_PARAM_ENTITY_PARSING_NEVER);
}

XmlReader::~XmlReader()
{
    XML_ParserFree(m_parser);
}

bool XmlReader::feed(const char* data, int size, bool last)
{
    if (m_stopped)
        return false;
    if (XML_Parse(m_parser, data, size, last ? XML_TRUE : XML_FALSE) != XML_STATUS_OK) {
        m_stopped = true;
        return false;
    }
    return true;
}

QString XmlReader::errorString() const
{
    if (m_refused)
        return QStringLiteral("document type declarations are not accepted");
    const XML_Error code = XML_GetErrorCode(m_parser);
    if (code == XML_ERROR_NONE || code == XML_ERROR_ABORTED)
        return QString();
    return QStringLiteral("%1 at line %2")
        .arg(QString::fromUtf8(XML_ErrorString(code)))
        .arg(XML_GetCurrentLineNumber(m_parser));
}

void XmlReader::stop()
{
    m_stopped = true;
    XML_StopParser(m_parser, XML_FALSE);
}

void XmlReader::captureElement(bool passEvents)
{
    if (m_captureDepth == 0) {
        m_captureRequested = true;
        m_capturePassEvents = passEvents;
    }
}

void XmlReader::onDoctype(void* self, const char*, const char*, const char*, int)
{
    auto* reader = static_cast<XmlReader*>(self);
    reader->m_refused = true;
    reader->stop();
}

void XmlReader::onStart(void* self, const char* name, const char** attributes)
{
    auto* reader = static_cast<XmlReader*>(self);
    ++reader->m_depth;
    reader->m_currentName = name;
    for (const char** a = attributes; *a; a += 2) {
        if (std::strncmp(a[0], "xmlns", 5) == 0 && (a[0][5] == ':' || a[0][5] == '\0'))
            reader->m_declarations.push_back({a[0][5] ? a[0] + 6 : "", a[1], reader->m_depth});
    }
    if (reader->m_captureDepth > 0) {
        reader->startTag(name, attributes);
        if (reader->m_capturePassEvents)
            reader->m_handler.startElement(*reader, localName(name), XmlAttributes(attributes));
        return;
    }
    reader->m_handler.startElement(*reader, localName(name), XmlAttributes(attributes));
    if (reader->m_captureRequested) {
        reader->m_captureRequested = false;
        reader->m_captureDepth = reader->m_depth;
        reader->m_capture.clear();
        reader->m_capturePrefixes.clear();
        reader->m_captureName = QByteArray(localName(name).data(), int(localName(name).size()));
        reader->startTag(name, attributes);
        reader->m_captureRootEnd = 1 + int(std::strlen(name));
    }
}

void XmlReader::notePrefix(const char* qualifiedName)
{
    const char* colon = std::strchr(qualifiedName, ':');
    if (!colon)
        return;
    const std::string_view prefix(qualifiedName, size_t(colon - qualifiedName));
    if (prefix == "xml" || prefix == "xmlns")
        return;
    for (const auto& p : m_capturePrefixes)
        if (p == prefix)
            return;
    m_capturePrefixes.emplace_back(prefix);
}

void XmlReader::startTag(const char* name, const char** attributes)
{
    if (m_capture.endsWith('\x01'))
        m_capture.back() = '>';
    m_capture.append('<').append(name);
    notePrefix(name);
    for (const char** a = attributes; *a; a += 2) {
        m_capture.append(' ').append(a[0]).append("=\"");
        appendEscaped(m_capture, a[1], true);
        m_capture.append('"');
        notePrefix(a[0]);
    }
    // A marker for a start tag not yet closed: "/>" if the element ends at once.
    m_capture.append('\x01');
}

// The captured element may use prefixes declared on its ancestors; it gets their
// declarations so that it stays well-formed wherever it is written again.
void XmlReader::declareOuterPrefixes()
{
    QByteArray extra;
    for (const auto& prefix : m_capturePrefixes) {
        for (auto d = m_declarations.rbegin(); d != m_declarations.rend(); ++d) {
            if (d->prefix != prefix)
                continue;
            if (d->depth < m_captureDepth) {
                extra.append(" xmlns:").append(prefix.data(), int(prefix.size())).append("=\"");
                appendEscaped(extra, d->uri, true);
                extra.append('"');
            }
            break;
        }
    }
    if (!extra.isEmpty())
        m_capture.insert(m_captureRootEnd, extra);
}

void XmlReader::onEnd(void* self, const char* name)
{
    auto* reader = static_cast<XmlReader*>(self);
    reader->m_currentName = name;
    if (reader->m_captureDepth > 0) {
        QByteArray& out = reader->m_capture;
        if (out.endsWith('\x01')) {
            out.back() = '/';
            out.append('>');
        } else {
            out.append("</").append(name).append('>');
        }
        if (reader->m_capturePassEvents)
            reader->m_handler.endElement(*reader, localName(name));
        if (reader->m_depth == reader->m_captureDepth) {
            reader->declareOuterPrefixes();
            reader->m_captureDepth = 0;
            reader->m_handler.captured(*reader, RawElement{reader->m_captureName, out});
        }
    } else {
        reader->m_handler.endElement(*reader, localName(name));
    }
    while (!reader->m_declarations.empty() && reader->m_declarations.back().depth == reader->m_depth)
        reader->m_declarations.pop_back();
    --reader->m_depth;
}

void XmlReader::onText(void* self, const char* text, int length)
{
    auto* reader = static_cast<XmlReader*>(self);
    if (reader->m_captureDepth > 0) {
        if (reader->m_capture.endsWith('\x01'))
            reader->m_capture.back() = '>';
        appendEscaped(reader->m_capture, std::string_view(text, size_t(length)), false);
        if (!reader->m_capturePassEvents)
            return;
    }
    if (reader->m_collecting)
        reader->m_text.append(text, size_t(length));
}

} // namespace QXlsx::detail
