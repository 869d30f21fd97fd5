#pragma once

#include "read/sheetdatareader.h"
#include "read/xmlreader.h"
#include "read/xmlscanner.h"

#include <string>
#include <vector>

namespace QXlsx::detail {

class SheetData;
class WorkbookData;

// Reads a worksheet's elements around its cells: columns and merges; every other
// top-level element is kept whole in file order. <sheetData> reaches it empty, its
// content goes to a SheetDataReader.
class WorksheetHandler : public XmlHandler
{
public:
    WorksheetHandler(SheetData& sheet, const CellIndexes& indexes);

    void startElement(XmlReader& reader, std::string_view name, const XmlAttributes& attributes) override;
    void endElement(XmlReader& reader, std::string_view name) override;
    void captured(XmlReader& reader, RawElement&& element) override;

private:
    void startColumn(const XmlAttributes& attributes);
    void reserveRows(const char* ref);
    quint32 styleIndex(const char* value) const;

    SheetData& m_sheet;
    CellIndexes m_indexes;
};

// Reads a worksheet part as it inflates. The scanner sees every byte: the cells go to
// the fast sheet data reader, and the rest of the part (a small share, but with the
// namespaces, captures and odd elements expat serves well) to expat, with an empty
// <sheetData> where the cells were.
class WorksheetReader : public ScanHandler
{
public:
    WorksheetReader(WorkbookData& book, SheetData& sheet, const CellIndexes& indexes);

    bool feed(const char* data, size_t size);
    bool finish();
    QString errorString() const;

    void startElement(const ScannedTag& tag) override;
    void endElement(std::string_view name, std::string_view qualifiedName, std::string_view raw) override;
    void text(std::string_view text, std::string_view raw) override;
    void other(std::string_view raw) override;
    size_t shortcut(const char* p, const char* end) override { return m_cells.takeCell(p, end); }

private:
    void forward(std::string_view raw);
    void flush();

    XmlScanner m_scanner;
    WorksheetHandler m_handler;
    XmlReader m_xml;
    SheetDataReader m_cells;
    bool m_inSheetData = false;
    bool m_xmlFailed = false;
    std::string m_pending;   // markup on its way to expat, sent in batches
};

} // namespace QXlsx::detail
