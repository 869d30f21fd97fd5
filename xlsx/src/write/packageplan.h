#pragma once

#include "model/workbookdata.h"

#include <QByteArray>
#include <QString>

#include <memory>
#include <vector>

namespace QXlsx::detail {

// Where each part of a package goes and how the parts refer to each other, settled
// before anything is written so that every module writes against the same names.
struct SheetPlan
{
    const SheetData* sheet = nullptr;
    QString partName;          // "xl/worksheets/sheet1.xml"
    QString relationshipId;    // in the workbook's relationships
    quint32 sheetId = 0;
    AbstractSheet::SheetType writtenType = AbstractSheet::ST_WorkSheet;
    bool active = false;
};

struct PackagePlan
{
    QString workbookPart;
    QString workbookRelationshipsPart;
    QString stylesPart;
    QString sharedStringsPart;     // empty when the workbook holds no text
    QString corePropertiesPart;    // empty unless generated
    QString appPropertiesPart;
    std::vector<SheetPlan> sheets;
    std::vector<Relationship> packageRelationships;
    std::vector<Relationship> workbookRelationships;
    std::vector<const KeptPart*> keptParts;
    bool macroEnabled = false;
    // A workbook needs a sheet; one without gets this empty "Sheet1".
    std::shared_ptr<SheetData> placeholderSheet;
};

PackagePlan planPackage(const WorkbookData& book);

// The target of a relationship from a part in folder (with its trailing "/") to the
// part partName: relative where it lies below the folder, absolute otherwise.
QString relativeTarget(const QString& folder, const QString& partName);

// Relationship type and content type URIs.
namespace uri {
extern const char* const RelOfficeDocument;
extern const char* const RelCoreProperties;
extern const char* const RelExtendedProperties;
extern const char* const RelStyles;
extern const char* const RelSharedStrings;
extern const char* const RelCalcChain;
extern const char* const RelVbaProject;
extern const char* const SpreadsheetMain;
extern const char* const Relationships;
const char* sheetRelationshipType(AbstractSheet::SheetType type);
const char* sheetContentType(AbstractSheet::SheetType type);
}

} // namespace QXlsx::detail
