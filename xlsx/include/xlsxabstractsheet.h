#pragma once

#include "xlsxglobal.h"

#include <QString>

namespace QXlsx {

namespace detail { class WorkbookData; class SheetData; }

// A sheet of a workbook: a worksheet, or a sheet the engine keeps without modelling
// it (chart, dialog and macro sheets are saved again as they were read).
class XLSX_EXPORT AbstractSheet
{
public:
    enum SheetType { ST_WorkSheet, ST_ChartSheet, ST_DialogSheet, ST_MacroSheet };
    enum SheetState { SS_Visible, SS_Hidden, SS_VeryHidden };

    virtual ~AbstractSheet();
    AbstractSheet(const AbstractSheet&) = delete;
    AbstractSheet& operator=(const AbstractSheet&) = delete;

    QString sheetName() const;
    SheetType sheetType() const;
    SheetState sheetState() const;
    void setSheetState(SheetState state);

protected:
    AbstractSheet(detail::WorkbookData* book, detail::SheetData* data);
    detail::WorkbookData* m_book;
    detail::SheetData* m_data;   // owned by the workbook
    friend class Document;
};

} // namespace QXlsx
