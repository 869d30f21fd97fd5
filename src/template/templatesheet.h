#pragma once

// The reading rules every field template reader shares: when a template file is opened,
// how far its rows go, what a cell's text is, and the header check.

#include "xlsxcellrange.h"
#include "xlsxdocument.h"
#include "xlsxworksheet.h"

#include <QString>
#include <QStringList>

#include <optional>

namespace vygis {

// The columns of a field template workbook and the texts of its header row. The
// application's templates have always spelled the fourth "FieldsLenth"; files in the
// field depend on that spelling, so it is kept.
constexpr int TemplateColumnCount = 5;
constexpr const char* TemplateHeader[TemplateColumnCount] = {
    "TableName", "FieldsName", "FieldsType", "FieldsLenth", "Precision"};

// The current worksheet of a template workbook, opened for reading only. Nothing is
// opened when no file stands at the path, so that a reader never conjures a workbook
// out of a mistyped path.
class TemplateSheet
{
public:
    explicit TemplateSheet(const QString& path);
    TemplateSheet(const TemplateSheet&) = delete;
    TemplateSheet& operator=(const TemplateSheet&) = delete;

    // False when there is no file, or when the current sheet is not a worksheet (a chart
    // sheet): such a workbook holds no template.
    bool isOpen() const { return m_sheet != nullptr; }

    // A1 is stored and holds exactly "TableName": the mark of both template layouts.
    bool hasTableNameHeader() const;
    // At least one row below the header, exactly five columns in use, and A1 to E1 all
    // stored with exactly the five header texts.
    bool hasTemplateHeader() const;

    // The last row to read. Rows are only read below a stored A1, so the used range
    // starts at row 1 and its row count is its last row.
    int lastRow() const { return m_used.isValid() ? m_used.lastRow() : 0; }

    bool isStored(int row, int column) const { return m_sheet->cellAt(row, column) != nullptr; }
    // The cell's value as text, untouched; the empty text where no cell is stored.
    QString text(int row, int column) const;
    // Appends the texts of columns firstColumn to 5 of row.
    void appendRow(int row, int firstColumn, QStringList& texts) const;

private:
    std::optional<QXlsx::Document> m_document;
    const QXlsx::Worksheet* m_sheet = nullptr;
    QXlsx::CellRange m_used;
};

} // namespace vygis
