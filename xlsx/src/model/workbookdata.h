#pragma once

#include "rawelement.h"
#include "sheetdata.h"
#include "stringpool.h"
#include "styletable.h"

#include <QByteArray>
#include <QString>

#include <memory>
#include <vector>

namespace QXlsx {
class AbstractSheet;
}

namespace QXlsx::detail {

struct Relationship
{
    QString id;
    QString type;          // full relationship type URI
    QString target;        // as written in the file
    bool external = false; // TargetMode="External"
};

// A part the engine does not model (theme, drawing, comments, printer settings, a
// sheet's relationships, ...), kept byte for byte for the save.
struct KeptPart
{
    QString name;          // absolute part name without the leading "/", "xl/theme/theme1.xml"
    QString contentType;
    QByteArray data;
};

// Everything a Document holds. Sheets and their public wrappers live here, in order.
class WorkbookData
{
public:
    WorkbookData();
    ~WorkbookData();
    WorkbookData(const WorkbookData&) = delete;
    WorkbookData& operator=(const WorkbookData&) = delete;

    // Before the sheets: they give their cells back to it when one is deleted.
    CellArena cellArena{this};
    StringPool strings;
    StyleTable styles;
    bool date1904 = false;

    std::vector<std::unique_ptr<SheetData>> sheets;
    std::vector<std::unique_ptr<AbstractSheet>> sheetObjects;   // parallel to sheets
    int activeSheet = 0;    // the tab the workbook opens on
    int currentSheet = -1;  // the sheet the document's cell members act on

    // The package as read, for a save that keeps what is not modelled.
    std::vector<KeptPart> keptParts;
    std::vector<Relationship> packageRelationships;    // _rels/.rels
    std::vector<Relationship> workbookRelationships;   // of the workbook part, except sheets, styles and shared strings
    QByteArray workbookRootStartTag;
    std::vector<RawElement> workbookExtraElements;     // definedNames, calcPr, ... in file order
    std::vector<std::pair<QString, QString>> contentTypeDefaults;   // extension -> content type

    mutable QString errorString;

    // Adds a sheet with its public wrapper; the caller has checked the name.
    SheetData* appendSheet(const QString& name, AbstractSheet::SheetType type);
    void clear();

    // The <f> element of a formula cell stored on one of the sheets, or null.
    const QByteArray* formulaOf(const Cell* cell) const;

private:
    // Where the last formulaOf found its cell: callers walk a sheet row by row.
    mutable size_t m_lastFormulaSheet = 0;
    mutable size_t m_lastFormulaRow = 0;
};

} // namespace QXlsx::detail
