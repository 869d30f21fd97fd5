#pragma once

#include "read/xmlscanner.h"

#include <QByteArray>

#include <string>
#include <vector>

namespace QXlsx::detail {

class StringPool;

// Reads the shared string table into the pool as the part inflates. Every entry becomes
// the next pool entry, so the file's index i is pool entry first + i: no table maps
// one to the other.
//
// <si> holds a plain <t>, or runs <r> of formatted <t> texts; phonetic guides (<rPh>,
// <phoneticPr>) follow. Cells show the texts of <t> and the runs joined; an entry with
// anything beyond a plain <t> keeps its children's XML so that a save gives it back.
class SharedStringsReader : public ScanHandler
{
public:
    explicit SharedStringsReader(StringPool& pool);

    quint32 first = 0;   // the pool entry of the file's first string
    quint32 count = 0;   // strings read

    bool feed(const char* data, size_t size) { return m_scanner.feed(data, size); }
    bool finish() { return m_scanner.finish(); }
    QString errorString() const { return m_scanner.errorString(); }

    void startElement(const ScannedTag& tag) override;
    void endElement(std::string_view name, std::string_view qualifiedName, std::string_view raw) override;
    void text(std::string_view text, std::string_view raw) override;
    size_t shortcut(const char* p, const char* end) override;

private:
    void startInItem(const ScannedTag& tag);
    void keepPlainTextAsXml();

    StringPool& m_pool;
    XmlScanner m_scanner;
    std::string m_plain;          // the entry's text as cells show it, <t> by <t>
    QByteArray m_runsXml;
    ElementCapture m_capture;     // a run, a phonetic guide, or a <t> after runs
    bool m_captureHeard = false;  // whether the captured element's texts are shown
    int m_itemDepth = 0;          // of the <si> being read, 0 outside one
    bool m_rich = false;
    bool m_collecting = false;    // inside a <t> that cells show
};

} // namespace QXlsx::detail
