#pragma once

#include <QByteArray>
#include <QString>

#include <cstring>
#include <string>
#include <string_view>
#include <vector>

namespace QXlsx::detail {

// An attribute of a start tag: its name as written and its value with references
// resolved and white space normalised as XML wants.
struct ScannedAttribute
{
    std::string_view name;
    std::string_view value;
};

// A start tag as the scanner hands it over. Everything in it points into the scanner's
// buffers and lasts until the handler returns.
struct ScannedTag
{
    std::string_view qualifiedName;   // "x:c"
    std::string_view name;            // "c"
    std::string_view raw;             // the tag as written, "<" to ">"
    const ScannedAttribute* attributes = nullptr;
    int attributeCount = 0;
    bool selfClosing = false;

    // The value of the attribute with this local name (so "r:id" answers to "id"), or
    // null: an absent attribute and an empty one differ.
    const std::string_view* value(std::string_view localName) const;
};

// For shortcuts (see ScanHandler): where text, written exactly so, ends if it starts at
// p. Null where other bytes come, not all of them are there yet, or p is null.
inline const char* afterLiteral(const char* p, const char* end, std::string_view text)
{
    if (!p || size_t(end - p) < text.size() || std::memcmp(p, text.data(), text.size()) != 0)
        return nullptr;
    return p + text.size();
}

// For shortcuts: character data at p with nothing to resolve (no reference, no "\r")
// into text, then closing written exactly so; where closing ends, or null.
inline const char* afterPlainText(const char* p, const char* end, std::string_view closing,
                                  std::string_view* text)
{
    if (!p)
        return nullptr;
    const char* textEnd = p;
    for (; textEnd < end && *textEnd != '<'; ++textEnd) {
        if (*textEnd == '&' || *textEnd == '\r')
            return nullptr;
    }
    *text = std::string_view(p, size_t(textEnd - p));
    return afterLiteral(textEnd, end, closing);
}

// For shortcuts: the start tag of a text, <t> or <t xml:space="preserve">, at p; where
// it ends, or null.
inline const char* afterTextStart(const char* p, const char* end)
{
    p = afterLiteral(p, end, "<t");
    if (const char* preserved = afterLiteral(p, end, " xml:space=\"preserve\""))
        p = preserved;
    return afterLiteral(p, end, ">");
}

// What a reader implements to hear about the markup of a part.
class ScanHandler
{
public:
    virtual ~ScanHandler() = default;
    virtual void startElement(const ScannedTag& tag) = 0;
    // qualifiedName is the end tag's name as written; a self-closing tag ends at once.
    virtual void endElement(std::string_view name, std::string_view qualifiedName, std::string_view raw) = 0;
    // Character data in pieces (references resolved, CDATA unwrapped); raw is as written.
    virtual void text(std::string_view text, std::string_view raw) = 0;
    // Comments, processing instructions and the XML declaration, as written.
    virtual void other(std::string_view raw) { (void)raw; }
    // While shortcuts are on, asked at every "<": the handler may take a whole element
    // it recognises at p (a cell written the usual way, say) and give the bytes it took,
    // or 0 to let the scanner go on token by token. What it takes must be an element
    // the scanner would accept, start to end, declaring no namespace: it is heard in no
    // other way.
    virtual size_t shortcut(const char* p, const char* end) { (void)p; (void)end; return 0; }
};

// A small XML scanner for the two parts that hold nearly all of a big workbook's bytes:
// expat costs several times the inflating of a sheet, most of it for generality the
// cells do not need. Bytes come in chunks as a part inflates; a token cut by the end of
// a chunk is carried into the next, so nothing is allocated per element once the
// buffers have grown. The scanner checks what it needs to read correctly (names,
// quotes, references) but not that end tags match their start tags.
//
// Malformed input stops the scan: the handler has then heard everything before the
// fault. Document type declarations are refused, so no entity is ever declared.
class XmlScanner
{
public:
    explicit XmlScanner(ScanHandler& handler);

    // False once the text is malformed or the scan was stopped.
    bool feed(const char* data, size_t size);
    // The end of the part: false if it stops inside a token or before the root ends.
    bool finish();
    void stop() { m_stopped = true; }
    void setShortcuts(bool on) { m_shortcuts = on; }
    bool stopped() const { return m_stopped; }
    QString errorString() const { return m_error; }

    // During startElement and endElement: the element's depth (the root is 1).
    int depth() const { return m_depth; }

    // Namespace declarations in scope, innermost last.
    struct Declaration { std::string prefix; std::string uri; int depth; };
    const std::vector<Declaration>& declarations() const { return m_declarations; }

private:
    size_t scan(const char* data, size_t size);
    size_t scanMarkup(const char* p, const char* end);
    size_t scanStartTag(const char* p, const char* end);
    size_t scanEndTag(const char* p, const char* end);
    size_t scanText(const char* p, const char* end);
    bool decodeText(std::string_view raw, bool attribute, std::string& out);
    void noteDeclarations();
    // The element's declarations end with it.
    void leaveElement()
    {
        if (m_innermostDeclaration == m_depth)
            dropDeclarations();
        if (--m_depth == 0)
            m_rootEnded = true;
    }
    void dropDeclarations();
    void fail(const char* reason);

    ScanHandler& m_handler;
    std::string m_tail;                       // an unfinished token carried to the next chunk
    size_t m_tailScanned = 0;                 // its size when last found unfinished
    std::string m_text;                       // decoded character data, reused
    std::string m_values;                     // decoded attribute values, reused
    std::vector<ScannedAttribute> m_attributes;
    std::vector<Declaration> m_declarations;
    int m_depth = 0;
    int m_innermostDeclaration = 0;           // the depth of the last declaration, 0 for none
    bool m_rootEnded = false;
    bool m_stopped = false;
    bool m_shortcuts = false;
    QString m_error;
    quint64 m_offset = 0;                     // of the current buffer in the part
};

// Serialises an element from scanner events so that a reader can keep it: the same
// text expat-based capture gives, namespace declarations of outer prefixes included,
// so the element stays well-formed wherever it is written again.
class ElementCapture
{
public:
    bool active() const { return m_depth > 0; }
    void begin(const ScannedTag& tag, const XmlScanner& scanner);
    void start(const ScannedTag& tag);
    // True when this ends the captured element; take() then gives it, and must be
    // called before the scanner moves on, while the outer declarations are in scope.
    bool end(std::string_view qualifiedName);
    void text(std::string_view text);
    QByteArray take();

private:
    void openTag(const ScannedTag& tag);
    void notePrefix(std::string_view qualifiedName);

    QByteArray m_xml;
    int m_depth = 0;
    bool m_tagOpen = false;
    int m_rootEnd = 0;
    std::vector<std::string> m_prefixes;
    const XmlScanner* m_scanner = nullptr;
    int m_captureDepth = 0;
};

} // namespace QXlsx::detail
