// What the engine reads agrees with what openpyxl reads: the Excel corpus, a workbook
// written by openpyxl, and the same workbook saved again by LibreOffice.

#include "xlsxdocument.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QElapsedTimer>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QTemporaryDir>

#include <cmath>

using namespace QXlsx;

namespace {

const QString Python = QStringLiteral(VYGIS_PYTHON3);
const QString Interop = QStringLiteral(VYGIS_TEST_SOURCE_DIR "/interop/");

bool havePython()
{
    return !Python.isEmpty() && QFileInfo(Python).isExecutable();
}

QString run(const QString& program, const QStringList& arguments, int timeoutMs = 120000)
{
    QProcess process;
    process.start(program, arguments);
    if (!process.waitForFinished(timeoutMs) || process.exitCode() != 0)
        return QString();
    return QString::fromUtf8(process.readAllStandardOutput());
}

// openpyxl's values of the active sheet of each file, keyed by path.
QJsonObject openpyxlValues(const QStringList& paths)
{
    const QString json = run(Python, QStringList{Interop + "dump_active_values.py"} + paths);
    return QJsonDocument::fromJson(json.toUtf8()).object();
}

// What differs between the engine's active sheet and openpyxl's, or an empty text.
QString differences(const QString& path, const QJsonObject& expected)
{
    if (expected.contains("error"))
        return QStringLiteral("openpyxl: ") + expected.value("error").toString();
    Document doc(path);
    if (doc.currentSheet() && doc.currentSheet()->sheetName() != expected.value("sheet").toString())
        return QStringLiteral("active sheet %1, openpyxl %2").arg(doc.currentSheet()->sheetName(), expected.value("sheet").toString());
    const Worksheet* sheet = doc.currentWorksheet();
    const QJsonArray cells = expected.value("cells").toArray();
    if (!sheet)
        return cells.isEmpty() ? QString() : QStringLiteral("no worksheet, openpyxl has %1 cells").arg(cells.size());

    int seen = 0;
    for (const QJsonValue& entry : cells) {
        const QJsonArray e = entry.toArray();
        const int row = e[0].toInt();
        const int column = e[1].toInt();
        const QString kind = e[2].toString();
        const Cell* cell = sheet->cellAt(row, column);
        const QVariant value = cell ? cell->value() : QVariant();
        const QString where = CellReference(row, column).toString();
        bool same = false;
        if (kind == "n")
            same = value.type() == QVariant::Double
                && std::abs(value.toDouble() - e[3].toDouble()) <= 1e-9 * qMax(1.0, std::abs(e[3].toDouble()));
        else if (kind == "b")
            same = value.type() == QVariant::Bool && value.toBool() == e[3].toBool();
        else
            same = value.type() == QVariant::String && value.toString() == e[3].toString();
        if (!same)
            return QStringLiteral("%1: engine %2, openpyxl %3").arg(where, value.toString(), e[3].toVariant().toString());
        ++seen;
    }
    // Nothing more than openpyxl found: count the engine's cells with values.
    int stored = 0;
    const CellRange box = sheet->dimension();
    if (box.isValid() && qint64(box.rowCount()) * box.columnCount() <= 1000000) {
        for (int row = box.firstRow(); row <= box.lastRow(); ++row)
            for (int column = box.firstColumn(); column <= box.lastColumn(); ++column)
                if (const Cell* cell = sheet->cellAt(row, column); cell && !cell->value().isNull())
                    ++stored;
        if (stored != seen)
            return QStringLiteral("engine has %1 cells with values, openpyxl %2").arg(stored).arg(seen);
    }
    return QString();
}

} // namespace

TEST(ReadInterop, EveryExcelCorpusFileOpensAndAgreesWithOpenpyxl)
{
    const QDir corpus(QStringLiteral(VYGIS_CORPUS_DIR "/excel-made"));
    QStringList paths;
    for (const QString& name : corpus.entryList({"*.xlsx"}, QDir::Files, QDir::Name))
        paths << corpus.filePath(name);
    if (paths.isEmpty())
        GTEST_SKIP() << "no corpus at " << VYGIS_CORPUS_DIR;
    if (!havePython())
        GTEST_SKIP() << "no python3 with openpyxl";
    const QJsonObject expected = openpyxlValues(paths);
    ASSERT_EQ(expected.size(), paths.size());

    QStringList disagreements;
    qint64 slowest = 0;
    for (const QString& path : paths) {
        QElapsedTimer timer;
        timer.start();
        const QString difference = differences(path, expected.value(path).toObject());
        slowest = qMax(slowest, timer.elapsed());
        if (!difference.isEmpty())
            disagreements << QFileInfo(path).fileName() + ": " + difference;
    }
    EXPECT_LT(slowest, 2000);
    EXPECT_TRUE(disagreements.isEmpty()) << disagreements.size() << " of " << paths.size() << " differ:\n"
                                         << disagreements.join('\n').toStdString();
}

TEST(ReadInterop, ReadsWorkbooksWrittenByOpenpyxlAndByLibreOffice)
{
    if (!havePython())
        GTEST_SKIP() << "no python3 with openpyxl";
    QTemporaryDir folder;
    const QString written = folder.filePath("openpyxl.xlsx");
    run(Python, {Interop + "make_reader_inputs.py", written});
    ASSERT_TRUE(QFileInfo::exists(written));
    QStringList paths{written};

    const QString soffice = QStringLiteral(VYGIS_SOFFICE);
    if (!soffice.isEmpty() && QFileInfo(soffice).isExecutable()) {
        // A private profile, so that a desktop session of LibreOffice is never in the way.
        const QString converted = folder.filePath("libreoffice");
        run(soffice, {"-env:UserInstallation=file://" + folder.filePath("profile"), "--headless",
                      "--convert-to", "xlsx:Calc MS Excel 2007 XML", "--outdir", converted, written}, 180000);
        const QString libreOffice = converted + "/openpyxl.xlsx";
        EXPECT_TRUE(QFileInfo::exists(libreOffice));
        if (QFileInfo::exists(libreOffice))
            paths << libreOffice;
    }
    const QJsonObject expected = openpyxlValues(paths);
    for (const QString& path : paths) {
        SCOPED_TRACE(path.toStdString());
        EXPECT_EQ(differences(path, expected.value(path).toObject()), QString());
        Document doc(path);
        ASSERT_NE(doc.currentWorksheet(), nullptr);
        EXPECT_EQ(doc.currentWorksheet()->mergedCells(), QList<CellRange>{CellRange("B5:C6")});
        EXPECT_EQ(doc.currentWorksheet()->rowHeight(5), 30.0);
        EXPECT_NEAR(doc.currentWorksheet()->columnWidth(2), 25.0, 1.0);
        const Format bold = doc.cellAt(5, 1)->format();
        EXPECT_TRUE(bold.fontBold());
        EXPECT_EQ(bold.horizontalAlignment(), Format::AlignHCenter);
        EXPECT_EQ(bold.leftBorderStyle(), Format::BorderThin);
        EXPECT_EQ(bold.fillPattern(), Format::PatternSolid);
        EXPECT_EQ(bold.patternForegroundColor(), QColor(255, 255, 0));
        EXPECT_EQ(doc.read(3, 1), QVariant(QDate(2024, 1, 15)));
        EXPECT_EQ(doc.read(3, 3), QVariant(QTime(6, 0)));
    }
}
