#include "workbookpart.h"

#include "model/workbookdata.h"
#include "packageplan.h"
#include "rawxml.h"
#include "xmlsink.h"

namespace QXlsx::detail {

namespace {

constexpr std::initializer_list<const char*> WorkbookOrder = {
    "fileVersion", "fileSharing", "workbookPr", "workbookProtection", "bookViews", "sheets",
    "functionGroups", "externalReferences", "definedNames", "calcPr", "oleSize",
    "customWorkbookViews", "pivotCaches", "smartTagPr", "smartTagTypes", "webPublishing",
    "fileRecoveryPr", "webPublishObjects", "extLst"};

enum Rank { RankWorkbookPr = 2, RankBookViews = 4, RankSheets = 5 };

bool hasKept(const WorkbookData& book, const char* localName)
{
    for (const RawElement& e : book.workbookExtraElements)
        if (e.localName == localName)
            return true;
    return false;
}

void writeSheets(XmlSink& out, const PackagePlan& plan)
{
    out.literal("<sheets>");
    for (const SheetPlan& s : plan.sheets) {
        out.literal("<sheet name=\"");
        out.appendAttribute(s.sheet->name);
        out.literal("\" sheetId=\"");
        out.appendUInt(s.sheetId);
        if (s.sheet->state == AbstractSheet::SS_Hidden)
            out.literal("\" state=\"hidden");
        else if (s.sheet->state == AbstractSheet::SS_VeryHidden)
            out.literal("\" state=\"veryHidden");
        out.literal("\" r:id=\"");
        out.appendAttribute(s.relationshipId);
        out.literal("\"/>");
    }
    out.literal("</sheets>");
}

} // namespace

void writeWorkbookPart(XmlSink& out, const WorkbookData& book, const PackagePlan& plan)
{
    const RootTag root = rootTag(book.workbookRootStartTag, "workbook", "<workbook>", true);
    const QByteArray activeTab = QByteArray::number(qMax(0, book.activeSheet));
    const bool keptWorkbookPr = hasKept(book, "workbookPr");
    const bool keptBookViews = hasKept(book, "bookViews");

    out.literal("<?xml version=\"1.0\" encoding=\"UTF-8\" standalone=\"yes\"?>\n");
    out.append(root.start);
    writeInSchemaOrder(
        WorkbookOrder, book.workbookExtraElements,
        [&](int rank) {
            if (rank == RankWorkbookPr && !keptWorkbookPr)
                out.append(book.date1904 ? QByteArray("<workbookPr date1904=\"1\"/>")
                                         : QByteArray("<workbookPr/>"));
            else if (rank == RankBookViews && !keptBookViews)
                out.append("<bookViews><workbookView activeTab=\"" + activeTab + "\"/></bookViews>");
            else if (rank == RankSheets)
                writeSheets(out, plan);
        },
        [&](const RawElement& e) {
            if (e.localName == "sheets")
                return;
            if (e.localName == "workbookPr") {
                out.append(withAttribute(e.xml, "workbookPr", "date1904",
                                         book.date1904 ? QByteArray("1") : QByteArray()));
            } else if (e.localName == "bookViews") {
                // The first tab shown must not lie after the active one.
                QByteArray views = withAttribute(e.xml, "workbookView", "activeTab", activeTab);
                if (attributeValue(views, "workbookView", "firstSheet").toInt() > book.activeSheet)
                    views = withAttribute(views, "workbookView", "firstSheet", QByteArray());
                out.append(views);
            } else {
                out.append(e.xml);
            }
        });
    out.append(root.end);
}

} // namespace QXlsx::detail
