#pragma once

#include "model/rawelement.h"

#include <QByteArray>
#include <QString>

#include <string>
#include <string_view>
#include <vector>

typedef struct XML_ParserStruct* XML_Parser;

namespace QXlsx::detail {

// The attributes of a start tag as the parser hands them over: name, value, name,
// value, ..., null. Names are matched by their local part, so "r:id" answers to "id".
class XmlAttributes
{
public:
    explicit XmlAttributes(const char** list) : m_list(list) {}
    // The value of the attribute with this local name, or null.
    const char* value(std::string_view localName) const;
    const char** list() const { return m_list; }

private:
    const char** m_list;
};

// The local part of a qualified name: "x:c" -> "c".
std::string_view localName(const char* qualifiedName);

class XmlReader;

// What a part module implements to hear about the elements of its part.
class XmlHandler
{
public:
    virtual ~XmlHandler() = default;
    virtual void startElement(XmlReader& reader, std::string_view name, const XmlAttributes& attributes) = 0;
    virtual void endElement(XmlReader& reader, std::string_view name) = 0;
    // An element whose capture was asked for in its startElement, serialised whole.
    virtual void captured(XmlReader& reader, RawElement&& element) { (void)reader; (void)element; }
};

// A SAX reader over expat, fed in chunks as a part inflates. Document type declarations
// stop the parse, so no entity is ever declared, let alone expanded: a part playing
// such tricks gives what was read before them.
class XmlReader
{
public:
    explicit XmlReader(XmlHandler& handler);
    ~XmlReader();
    XmlReader(const XmlReader&) = delete;
    XmlReader& operator=(const XmlReader&) = delete;

    // False once the text is not well-formed or the handler stopped the parse.
    bool feed(const char* data, int size, bool last);
    bool parse(const QByteArray& document) { return feed(document.constData(), document.size(), true); }
    QString errorString() const;

    // Character data is gathered between beginText() and endText(), into one buffer
    // that is reused, so gathering the value of a cell allocates nothing.
    void beginText() { m_text.clear(); m_collecting = true; }
    void endText() { m_collecting = false; }
    std::string_view text() const { return m_text; }

    // From startElement: serialise the element just started, children included, and
    // hand it to captured() at its end. With passEvents the handler still hears the
    // element's children and its end, otherwise captured() stands for all of them.
    void captureElement(bool passEvents = false);
    void stop();

    // During startElement and endElement: the element's depth (the root is 1) and its
    // name as written, prefix included.
    int depth() const { return m_depth; }
    const char* qualifiedName() const { return m_currentName; }

private:
    static void onStart(void* self, const char* name, const char** attributes);
    static void onEnd(void* self, const char* name);
    static void onText(void* self, const char* text, int length);
    static void onDoctype(void* self, const char* name, const char* sysid, const char* pubid, int hasInternalSubset);
    void startTag(const char* name, const char** attributes);
    void notePrefix(const char* qualifiedName);
    void declareOuterPrefixes();

    XmlHandler& m_handler;
    XML_Parser m_parser;
    std::string m_text;
    bool m_collecting = false;
    bool m_stopped = false;
    bool m_refused = false;

    // Namespace declarations in scope, so that a captured element can carry those its
    // prefixes need and stay well-formed wherever it is written again.
    struct Declaration { std::string prefix; std::string uri; int depth; };
    std::vector<Declaration> m_declarations;
    int m_depth = 0;
    const char* m_currentName = "";

    // Capture state: the element being serialised and its depth.
    bool m_captureRequested = false;
    bool m_capturePassEvents = false;
    int m_captureDepth = 0;      // 0 = no capture running
    QByteArray m_captureName;
    QByteArray m_capture;
    int m_captureRootEnd = 0;                   // where declarations go in the root tag
    std::vector<std::string> m_capturePrefixes;  // prefixes the capture uses
};

// A start tag rebuilt from the parser's attributes, for elements kept as their tag.
QByteArray startTagText(const char* qualifiedName, const XmlAttributes& attributes);

// Appends text escaped for XML character data or attribute values.
void appendEscaped(QByteArray& out, std::string_view text, bool attribute);

// Decodes the _xHHHH_ escapes that carry characters XML cannot (control characters,
// and by convention anything else) in place. A lone surrogate is encoded on its own in
// three bytes, as the string pool keeps one, rather than lost to U+FFFD.
void decodeEscapes(std::string& text);
// False where decodeEscapes would change nothing.
bool mayHoldEscapes(std::string_view text);

} // namespace QXlsx::detail
