#pragma once

// Shared by the import tests: a folder per test, workbooks written with the engine or
// by other programs, and a closer for the message box an import may show.

#include "test_reference_balance.h"
#include "tsbase.h"
#include "xlsxdocument.h"

#include <QApplication>
#include <QFileInfo>
#include <QMessageBox>
#include <QProcess>
#include <QPushButton>
#include <QTemporaryDir>
#include <QTimer>

#include <gtest/gtest.h>

#include <functional>
#include <ostream>

// The same printer as the export tests', so that failures show texts.
inline void PrintTo(const QString& text, std::ostream* out)
{
    *out << '"' << text.toStdString() << '"';
}

namespace importtest {

// What a message box showed before the test closed it.
struct ShownMessage
{
    QString title;
    QString text;
    QMessageBox::Icon icon = QMessageBox::NoIcon;
    QString buttonText;
};

// Closes every message box that opens while it lives, through the button a user would
// press, and remembers what each one showed.
class MessageBoxCloser
{
public:
    MessageBoxCloser()
    {
        QObject::connect(&m_timer, &QTimer::timeout, [this] { closeOpenBoxes(); });
        m_timer.start(5);
    }

    const QList<ShownMessage>& shown() const { return m_shown; }

private:
    void closeOpenBoxes()
    {
        for (QWidget* widget : QApplication::topLevelWidgets()) {
            auto* box = qobject_cast<QMessageBox*>(widget);
            if (!box || !box->isVisible())
                continue;
            QAbstractButton* close = box->button(QMessageBox::Close);
            m_shown.append({box->windowTitle(), box->text(), box->icon(),
                            close ? close->text() : QString()});
            if (close)
                close->click();
            else
                box->reject();
        }
    }

    QTimer m_timer;
    QList<ShownMessage> m_shown;
};

class ImportTest : public ReferenceBalanceTest
{
protected:
    QString path(const QString& name = QStringLiteral("import.xlsx")) const
    {
        return m_dir.filePath(name);
    }

    // A workbook saved by the engine after fill has written its cells.
    QString workbook(const std::function<void(QXlsx::Document&)>& fill,
                     const QString& name = QStringLiteral("import.xlsx")) const
    {
        QXlsx::Document document;
        fill(document);
        EXPECT_TRUE(document.saveAs(path(name)));
        return path(name);
    }

    // A sheet whose rows hold the given values from A1, a null QVariant leaving a cell out.
    QString rows(const QList<QVariantList>& values,
                 const QString& name = QStringLiteral("import.xlsx")) const
    {
        return workbook([&](QXlsx::Document& document) {
            for (int r = 0; r < values.size(); ++r) {
                for (int c = 0; c < values[r].size(); ++c) {
                    if (!values[r][c].isNull())
                        document.write(r + 1, c + 1, values[r][c]);
                }
            }
        }, name);
    }

    // Runs an openpyxl script with the file as sys.argv[1]; false means the test should
    // be skipped (see skipReason).
    bool python(const QString& script, const QString& file)
    {
        return run(QStringLiteral(VYGIS_PYTHON3), {"-c", "import sys, openpyxl\n" + script, file});
    }

    // Has LibreOffice open file and save it again as a workbook in the folder
    // "office", which recalculates every formula; returns the new file's path.
    QString resavedByOffice(const QString& file)
    {
        const QString out = m_dir.filePath(QStringLiteral("office"));
        const QString profile = QStringLiteral("file://") + m_dir.filePath(QStringLiteral("profile"));
        if (!run(QStringLiteral(VYGIS_SOFFICE),
                 {"-env:UserInstallation=" + profile, "--headless", "--convert-to",
                  "xlsx:Calc MS Excel 2007 XML", "--outdir", out, file}))
            return QString();
        return out + QLatin1Char('/') + QFileInfo(file).fileName();
    }

    QString skipReason() const { return m_skip; }

private:
    bool run(const QString& program, const QStringList& arguments)
    {
        if (program.isEmpty()) {
            m_skip = QStringLiteral("no such program here");
            return false;
        }
        QProcess process;
        process.start(program, arguments);
        if (!process.waitForFinished(180000) || process.exitCode() != 0) {
            m_skip = program + ": " + QString::fromLocal8Bit(process.readAllStandardError());
            return false;
        }
        return true;
    }

    QTemporaryDir m_dir;
    QString m_skip;
};

} // namespace importtest

#define SKIP_UNLESS_TOOL_RAN(ran) \
    if (!(ran)) GTEST_SKIP() << skipReason().toStdString()
