#include "workbookdata.h"

#include "xlsxworksheet.h"

namespace QXlsx::detail {

namespace {

// The public wrappers have constructors only the engine may call.
class WorksheetObject final : public Worksheet
{
public:
    WorksheetObject(WorkbookData* book, SheetData* data) : Worksheet(book, data) {}
};

class KeptSheetObject final : public AbstractSheet
{
public:
    KeptSheetObject(WorkbookData* book, SheetData* data) : AbstractSheet(book, data) {}
};

bool holds(const RowRecord& row, const Cell* cell)
{
    const Cell* begin = row.cells.data();
    return !row.cells.empty() && cell >= begin && cell < begin + row.cells.size();
}

} // namespace

WorkbookData::WorkbookData() = default;
WorkbookData::~WorkbookData() = default;

SheetData* WorkbookData::appendSheet(const QString& name, AbstractSheet::SheetType type)
{
    auto data = std::make_unique<SheetData>();
    data->book = this;
    data->cellArena = &cellArena;
    data->name = name;
    data->type = type;
    SheetData* sheet = data.get();
    std::unique_ptr<AbstractSheet> object;
    if (type == AbstractSheet::ST_WorkSheet)
        object = std::make_unique<WorksheetObject>(this, sheet);
    else
        object = std::make_unique<KeptSheetObject>(this, sheet);
    sheets.push_back(std::move(data));
    sheetObjects.push_back(std::move(object));
    return sheet;
}

void WorkbookData::clear()
{
    strings.clear();
    styles = StyleTable();
    date1904 = false;
    sheetObjects.clear();
    sheets.clear();
    cellArena.clear();
    activeSheet = 0;
    currentSheet = -1;
    keptParts.clear();
    packageRelationships.clear();
    workbookRelationships.clear();
    workbookRootStartTag.clear();
    workbookExtraElements.clear();
    contentTypeDefaults.clear();
    errorString.clear();
    m_lastFormulaSheet = 0;
    m_lastFormulaRow = 0;
}

// A Cell knows its column but not its row or sheet; the row is found by the address of
// the cell in its row's storage. Looking first where the last answer was, and at the
// row after it, makes a walk over a sheet's formulas cost little.
const QByteArray* WorkbookData::formulaOf(const Cell* cell) const
{
    auto lookUp = [&](size_t s, size_t r) -> const QByteArray* {
        const SheetData& sheet = *sheets[s];
        m_lastFormulaSheet = s;
        m_lastFormulaRow = r;
        auto it = sheet.formulas.constFind(SheetData::formulaKey(sheet.rows[r].row, cell->column()));
        return it != sheet.formulas.constEnd() ? &it.value() : nullptr;
    };
    if (m_lastFormulaSheet < sheets.size()) {
        const RowList& rows = sheets[m_lastFormulaSheet]->rows;
        for (size_t r = m_lastFormulaRow; r < rows.size() && r <= m_lastFormulaRow + 1; ++r) {
            if (holds(rows[r], cell))
                return lookUp(m_lastFormulaSheet, r);
        }
    }
    for (size_t s = 0; s < sheets.size(); ++s) {
        const RowList& rows = sheets[s]->rows;
        for (size_t r = 0; r < rows.size(); ++r) {
            if (holds(rows[r], cell))
                return lookUp(s, r);
        }
    }
    return nullptr;
}

} // namespace QXlsx::detail
