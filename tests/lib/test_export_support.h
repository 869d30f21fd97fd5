#pragma once

// Shared by the export tests: a fixture that gives each test a folder and fails it when a
// host object or reference outlives it, and a reader of what a user sees in the workbook.

#include "test_reference_balance.h"
#include "tsbase.h"
#include "xlsxdocument.h"

#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <ostream>

inline void PrintTo(const QString& text, std::ostream* out)
{
    *out << '"' << text.toStdString() << '"';
}

class ExportTest : public ReferenceBalanceTest
{
protected:
    QString path(const QString& name = QStringLiteral("export.xlsx")) const
    {
        return m_dir.filePath(name);
    }

    // A file that a refused export must leave as it was (see keptIntact).
    QString existingFile() const
    {
        QFile out(path(QStringLiteral("kept.xlsx")));
        out.open(QIODevice::WriteOnly);
        out.write("earlier content");
        return out.fileName();
    }
    static bool keptIntact(const QString& file)
    {
        QFile in(file);
        return in.open(QIODevice::ReadOnly) && in.readAll() == "earlier content";
    }

private:
    QTemporaryDir m_dir;
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
    EXPECT_EQ(format.horizontalAlignment(), QXlsx::Format::AlignHCenter);
    EXPECT_EQ(format.verticalAlignment(), QXlsx::Format::AlignVCenter);
    for (auto side : {format.leftBorderStyle(), format.rightBorderStyle(),
                      format.topBorderStyle(), format.bottomBorderStyle()})
        EXPECT_EQ(side, QXlsx::Format::BorderThin);
    EXPECT_EQ(format.fillPattern(),
              greyHeader ? QXlsx::Format::PatternSolid : QXlsx::Format::PatternNone);
    if (greyHeader) {
        EXPECT_EQ(format.patternForegroundColor().name(), "#cccccc");
    }
}
