// Workbooks made by Excel, rewritten by the library: the error table goes onto the
// active sheet and everything the engine does not model must still be there for
// openpyxl to find: images, charts and chart sheets, comments, tables, hyperlinks, data
// validation, conditional formats, defined names and the other sheets with their cells.
// LibreOffice is asked too: what it reads from the original and writes back, it must
// read from the rewritten workbook and write back the same.

#include "vygisutil.h"

#include "xlsxcellreference.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QTemporaryDir>
#include <QUrl>

#include <gtest/gtest.h>

namespace {

// Each holds what the name says, beside cells on an active worksheet.
const char* const CorpusFiles[] = {
    "table05.xlsx",           // an image, comments, a table and a hyperlink
    "hyperlink36.xlsx",       // an image and a chart in one drawing
    "chart_bar13.xlsx",       // two chart sheets among four worksheets
    "defined_name01.xlsx",    // defined names over three sheets
    "data_validation03.xlsx",
    "cond_format04.xlsx",
};

QJsonObject inventories(const QStringList& files, QString* error)
{
    QProcess python;
    python.start(VYGIS_PYTHON3, QStringList{VYGIS_TEST_SOURCE_DIR "/interop/inventory.py"} + files);
    if (!python.waitForFinished(300000) || python.exitCode() != 0) {
        *error = QString::fromUtf8(python.readAllStandardError());
        return {};
    }
    return QJsonDocument::fromJson(python.readAllStandardOutput()).object();
}

// The inventory without the cells the error table overwrote: A1 to C(rows) of the
// active sheet.
QJsonObject withoutErrorTable(QJsonObject inventory, int rows)
{
    const QString active = inventory.value("active").toString();
    QJsonObject sheets = inventory.value("worksheets").toObject();
    QJsonObject sheet = sheets.value(active).toObject();
    QJsonObject cells = sheet.value("cells").toObject();
    for (const QString& key : cells.keys()) {
        const QXlsx::CellReference at(key);
        if (at.row() <= rows && at.column() <= 3)
            cells.remove(key);
    }
    sheet.insert("cells", cells);
    sheets.insert(active, sheet);
    inventory.insert("worksheets", sheets);
    return inventory;
}

// The files as LibreOffice writes them again after reading them, in outDir.
QStringList savedByLibreOffice(const QStringList& files, const QString& outDir, QString* error)
{
    QTemporaryDir profile;
    QProcess soffice;
    soffice.start(QStringLiteral(VYGIS_SOFFICE),
                  QStringList{"-env:UserInstallation=" + QUrl::fromLocalFile(profile.path()).toString(),
                              "--headless", "--convert-to", "xlsx", "--outdir", outDir} + files);
    if (!soffice.waitForFinished(600000)) {
        soffice.kill();
        *error = QStringLiteral("soffice did not finish");
        return {};
    }
    QStringList saved;
    for (const QString& file : files) {
        saved << QDir(outDir).filePath(QFileInfo(file).fileName());
        if (!QFileInfo::exists(saved.last()))
            *error = QString::fromUtf8(soffice.readAllStandardError());
    }
    return error->isEmpty() ? saved : QStringList();
}

class KeptContent : public ::testing::Test
{
protected:
    void SetUp() override
    {
        const QString corpus = QStringLiteral(VYGIS_CORPUS_DIR "/excel-made");
        if (!QFileInfo(QStringLiteral(VYGIS_PYTHON3)).isExecutable() || !QDir(corpus).exists())
            GTEST_SKIP() << "needs openpyxl and the workbook corpus";
        const QStringList errors = {"Name is empty", "2", "roads", "Overlap", "1", "parcels"};
        QDir(m_dir.path()).mkdir("rewritten");
        for (const char* name : CorpusFiles) {
            m_originals << QDir(corpus).filePath(name);
            m_rewritten << m_dir.filePath(QStringLiteral("rewritten/") + name);
            ASSERT_TRUE(QFile::copy(m_originals.last(), m_rewritten.last()));
            QFile::setPermissions(m_rewritten.last(), QFileDevice::ReadOwner | QFileDevice::WriteOwner);
            ASSERT_TRUE(VyExcelUtil::exportErrorTable(errors, m_rewritten.last())) << name;
        }
    }

    // Compares what openpyxl finds in each rewritten file with what it finds in the
    // original, the cells of the error table aside.
    static void expectKept(const QStringList& originals, const QStringList& rewritten)
    {
        QString error;
        const QJsonObject before = inventories(originals, &error);
        ASSERT_FALSE(before.isEmpty()) << error.toStdString();
        const QJsonObject after = inventories(rewritten, &error);
        ASSERT_FALSE(after.isEmpty()) << error.toStdString();
        for (int i = 0; i < originals.size(); ++i) {
            SCOPED_TRACE(CorpusFiles[i]);
            const QJsonObject was = before.value(originals[i]).toObject();
            const QJsonObject is = after.value(rewritten[i]).toObject();
            const QJsonObject written = is.value("worksheets").toObject()
                                            .value(is.value("active").toString())
                                            .toObject().value("cells").toObject();
            EXPECT_EQ(written.value("A1").toString(), "Error Type");
            EXPECT_EQ(written.value("C3").toString(), "parcels");
            EXPECT_EQ(QJsonDocument(withoutErrorTable(is, 3)).toJson().toStdString(),
                      QJsonDocument(withoutErrorTable(was, 3)).toJson().toStdString());
        }
    }

    QTemporaryDir m_dir;
    QStringList m_originals;
    QStringList m_rewritten;
};

TEST_F(KeptContent, OpenpyxlFindsEverythingElseOfTheOriginal)
{
    expectKept(m_originals, m_rewritten);
}

TEST_F(KeptContent, LibreOfficeKeepsFromTheRewrittenWorkbookWhatItKeepsFromTheOriginal)
{
    if (!QFileInfo(QStringLiteral(VYGIS_SOFFICE)).isExecutable())
        GTEST_SKIP() << "LibreOffice (soffice) not found";
    QString error;
    const QStringList originals = savedByLibreOffice(m_originals, m_dir.filePath("office-original"), &error);
    ASSERT_FALSE(originals.isEmpty()) << error.toStdString();
    const QStringList rewritten = savedByLibreOffice(m_rewritten, m_dir.filePath("office-rewritten"), &error);
    ASSERT_FALSE(rewritten.isEmpty()) << error.toStdString();
    expectKept(originals, rewritten);
}

} // namespace
