#include "packagewriter.h"

#include "contenttypes.h"
#include "docprops.h"
#include "model/workbookdata.h"
#include "packageplan.h"
#include "relationships.h"
#include "sharedstrings.h"
#include "stylelimit.h"
#include "stylespart.h"
#include "textlimit.h"
#include "workbookpart.h"
#include "worksheetpart.h"
#include "xmlsink.h"
#include "zip/zipwriter.h"

namespace QXlsx::detail {

namespace {

class Packager
{
public:
    Packager(const WorkbookData& book, QIODevice& device)
        : m_book(book), m_plan(planPackage(book)), m_styles(book.styles),
          m_cutTexts(textsOverCellLimit(book.strings)), m_zip(device)
    {
        m_report.droppedFormats = m_styles.droppedCount();
    }

    bool write();
    QString errorString() const { return m_zip.errorString(); }
    const SaveReport& report() const { return m_report; }

private:
    template<typename Generate>
    bool part(const QString& name, Generate generate)
    {
        if (name.isEmpty())
            return true;
        if (!m_zip.beginEntry(name))
            return false;
        XmlSink out(m_zip);
        generate(out);
        return out.flush() && m_zip.endEntry();
    }
    bool bytes(const QString& name, const QByteArray& data)
    {
        return m_zip.beginEntry(name) && m_zip.write(data) && m_zip.endEntry();
    }

    const WorkbookData& m_book;
    const PackagePlan m_plan;
    const WrittenStyles m_styles;
    const std::vector<quint32> m_cutTexts;
    SaveReport m_report;
    ZipWriter m_zip;
};

bool Packager::write()
{
    const WorkbookData& book = m_book;
    const PackagePlan& plan = m_plan;
    bool ok = part(QStringLiteral("[Content_Types].xml"),
                   [&](XmlSink& out) { writeContentTypes(out, book, plan); })
              && part(QStringLiteral("_rels/.rels"),
                      [&](XmlSink& out) { writeRelationships(out, plan.packageRelationships); })
              && part(plan.corePropertiesPart,
                      [&](XmlSink& out) { writeCoreProperties(out, QDateTime::currentDateTime()); })
              && part(plan.appPropertiesPart, [&](XmlSink& out) { writeAppProperties(out, book); })
              && part(plan.workbookPart, [&](XmlSink& out) { writeWorkbookPart(out, book, plan); })
              && part(plan.workbookRelationshipsPart,
                      [&](XmlSink& out) { writeRelationships(out, workbookRelationships(plan)); });

    quint64 stringReferences = 0;
    const ExcelLimits limits {m_styles, m_cutTexts};
    for (const SheetPlan& s : plan.sheets) {
        if (!ok)
            break;
        if (s.writtenType != AbstractSheet::ST_WorkSheet || !s.sheet->rawPart.isEmpty())
            ok = bytes(s.partName, s.sheet->rawPart);
        else
            ok = part(s.partName, [&](XmlSink& out) {
                const WorksheetCounts counts = writeWorksheetPart(out, book, *s.sheet, s.active, limits);
                stringReferences += counts.stringReferences;
                m_report.cutTexts += counts.cutTexts;
            });
    }

    ok = ok
         && part(plan.sharedStringsPart,
                 [&](XmlSink& out) { writeSharedStrings(out, book.strings, stringReferences); })
         && part(plan.stylesPart, [&](XmlSink& out) { writeStylesPart(out, book.styles, m_styles); });
    for (const KeptPart* kept : plan.keptParts)
        ok = ok && bytes(kept->name, kept->data);
    return ok && m_zip.finish();
}

} // namespace

bool writePackage(const WorkbookData& book, QIODevice& device, QString* error, SaveReport* report)
{
    Packager packager(book, device);
    const bool ok = packager.write();
    if (report)
        *report = packager.report();
    if (!ok && error)
        *error = packager.errorString().isEmpty() ? QStringLiteral("cannot write the workbook")
                                                  : packager.errorString();
    return ok;
}

} // namespace QXlsx::detail
