#include "packageplan.h"

#include <QSet>

namespace QXlsx::detail {

namespace uri {
const char* const RelOfficeDocument =
    "http://schemas.openxmlformats.org/officeDocument/2006/relationships/officeDocument";
const char* const RelCoreProperties =
    "http://schemas.openxmlformats.org/package/2006/relationships/metadata/core-properties";
const char* const RelExtendedProperties =
    "http://schemas.openxmlformats.org/officeDocument/2006/relationships/extended-properties";
const char* const RelStyles =
    "http://schemas.openxmlformats.org/officeDocument/2006/relationships/styles";
const char* const RelSharedStrings =
    "http://schemas.openxmlformats.org/officeDocument/2006/relationships/sharedStrings";
const char* const RelCalcChain =
    "http://schemas.openxmlformats.org/officeDocument/2006/relationships/calcChain";
const char* const RelVbaProject = "http://schemas.microsoft.com/office/2006/relationships/vbaProject";
const char* const SpreadsheetMain = "http://schemas.openxmlformats.org/spreadsheetml/2006/main";
const char* const Relationships =
    "http://schemas.openxmlformats.org/officeDocument/2006/relationships";

const char* sheetRelationshipType(AbstractSheet::SheetType type)
{
    switch (type) {
    case AbstractSheet::ST_ChartSheet:
        return "http://schemas.openxmlformats.org/officeDocument/2006/relationships/chartsheet";
    case AbstractSheet::ST_DialogSheet:
        return "http://schemas.openxmlformats.org/officeDocument/2006/relationships/dialogsheet";
    case AbstractSheet::ST_MacroSheet:
        return "http://schemas.microsoft.com/office/2006/relationships/xlMacrosheet";
    case AbstractSheet::ST_WorkSheet:
        break;
    }
    return "http://schemas.openxmlformats.org/officeDocument/2006/relationships/worksheet";
}

const char* sheetContentType(AbstractSheet::SheetType type)
{
    switch (type) {
    case AbstractSheet::ST_ChartSheet:
        return "application/vnd.openxmlformats-officedocument.spreadsheetml.chartsheet+xml";
    case AbstractSheet::ST_DialogSheet:
        return "application/vnd.openxmlformats-officedocument.spreadsheetml.dialogsheet+xml";
    case AbstractSheet::ST_MacroSheet:
        return "application/vnd.ms-excel.macrosheet+xml";
    case AbstractSheet::ST_WorkSheet:
        break;
    }
    return "application/vnd.openxmlformats-officedocument.spreadsheetml.worksheet+xml";
}
} // namespace uri

namespace {

QString folderOf(const QString& partName)
{
    return partName.left(partName.lastIndexOf(QLatin1Char('/')) + 1);
}

QString relationshipsPartOf(const QString& partName)
{
    const int slash = partName.lastIndexOf(QLatin1Char('/'));
    return partName.left(slash + 1) + QLatin1String("_rels/") + partName.mid(slash + 1)
           + QLatin1String(".rels");
}

// Part names compare without regard to case inside a package.
class NameSet
{
public:
    void add(const QString& name) { m_names.insert(name.toLower()); }
    bool contains(const QString& name) const { return m_names.contains(name.toLower()); }
    // pattern holds %1 for a number; the first name from 1 up that is free, and whose
    // relationships part is free too (a kept one would otherwise attach to a new part).
    QString fresh(const QString& pattern)
    {
        for (int n = 1;; ++n) {
            const QString name = pattern.arg(n);
            if (!contains(name) && !contains(relationshipsPartOf(name))) {
                add(name);
                return name;
            }
        }
    }

private:
    QSet<QString> m_names;
};

class IdSet
{
public:
    void add(const QString& id) { m_ids.insert(id); }
    bool contains(const QString& id) const { return m_ids.contains(id); }
    QString fresh()
    {
        while (m_ids.contains(QStringLiteral("rId%1").arg(m_next)))
            ++m_next;
        const QString id = QStringLiteral("rId%1").arg(m_next++);
        m_ids.insert(id);
        return id;
    }

private:
    QSet<QString> m_ids;
    int m_next = 1;
};

QString workbookPartOf(const WorkbookData& book)
{
    for (const Relationship& r : book.packageRelationships) {
        if (r.type == QLatin1String(uri::RelOfficeDocument) && !r.external) {
            QString name = r.target;
            while (name.startsWith(QLatin1Char('/')))
                name.remove(0, 1);
            if (!name.isEmpty() && !name.contains(QLatin1String("..")))
                return name;
        }
    }
    return QStringLiteral("xl/workbook.xml");
}

void planSheets(const WorkbookData& book, PackagePlan& plan, NameSet& names, IdSet& ids)
{
    const QString folder = folderOf(plan.workbookPart);
    quint32 nextSheetId = 1;
    QSet<quint32> sheetIds;
    for (const auto& sheet : book.sheets)
        nextSheetId = qMax(nextSheetId, sheet->sheetId + 1);

    for (size_t i = 0; i < book.sheets.size(); ++i) {
        const SheetData& sheet = *book.sheets[i];
        SheetPlan s;
        s.sheet = &sheet;
        s.active = int(i) == book.activeSheet;
        // A sheet other than a worksheet is only ever written back as it was read; one
        // made by the API has nothing to write, so it becomes an empty worksheet.
        s.writtenType = sheet.rawPart.isEmpty() ? AbstractSheet::ST_WorkSheet : sheet.type;

        QString name = sheet.partName;
        while (name.startsWith(QLatin1Char('/')))
            name.remove(0, 1);
        if (name.isEmpty() || names.contains(name))
            name = names.fresh(folder + (s.writtenType == AbstractSheet::ST_ChartSheet
                                             ? QLatin1String("chartsheets/sheet%1.xml")
                                             : QLatin1String("worksheets/sheet%1.xml")));
        else
            names.add(name);
        s.partName = name;

        if (!sheet.relationshipId.isEmpty() && !ids.contains(sheet.relationshipId)) {
            s.relationshipId = sheet.relationshipId;
            ids.add(s.relationshipId);
        }
        if (sheet.sheetId != 0 && !sheetIds.contains(sheet.sheetId))
            s.sheetId = sheet.sheetId;
        else
            s.sheetId = nextSheetId++;
        sheetIds.insert(s.sheetId);
        plan.sheets.push_back(s);
    }
    if (plan.sheets.empty()) {
        plan.placeholderSheet = std::make_shared<SheetData>();
        plan.placeholderSheet->name = QStringLiteral("Sheet1");
        SheetPlan s;
        s.sheet = plan.placeholderSheet.get();
        s.active = true;
        s.partName = names.fresh(folder + QLatin1String("worksheets/sheet%1.xml"));
        s.sheetId = nextSheetId;
        plan.sheets.push_back(s);
    }
    for (SheetPlan& s : plan.sheets)
        if (s.relationshipId.isEmpty())
            s.relationshipId = ids.fresh();
}

} // namespace

QString relativeTarget(const QString& folder, const QString& partName)
{
    if (partName.startsWith(folder))
        return partName.mid(folder.size());
    return QLatin1Char('/') + partName;
}

PackagePlan planPackage(const WorkbookData& book)
{
    PackagePlan plan;
    const bool opened = !book.packageRelationships.empty();
    plan.workbookPart = workbookPartOf(book);
    plan.workbookRelationshipsPart = relationshipsPartOf(plan.workbookPart);
    const QString folder = folderOf(plan.workbookPart);

    NameSet names;
    names.add(QStringLiteral("[Content_Types].xml"));
    names.add(QStringLiteral("_rels/.rels"));
    names.add(plan.workbookPart);
    names.add(plan.workbookRelationshipsPart);

    // The workbook relationships that stay: all but the ones regenerated here and the
    // calculation chain, which goes stale as soon as cells change and which Excel
    // rebuilds when it is missing.
    IdSet ids;
    QSet<QString> dropped;
    for (const Relationship& r : book.workbookRelationships) {
        if (r.type == QLatin1String(uri::RelCalcChain)) {
            dropped.insert((folder + r.target).toLower());
            dropped.insert(r.target.mid(1).toLower());
            continue;
        }
        if (r.type == QLatin1String(uri::RelStyles) || r.type == QLatin1String(uri::RelSharedStrings))
            continue;
        if (r.type == QLatin1String(uri::RelVbaProject))
            plan.macroEnabled = true;
        plan.workbookRelationships.push_back(r);
        ids.add(r.id);
    }

    for (const KeptPart& part : book.keptParts) {
        const QString lower = part.name.toLower();
        if (dropped.contains(lower) || names.contains(part.name)
            || lower.endsWith(QLatin1String("/calcchain.xml")))
            continue;
        names.add(part.name);
        plan.keptParts.push_back(&part);
    }

    planSheets(book, plan, names, ids);

    plan.stylesPart = names.contains(folder + QLatin1String("styles.xml"))
                          ? names.fresh(folder + QLatin1String("styles%1.xml"))
                          : folder + QLatin1String("styles.xml");
    names.add(plan.stylesPart);
    plan.workbookRelationships.push_back(
        {ids.fresh(), QLatin1String(uri::RelStyles), relativeTarget(folder, plan.stylesPart), false});
    if (book.strings.count() > 0) {
        plan.sharedStringsPart = names.contains(folder + QLatin1String("sharedStrings.xml"))
                                     ? names.fresh(folder + QLatin1String("sharedStrings%1.xml"))
                                     : folder + QLatin1String("sharedStrings.xml");
        names.add(plan.sharedStringsPart);
        plan.workbookRelationships.push_back({ids.fresh(), QLatin1String(uri::RelSharedStrings),
                                              relativeTarget(folder, plan.sharedStringsPart), false});
    }

    if (opened) {
        for (Relationship r : book.packageRelationships) {
            if (r.type == QLatin1String(uri::RelOfficeDocument) && !r.external)
                r.target = plan.workbookPart;
            plan.packageRelationships.push_back(r);
        }
    } else {
        plan.corePropertiesPart = QStringLiteral("docProps/core.xml");
        plan.appPropertiesPart = QStringLiteral("docProps/app.xml");
        plan.packageRelationships = {
            {QStringLiteral("rId1"), QLatin1String(uri::RelOfficeDocument), plan.workbookPart, false},
            {QStringLiteral("rId2"), QLatin1String(uri::RelCoreProperties), plan.corePropertiesPart, false},
            {QStringLiteral("rId3"), QLatin1String(uri::RelExtendedProperties), plan.appPropertiesPart, false},
        };
    }
    return plan;
}

} // namespace QXlsx::detail
