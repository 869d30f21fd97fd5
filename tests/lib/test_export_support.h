#pragma once

// Shared by the export tests: a file a refused export must leave alone, and a reader of
// what a user sees in the saved workbook.

#include "libtesting.h"

class ExportTest : public LibraryTest
{
protected:
    // A file that a refused export must leave as it was (see keptIntact).
    QString existingFile() const { return fileWith("earlier content", QStringLiteral("kept.xlsx")); }
    static bool keptIntact(const QString& file) { return bytesOf(file) == "earlier content"; }
};

// The sheet of a saved export as a user looks at it.
class SavedSheet
{
public:
    explicit SavedSheet(const QString& file) : m_document(file) {}

    QVariant value(int row, int column) const { return m_document.read(row, column); }
    QString text(int row, int column) const { return value(row, column).toString(); }
    QStringList rowTexts(int row, int columns) const
    {
        QStringList texts;
        for (int column = 1; column <= columns; ++column)
            texts.append(text(row, column));
        return texts;
    }
    bool hasCell(int row, int column) const { return m_document.cellAt(row, column) != nullptr; }
    QXlsx::Format format(int row, int column) const
    {
        const QXlsx::Cell* cell = m_document.cellAt(row, column);
        return cell ? cell->format() : QXlsx::Format();
    }
    QString extent() const { return m_document.dimension().toString(); }
    QStringList merges() const
    {
        QStringList ranges;
        for (const QXlsx::CellRange& range : m_document.currentWorksheet()->mergedCells())
            ranges.append(range.toString());
        return ranges;
    }
    double rowHeight(int row) const { return m_document.rowHeight(row); }

private:
    mutable QXlsx::Document m_document;
};

// Centred both ways with a thin border all round; header cells add a solid #cccccc fill.
inline void expectStyled(const QXlsx::Format& format, bool greyHeader)
{
    EXPECT_EQ(styleOf(format), QStringList({"center", "center", greyHeader ? "FFCCCCCC" : "", "thin", "thin",
                                            "thin", "thin"}));
}

// The title of a table export over its columns: merged, 30 points high, styled, with the
// headers below it styled as headers.
inline void expectTitledTable(const SavedSheet& sheet, const QString& title, const QStringList& headers)
{
    EXPECT_EQ(sheet.text(1, 1), title);
    expectStyled(sheet.format(1, 1), false);
    EXPECT_EQ(sheet.merges(), QStringList{"A1:" + QXlsx::CellReference(1, headers.size()).toString()});
    EXPECT_DOUBLE_EQ(sheet.rowHeight(1), 30.0);
    EXPECT_EQ(sheet.rowTexts(2, headers.size()), headers);
    for (int column = 1; column <= headers.size(); ++column)
        expectStyled(sheet.format(2, column), true);
}

// Every cell openpyxl finds in file holds the value and shows the style the engine reads
// there, and both agree on the sheet, the merges and the height of row 1. Returns how
// many cells openpyxl found.
int expectOpenpyxlReadsAsTheEngine(const QString& file);
