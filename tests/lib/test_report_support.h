#pragma once

// Reading report workbooks back as a user sees them.

#include "libtesting.h"

#include <QCoreApplication>
#include <QTranslator>

#include <memory>

namespace reporttest {

// Prefixes every text translated in the "QObject" context with "~", so a test can tell
// translated headers from copied data.
class MarkingTranslator : public QTranslator
{
public:
    MarkingTranslator() { QCoreApplication::installTranslator(this); }
    ~MarkingTranslator() override { QCoreApplication::removeTranslator(this); }
    bool isEmpty() const override { return false; }
    QString translate(const char* context, const char* source, const char*, int) const override
    {
        return qstrcmp(context, "QObject") == 0 ? "~" + QString::fromLatin1(source) : QString();
    }
};

class ReportTest : public LibraryTest
{
protected:
    QString unwritablePath() const { return path(QStringLiteral("no/dir.xlsx")); }

    void open(const QString& file) { m_book = std::make_unique<QXlsx::Document>(file); }

    // The texts of columns 1 to columns of row; "-" where no cell is stored, "?" for a
    // cell that is not a centred, bordered text cell.
    QStringList row(int number, int columns) const
    {
        QStringList texts;
        for (int column = 1; column <= columns; ++column) {
            const QXlsx::Cell* cell = m_book->cellAt(number, column);
            texts << (!cell ? QStringLiteral("-")
                            : isCentredText(*cell) ? cell->value().toString()
                                                   : QStringLiteral("?"));
        }
        return texts;
    }

    static bool isCentredText(const QXlsx::Cell& cell)
    {
        const QXlsx::Format format = cell.format();
        return cell.cellType() == QXlsx::Cell::StringType
            && format.horizontalAlignment() == QXlsx::Format::AlignHCenter
            && format.verticalAlignment() == QXlsx::Format::AlignVCenter
            && format.leftBorderStyle() == QXlsx::Format::BorderThin
            && format.bottomBorderStyle() == QXlsx::Format::BorderThin;
    }

    std::unique_ptr<QXlsx::Document> m_book;
};

} // namespace reporttest
