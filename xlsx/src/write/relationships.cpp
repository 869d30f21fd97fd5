#include "relationships.h"

#include "packageplan.h"
#include "xmlsink.h"

namespace QXlsx::detail {

void writeRelationships(XmlSink& out, const std::vector<Relationship>& relationships)
{
    out.literal("<?xml version=\"1.0\" encoding=\"UTF-8\" standalone=\"yes\"?>\n"
                "<Relationships xmlns=\"http://schemas.openxmlformats.org/package/2006/relationships\">");
    for (const Relationship& r : relationships) {
        out.literal("<Relationship Id=\"");
        out.appendAttribute(r.id);
        out.literal("\" Type=\"");
        out.appendAttribute(r.type);
        out.literal("\" Target=\"");
        out.appendAttribute(r.target);
        if (r.external)
            out.literal("\" TargetMode=\"External");
        out.literal("\"/>");
    }
    out.literal("</Relationships>");
}

std::vector<Relationship> workbookRelationships(const PackagePlan& plan)
{
    const QString folder = plan.workbookPart.left(plan.workbookPart.lastIndexOf(QLatin1Char('/')) + 1);
    std::vector<Relationship> all;
    all.reserve(plan.sheets.size() + plan.workbookRelationships.size());
    for (const SheetPlan& s : plan.sheets)
        all.push_back({s.relationshipId, QLatin1String(uri::sheetRelationshipType(s.writtenType)),
                       relativeTarget(folder, s.partName), false});
    all.insert(all.end(), plan.workbookRelationships.begin(), plan.workbookRelationships.end());
    return all;
}

} // namespace QXlsx::detail
