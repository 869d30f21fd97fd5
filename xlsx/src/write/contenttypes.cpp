#include "contenttypes.h"

#include "packageplan.h"
#include "xmlsink.h"

#include <QHash>

namespace QXlsx::detail {

namespace {

const char* const RelationshipsType = "application/vnd.openxmlformats-package.relationships+xml";
const char* const XmlType = "application/xml";

QString extensionOf(const QString& partName)
{
    const int dot = partName.lastIndexOf(QLatin1Char('.'));
    const int slash = partName.lastIndexOf(QLatin1Char('/'));
    return dot > slash ? partName.mid(dot + 1).toLower() : QString();
}

class Writer
{
public:
    Writer(XmlSink& out, const WorkbookData& book) : m_out(out)
    {
        m_out.literal("<?xml version=\"1.0\" encoding=\"UTF-8\" standalone=\"yes\"?>\n"
                      "<Types xmlns=\"http://schemas.openxmlformats.org/package/2006/content-types\">");
        addDefault(QStringLiteral("rels"), QLatin1String(RelationshipsType));
        addDefault(QStringLiteral("xml"), QLatin1String(XmlType));
        for (const auto& d : book.contentTypeDefaults)
            addDefault(d.first.toLower(), d.second);
    }

    void addDefault(const QString& extension, const QString& type)
    {
        if (extension.isEmpty() || type.isEmpty() || m_defaults.contains(extension))
            return;
        m_defaults.insert(extension, type);
        m_out.literal("<Default Extension=\"");
        m_out.appendAttribute(extension);
        m_out.literal("\" ContentType=\"");
        m_out.appendAttribute(type);
        m_out.literal("\"/>");
    }

    void addOverride(const QString& partName, const QString& type)
    {
        if (partName.isEmpty() || type.isEmpty() || m_defaults.value(extensionOf(partName)) == type)
            return;
        m_out.literal("<Override PartName=\"/");
        m_out.appendAttribute(partName);
        m_out.literal("\" ContentType=\"");
        m_out.appendAttribute(type);
        m_out.literal("\"/>");
    }

    void finish() { m_out.literal("</Types>"); }

private:
    XmlSink& m_out;
    QHash<QString, QString> m_defaults;
};

} // namespace

void writeContentTypes(XmlSink& out, const WorkbookData& book, const PackagePlan& plan)
{
    Writer types(out, book);
    types.addOverride(plan.workbookPart,
                      plan.macroEnabled
                          ? QStringLiteral("application/vnd.ms-excel.sheet.macroEnabled.main+xml")
                          : QStringLiteral("application/vnd.openxmlformats-officedocument.spreadsheetml.sheet.main+xml"));
    for (const SheetPlan& s : plan.sheets)
        types.addOverride(s.partName, QLatin1String(uri::sheetContentType(s.writtenType)));
    types.addOverride(plan.stylesPart,
                      QStringLiteral("application/vnd.openxmlformats-officedocument.spreadsheetml.styles+xml"));
    types.addOverride(plan.sharedStringsPart,
                      QStringLiteral("application/vnd.openxmlformats-officedocument.spreadsheetml.sharedStrings+xml"));
    types.addOverride(plan.corePropertiesPart,
                      QStringLiteral("application/vnd.openxmlformats-package.core-properties+xml"));
    types.addOverride(plan.appPropertiesPart,
                      QStringLiteral("application/vnd.openxmlformats-officedocument.extended-properties+xml"));
    for (const KeptPart* part : plan.keptParts)
        types.addOverride(part->name, part->contentType);
    types.finish();
}

} // namespace QXlsx::detail
