#pragma once

// Shared by the library's tests: a folder per test that fails the test when a host object
// or reference outlives it, workbooks written cell by cell with the engine, the style of a
// cell as openpyxl names it, and the real programs (openpyxl, LibreOffice) that write and
// read workbooks beside the library.

#include "test_reference_balance.h"
#include "vygisutil.h"
#include "xlsxdocument.h"

#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <functional>
#include <ostream>

// Failing comparisons show texts, not bytes.
inline void PrintTo(const QString& text, std::ostream* out)
{
    *out << '"' << text.toStdString() << '"';
}

// A cell's style in the words of openpyxl: horizontal and vertical alignment, the colour
// of a solid fill ("pattern" for another) and the left, right, top and bottom borders, ""
// where there is none.
inline QStringList styleOf(const QXlsx::Format& format)
{
    const auto centre = [](bool centred) { return centred ? QStringLiteral("center") : QString(); };
    const auto thin = [](QXlsx::Format::BorderStyle style) {
        return style == QXlsx::Format::BorderThin ? QStringLiteral("thin") : QString();
    };
    const bool solid = format.fillPattern() == QXlsx::Format::PatternSolid;
    return {centre(format.horizontalAlignment() == QXlsx::Format::AlignHCenter),
            centre(format.verticalAlignment() == QXlsx::Format::AlignVCenter),
            solid ? "FF" + format.patternForegroundColor().name().mid(1).toUpper()
                  : format.fillPattern() == QXlsx::Format::PatternNone ? QString() : QStringLiteral("pattern"),
            thin(format.leftBorderStyle()), thin(format.rightBorderStyle()),
            thin(format.topBorderStyle()), thin(format.bottomBorderStyle())};
}

class LibraryTest : public ReferenceBalanceTest
{
protected:
    QString path(const QString& name = QStringLiteral("book.xlsx")) const { return m_dir.filePath(name); }

    // A file holding content, which need not be a workbook.
    QString fileWith(const QByteArray& content, const QString& name = QStringLiteral("notes.xlsx")) const
    {
        QFile out(path(name));
        EXPECT_TRUE(out.open(QIODevice::WriteOnly | QIODevice::Truncate));
        out.write(content);
        return out.fileName();
    }

    static QByteArray bytesOf(const QString& file)
    {
        QFile in(file);
        return in.open(QIODevice::ReadOnly) ? in.readAll() : QByteArray();
    }

    // A workbook saved by the engine after fill has written its cells; without a name,
    // each call saves a file of its own.
    QString workbook(const std::function<void(QXlsx::Document&)>& fill, QString name = QString())
    {
        if (name.isEmpty())
            name = QStringLiteral("book%1.xlsx").arg(++m_saved);
        QXlsx::Document document;
        fill(document);
        EXPECT_TRUE(document.saveAs(path(name)));
        return path(name);
    }

    // In rows(): a cell stored with a (bold) format but without a value.
    static inline const QString StoredBlank = QStringLiteral("<stored blank>");

    // A sheet whose rows hold the given values from A1; a null value (a null QString too)
    // leaves its cell out, while "" is a stored text.
    QString rows(const QList<QVariantList>& values, const QString& name = QString())
    {
        return workbook([&](QXlsx::Document& document) {
            QXlsx::Format bold;
            bold.setFontBold(true);
            for (int r = 0; r < values.size(); ++r) {
                for (int c = 0; c < values[r].size(); ++c) {
                    if (values[r][c].userType() == QMetaType::QString && values[r][c].toString() == StoredBlank)
                        document.write(r + 1, c + 1, QVariant(), bold);
                    else if (!values[r][c].isNull())
                        document.write(r + 1, c + 1, values[r][c]);
                }
            }
        }, name);
    }

    // Runs program; its standard output, or a null text with the reason for a skip kept
    // (see SKIP_IF_TOOL_FAILED) once it or a tool before it failed.
    QString run(const QString& program, const QStringList& arguments)
    {
        if (!m_skip.isEmpty())   // a tool before this one failed
            return QString();
        if (program.isEmpty()) {
            m_skip = QStringLiteral("no such program here");
            return QString();
        }
        QProcess process;
        process.start(program, arguments);
        if (!process.waitForFinished(180000) || process.exitCode() != 0) {
            m_skip = program + ": " + QString::fromLocal8Bit(process.readAllStandardError());
            return QString();
        }
        return QString::fromUtf8(process.readAllStandardOutput()).trimmed();
    }

    // Has openpyxl run script on a new workbook wb with its active sheet ws, then save
    // it as file.
    QString python(const QString& script, const QString& file)
    {
        return run(QStringLiteral(VYGIS_PYTHON3), {"-c", "import sys, openpyxl\nwb = openpyxl.Workbook()\n"
                   "ws = wb.active\n" + script + "wb.save(sys.argv[1])\n", file});
    }

    // Has LibreOffice open file and save it as a workbook in the folder "office", which
    // recalculates every formula; returns the new file's path.
    QString resavedByOffice(const QString& file)
    {
        const QString out = path(QStringLiteral("office"));
        run(QStringLiteral(VYGIS_SOFFICE),
            {"-env:UserInstallation=file://" + path(QStringLiteral("profile")), "--headless", "--convert-to",
             "xlsx:Calc MS Excel 2007 XML", "--outdir", out, file});
        return out + QLatin1Char('/') + QFileInfo(file).completeBaseName() + QStringLiteral(".xlsx");
    }

    QTemporaryDir m_dir;
    QString m_skip;

private:
    int m_saved = 0;
};

#define SKIP_IF_TOOL_FAILED() \
    if (!m_skip.isEmpty()) GTEST_SKIP() << m_skip.toStdString()
