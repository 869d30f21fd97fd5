// What the engine reads agrees with what openpyxl reads: the Excel corpus, a workbook
// written by openpyxl, and the same workbook saved again by LibreOffice.

#include "test_support.h"

#include "xlsxdocument.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QTemporaryDir>

#include <cmath>

using namespace QXlsx;
using namespace xlsxtest;

namespace {

// openpyxl's values of the active sheet of each file, keyed by path.
QJsonObject openpyxlValues(const QStringList& paths)
{
    QString error;
    const QByteArray json = runPython(QStringList{"dump_active_values.py"} + paths, &error, 120000);
    EXPECT_TRUE(error.isEmpty()) << error.toStdString();
    return QJsonDocument::fromJson(json).object();
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

    for (const QJsonValue& entry : cells) {
        const QJsonArray e = entry.toArray();
        const Cell* cell = sheet->cellAt(e[0].toInt(), e[1].toInt());
        const QVariant value = cell ? cell->value() : QVariant();
        const QVariant want = e[3].toVariant();
        const bool same = e[2].toString() == "n"
            ? value.type() == QVariant::Double && std::abs(value.toDouble() - want.toDouble()) <= 1e-9 * qMax(1.0, std::abs(want.toDouble()))
            : value.type() == (e[2].toString() == "b" ? QVariant::Bool : QVariant::String) && value == want;
        if (!same)
            return QStringLiteral("%1: engine %2, openpyxl %3").arg(CellReference(e[0].toInt(), e[1].toInt()).toString(),
                                                                   value.toString(), want.toString());
    }
    // Nothing more than openpyxl found: count the engine's cells with values.
    int stored = 0;
    const CellRange box = sheet->dimension();
    if (box.isValid() && qint64(box.rowCount()) * box.columnCount() <= 1000000) {
        for (int row = box.firstRow(); row <= box.lastRow(); ++row)
            for (int column = box.firstColumn(); column <= box.lastColumn(); ++column)
                if (const Cell* cell = sheet->cellAt(row, column); cell && !cell->value().isNull())
                    ++stored;
        if (stored != cells.size())
            return QStringLiteral("engine has %1 cells with values, openpyxl %2").arg(stored).arg(cells.size());
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
    if (!haveOpenpyxl())
        GTEST_SKIP() << "no python3 with openpyxl";
    const QJsonObject expected = openpyxlValues(paths);
    ASSERT_EQ(expected.size(), paths.size());

    QStringList disagreements;
    for (const QString& path : paths) {
        const QString difference = differences(path, expected.value(path).toObject());
        if (!difference.isEmpty())
            disagreements << QFileInfo(path).fileName() + ": " + difference;
    }
    EXPECT_TRUE(disagreements.isEmpty()) << disagreements.size() << " of " << paths.size() << " differ:\n"
                                         << disagreements.join('\n').toStdString();
}

TEST(ReadInterop, ReadsWorkbooksWrittenByOpenpyxlAndByLibreOffice)
{
    if (!haveOpenpyxl())
        GTEST_SKIP() << "no python3 with openpyxl";
    QTemporaryDir folder;
    const QString written = folder.filePath("openpyxl.xlsx");
    QString error;
    runPython({"make_reader_inputs.py", written}, &error);
    ASSERT_TRUE(QFileInfo::exists(written)) << error.toStdString();
    QStringList paths{written};
    if (haveOffice()) {
        EXPECT_TRUE(convertByOffice({written}, "xlsx:Calc MS Excel 2007 XML", folder.filePath("office"), &error))
            << error.toStdString();
        paths << folder.filePath("office/openpyxl.xlsx");
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
