#pragma once

#include "read/xmlreader.h"

#include <QByteArray>

#include <string>
#include <vector>

namespace QXlsx::detail {

class StringPool;

// Reads the shared string table into the pool. indexes maps the file's string indexes
// to pool entries (equal plain texts share one entry in the pool).
//
// <si> holds a plain <t>, or runs <r> of formatted <t> texts; phonetic guides (<rPh>,
// <phoneticPr>) follow. Cells show the texts of <t> and the runs joined; an entry with
// anything beyond a plain <t> keeps its children's XML so that a save gives it back.
class SharedStringsHandler : public XmlHandler
{
public:
    explicit SharedStringsHandler(StringPool& pool) : m_pool(pool) {}

    std::vector<quint32> indexes;

    void startElement(XmlReader& reader, std::string_view name, const XmlAttributes& attributes) override;
    void endElement(XmlReader& reader, std::string_view name) override;
    void captured(XmlReader& reader, RawElement&& element) override;

private:
    void keepPlainTextAsXml();

    StringPool& m_pool;
    std::string m_plain;
    QByteArray m_runsXml;
    bool m_inItem = false;
    bool m_rich = false;
};

} // namespace QXlsx::detail
