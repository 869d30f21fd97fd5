#pragma once

// Shared by the export tests: a fixture that gives each test a folder and fails it when a
// host object or reference outlives it, and readers of what a user sees in the workbook.

#include "tsbase.h"
#include "xlsxdocument.h"

#include <QColor>
#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <ostream>

// Readable failure output for Qt texts and lists of them.
inline void PrintTo(const QString& text, std::ostream* out)
{
    *out << '"' << text.toStdString() << '"';
}

class ExportTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        m_liveObjects = VyObjects::TsRefBase::LiveObjectCount();
        m_references = VyObjects::TsRefBase::OutstandingReferenceCount();
    }

    void TearDown() override
    {
        EXPECT_EQ(VyObjects::TsRefBase::LiveObjectCount(), m_liveObjects) << "objects leaked";
        EXPECT_EQ(VyObjects::TsRefBase::OutstandingReferenceCount(), m_references)
            << "references not released";
    }

    QString path(const QString& name = QStringLiteral("export.xlsx")) const
    {
        return m_dir.filePath(name);
    }

    // A file that a rejected export must leave as it was.
    QString existingFile(const QString& name = QStringLiteral("kept.xlsx")) const
    {
        const QString file = path(name);
        QFile out(file);
        out.open(QIODevice::WriteOnly);
        out.write("earlier content");
        return file;
    }

    static QByteArray contentOf(const QString& file)
    {
        QFile in(file);
        return in.open(QIODevice::ReadOnly) ? in.readAll() : QByteArray();
    }

private:
    QTemporaryDir m_dir;
    long long m_liveObjects = 0;
    long long m_references = 0;
};

// The first worksheet of a saved workbook, read back as a user would look at it.
class SavedSheet
{
public:
    explicit SavedSheet(const QString& file) : m_document(file) {}

    QString text(int row, int column) const { return m_document.read(row, column).toString(); }
    QVariant value(int row, int column) const { return m_document.read(row, column); }
    bool hasCell(int row, int column) const { return m_document.cellAt(row, column) != nullptr; }
    QXlsx::Format format(int row, int column) const
    {
        const QXlsx::Cell* cell = m_document.cellAt(row, column);
        return cell ? cell->format() : QXlsx::Format();
    }
    QXlsx::CellRange extent() const { return m_document.dimension(); }
    QStringList merges() const
    {
        QStringList ranges;
        for (const QXlsx::CellRange& range : m_document.currentWorksheet()->mergedCells())
            ranges.append(range.toString());
        return ranges;
    }
    double rowHeight(int row) { return m_document.rowHeight(row); }

    // Texts of columns 1 .. columns of row.
    QStringList rowTexts(int row, int columns) const
    {
        QStringList texts;
        for (int column = 1; column <= columns; ++column)
            texts.append(text(row, column));
        return texts;
    }

private:
    mutable QXlsx::Document m_document;
};

inline bool hasThinBorderAllRound(const QXlsx::Format& format)
{
    return format.leftBorderStyle() == QXlsx::Format::BorderThin
           && format.rightBorderStyle() == QXlsx::Format::BorderThin
           && format.topBorderStyle() == QXlsx::Format::BorderThin
           && format.bottomBorderStyle() == QXlsx::Format::BorderThin;
}

inline bool isCentred(const QXlsx::Format& format)
{
    return format.horizontalAlignment() == QXlsx::Format::AlignHCenter
           && format.verticalAlignment() == QXlsx::Format::AlignVCenter;
}

// Centred, thin borders, no fill: titles and data cells.
inline void expectCentredCell(const QXlsx::Format& format)
{
    EXPECT_TRUE(isCentred(format));
    EXPECT_TRUE(hasThinBorderAllRound(format));
    EXPECT_EQ(format.fillPattern(), QXlsx::Format::PatternNone);
}

// Centred, thin borders, solid light grey: header cells.
inline void expectGreyHeaderCell(const QXlsx::Format& format)
{
    EXPECT_TRUE(isCentred(format));
    EXPECT_TRUE(hasThinBorderAllRound(format));
    EXPECT_EQ(format.fillPattern(), QXlsx::Format::PatternSolid);
    const QColor grey = format.fillPattern() == QXlsx::Format::PatternSolid
                            ? format.patternForegroundColor()
                            : QColor();
    EXPECT_EQ(grey.name(), QStringLiteral("#cccccc"));
}
