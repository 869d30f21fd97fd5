#include "read/workbookpart.h"

#include "read/xmlreader.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>

namespace QXlsx::detail {

bool isTrue(const char* value)
{
    return value && (std::strcmp(value, "1") == 0 || std::strcmp(value, "true") == 0);
}

namespace {

AbstractSheet::SheetState sheetState(const char* state)
{
    if (!state)
        return AbstractSheet::SS_Visible;
    if (std::strcmp(state, "hidden") == 0)
        return AbstractSheet::SS_Hidden;
    if (std::strcmp(state, "veryHidden") == 0)
        return AbstractSheet::SS_VeryHidden;
    return AbstractSheet::SS_Visible;
}

class WorkbookHandler : public XmlHandler
{
public:
    explicit WorkbookHandler(WorkbookPart& part) : m_part(part) {}

    void startElement(XmlReader& reader, std::string_view name, const XmlAttributes& attributes) override
    {
        const int depth = reader.depth();
        if (depth == 1) {
            m_part.rootStartTag = startTagText(reader.qualifiedName(), attributes);
            return;
        }
        if (depth == 2) {
            if (name == "sheets")
                return;
            if (name == "workbookPr")
                m_part.date1904 = isTrue(attributes.value("date1904"));
            reader.captureElement(name == "bookViews");
            return;
        }
        if (name == "sheet" && depth == 3) {
            SheetEntry entry;
            entry.name = QString::fromUtf8(attributes.value("name"));
            if (const char* id = attributes.value("sheetId"))
                entry.sheetId = quint32(std::strtoul(id, nullptr, 10));
            entry.relationshipId = QString::fromUtf8(attributes.value("id"));
            entry.state = sheetState(attributes.value("state"));
            m_part.sheets.push_back(entry);
        } else if (name == "workbookView" && !m_sawView) {
            // The first view is the one a workbook opens in.
            m_sawView = true;
            if (const char* tab = attributes.value("activeTab"))
                m_part.activeTab = std::max(0, std::atoi(tab));
        }
    }

    void endElement(XmlReader&, std::string_view) override {}

    void captured(XmlReader&, RawElement&& element) override
    {
        m_part.extraElements.push_back(std::move(element));
    }

private:
    WorkbookPart& m_part;
    bool m_sawView = false;
};

} // namespace

WorkbookPart readWorkbookPart(const QByteArray& xml)
{
    WorkbookPart part;
    WorkbookHandler handler(part);
    XmlReader reader(handler);
    reader.parse(xml);
    return part;
}

} // namespace QXlsx::detail
