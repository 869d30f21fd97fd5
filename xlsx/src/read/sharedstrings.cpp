#include "read/sharedstrings.h"

#include "model/stringpool.h"

#include <cstdlib>

namespace QXlsx::detail {

void SharedStringsHandler::startElement(XmlReader& reader, std::string_view name, const XmlAttributes& attributes)
{
    if (name == "si") {
        m_inItem = true;
        m_plain.clear();
        m_runsXml.clear();
        m_rich = false;
    } else if (!m_inItem) {
        // The count is only a hint; a bounded reservation saves regrowing a big table.
        if (name == "sst") {
            if (const char* unique = attributes.value("uniqueCount"))
                indexes.reserve(size_t(qBound(0LL, std::atoll(unique), 1LL << 20)));
        }
    } else if (name == "t") {
        reader.beginText();
    } else if (name == "r" || name == "rPh" || name == "phoneticPr") {
        if (!m_rich && !m_plain.empty())
            keepPlainTextAsXml();
        m_rich = true;
        // Runs are shown, so their texts are heard; phonetic guides are only kept.
        reader.captureElement(name == "r");
    }
}

void SharedStringsHandler::endElement(XmlReader& reader, std::string_view name)
{
    if (!m_inItem)
        return;
    if (name == "t") {
        m_plain.append(reader.text());
        reader.endText();
    } else if (name == "si") {
        m_inItem = false;
        decodeEscapes(m_plain);
        if (m_rich)
            indexes.push_back(m_pool.addRich(QString::fromStdString(m_plain), m_runsXml));
        else
            indexes.push_back(m_pool.add(m_plain.data(), int(m_plain.size())));
    }
}

void SharedStringsHandler::captured(XmlReader&, RawElement&& element)
{
    m_runsXml.append(element.xml);
}

// An entry turned out rich after a plain <t>: its XML starts with that text, as read.
void SharedStringsHandler::keepPlainTextAsXml()
{
    m_runsXml.append("<t xml:space=\"preserve\">");
    appendEscaped(m_runsXml, m_plain, false);
    m_runsXml.append("</t>");
}

} // namespace QXlsx::detail
