#include "read/sharedstrings.h"

#include "model/stringpool.h"
#include "read/xmlreader.h"

namespace QXlsx::detail {

SharedStringsReader::SharedStringsReader(StringPool& pool)
    : first(pool.count()), m_pool(pool), m_scanner(*this)
{
    m_scanner.setShortcuts(true);
}

// Nearly every entry is `<si><t>text</t></si>`, the <t> perhaps marked to preserve
// white space: such an entry, its text with nothing to resolve, goes to the pool in one
// pass instead of five tokens. Anything else, and an entry cut by the end of the bytes
// at hand, goes the usual way.
size_t SharedStringsReader::shortcut(const char* p, const char* end)
{
    if (m_itemDepth > 0 || m_capture.active() || m_scanner.depth() < 1)
        return 0;   // only between entries, inside the table's root
    std::string_view text;
    const char* item = afterTextStart(afterLiteral(p, end, "<si>"), end);
    const char* after = afterPlainText(item, end, "</t></si>", &text);
    if (!after)
        return 0;
    if (mayHoldEscapes(text)) {
        m_plain.assign(text);
        decodeEscapes(m_plain);
        m_pool.append(m_plain.data(), int(m_plain.size()));
    } else {
        m_pool.append(text.data(), int(text.size()));
    }
    m_rich = false;
    ++count;
    return size_t(after - p);
}

void SharedStringsReader::startElement(const ScannedTag& tag)
{
    if (m_capture.active()) {
        m_capture.start(tag);
        if (m_captureHeard && tag.name == "t") {
            m_collecting = true;
        }
        return;
    }
    if (m_itemDepth > 0) {
        startInItem(tag);
    } else if (tag.name == "si") {
        m_itemDepth = m_scanner.depth();
        m_plain.clear();
        m_runsXml.clear();
        m_rich = false;
    }
}

void SharedStringsReader::startInItem(const ScannedTag& tag)
{
    const std::string_view name = tag.name;
    const bool run = name == "r";
    const bool phonetic = name == "rPh" || name == "phoneticPr";
    // Once an entry is rich, a later <t> of its own is kept in its XML as well.
    const bool lateText = name == "t" && m_rich && m_scanner.depth() == m_itemDepth + 1;
    if (name == "t" && !lateText) {
        m_collecting = true;
    }
    if (!run && !phonetic && !lateText)
        return;
    if (!m_rich && !m_plain.empty())
        keepPlainTextAsXml();
    m_rich = true;
    // Runs are shown, so their texts are heard; phonetic guides are only kept.
    m_captureHeard = !phonetic;
    m_capture.begin(tag, m_scanner);
    if (lateText) {
        m_collecting = true;
    }
}

void SharedStringsReader::endElement(std::string_view name, std::string_view qualifiedName, std::string_view)
{
    if (m_capture.active()) {
        if (m_capture.end(qualifiedName))
            m_runsXml.append(m_capture.take());
        if (!m_captureHeard)
            return;
    }
    if (m_itemDepth == 0)
        return;
    if (name == "t" && m_collecting) {
        m_collecting = false;
    } else if (name == "si" && m_scanner.depth() == m_itemDepth) {
        m_itemDepth = 0;
        m_collecting = false;
        decodeEscapes(m_plain);
        if (m_rich)
            m_pool.addRich(QString::fromStdString(m_plain), m_runsXml);
        else
            m_pool.append(m_plain.data(), int(m_plain.size()));
        ++count;
    }
}

void SharedStringsReader::text(std::string_view text, std::string_view)
{
    if (m_capture.active()) {
        m_capture.text(text);
        if (!m_captureHeard)
            return;
    }
    if (m_collecting)
        m_plain.append(text);
}

// An entry turned out rich after a plain <t>: its XML starts with that text, as read.
void SharedStringsReader::keepPlainTextAsXml()
{
    m_runsXml.append("<t xml:space=\"preserve\">");
    appendEscaped(m_runsXml, m_plain, false);
    m_runsXml.append("</t>");
}

} // namespace QXlsx::detail
