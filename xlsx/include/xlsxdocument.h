#pragma once

#include "xlsxabstractsheet.h"
#include "xlsxcell.h"
#include "xlsxcellrange.h"
#include "xlsxcellreference.h"
#include "xlsxformat.h"
#include "xlsxglobal.h"
#include "xlsxworksheet.h"

#include <QObject>
#include <QStringList>
#include <QVariant>

#include <memory>

class QIODevice;

namespace QXlsx {

namespace detail { class WorkbookData; struct SaveReport; }

// A workbook. A new document has no sheet: the first write creates "Sheet1". A document
// opened on a path that holds no readable workbook is an empty workbook with one empty
// worksheet "Sheet1"; opening never throws and takes bounded time and memory.
//
// The cell, merge and size members act on the current worksheet.
class XLSX_EXPORT Document : public QObject
{
    Q_OBJECT
public:
    explicit Document(QObject* parent = nullptr);
    explicit Document(const QString& path, QObject* parent = nullptr);
    explicit Document(QIODevice* device, QObject* parent = nullptr);
    ~Document() override;

    bool write(int row, int column, const QVariant& value, const Format& format = Format());
    bool write(const CellReference& cell, const QVariant& value, const Format& format = Format());
    QVariant read(int row, int column) const;
    QVariant read(const CellReference& cell) const;
    Cell* cellAt(int row, int column) const;
    Cell* cellAt(const CellReference& cell) const;

    bool mergeCells(const CellRange& range, const Format& format = Format());
    bool unmergeCells(const CellRange& range);
    bool setRowHeight(int row, double height);
    bool setRowHeight(int firstRow, int lastRow, double height);
    bool setColumnWidth(int column, double width);
    bool setColumnWidth(int firstColumn, int lastColumn, double width);
    double rowHeight(int row);
    double columnWidth(int column);
    CellRange dimension() const;

    QStringList sheetNames() const;
    // Adds a sheet and makes it current. A blank name gives "SheetN"; a name that is
    // taken (ignoring case), too long or holding []:*?/\ is refused.
    bool addSheet(const QString& name = QString(),
                  AbstractSheet::SheetType type = AbstractSheet::ST_WorkSheet);
    bool selectSheet(const QString& name);
    bool renameSheet(const QString& oldName, const QString& newName);
    bool deleteSheet(const QString& name);
    AbstractSheet* sheet(const QString& name) const;
    AbstractSheet* currentSheet() const;
    // Null when the current sheet is not a worksheet (a chart sheet, say).
    Worksheet* currentWorksheet() const;

    // True when the workbook counts dates from 1904 rather than 1900.
    bool isDate1904() const;
    void setDate1904(bool date1904);

    // Saving is atomic: the package is written to a temporary file beside the target,
    // which replaces the target only when complete. A failed save leaves the old file,
    // and a save to a path also logs its reason as a warning in the category
    // "vygis.xlsx.save", for callers that only learn that a save failed.
    bool save() const;
    bool saveAs(const QString& path) const;
    bool saveAs(QIODevice* device) const;

    // Why the last open or save failed, for people reading a log; empty after success.
    QString errorString() const;

    // What the last successful save changed to keep within Excel's limits, which Excel
    // otherwise answers with a repair prompt; each is also logged as a warning in
    // "vygis.xlsx.limits". The document itself keeps everything as written.
    // Cells whose text was longer than 32,767 characters (UTF-16 units) and was saved cut
    // to that length, never in the middle of a surrogate pair:
    qint64 cutTextCount() const;
    // Cell formats beyond Excel's 64,000 that were saved as their number format alone,
    // without font, fill, borders or alignment, so that every value is saved and a date
    // still shows as a date:
    int droppedFormatCount() const;

private:
    Worksheet* ensureWorksheet();
    void openFrom(QIODevice& device);
    void startEmptyWorkbook();
    int sheetIndex(const QString& name) const;
    void keepReport(const detail::SaveReport& report) const;
    std::unique_ptr<detail::WorkbookData> d;
    QString m_path;
    mutable qint64 m_cutTexts = 0;
    mutable int m_droppedFormats = 0;
};

} // namespace QXlsx
