#include "xlsxdocument.h"

#include <QDir>
#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace QXlsx;

TEST(DocumentSheets, ANewDocumentHasNoSheetUntilTheFirstWriteMergeOrSize)
{
    Document doc;
    EXPECT_TRUE(doc.sheetNames().isEmpty());
    EXPECT_EQ(doc.currentSheet(), nullptr);
    EXPECT_EQ(doc.cellAt(1, 1), nullptr);
    EXPECT_FALSE(doc.read(1, 1).isValid());
    EXPECT_FALSE(doc.write(0, 0, 1));          // refused writes create nothing
    EXPECT_TRUE(doc.sheetNames().isEmpty());
    EXPECT_TRUE(doc.write(1, 1, 1));
    EXPECT_EQ(doc.sheetNames(), QStringList{"Sheet1"});
    ASSERT_NE(doc.currentWorksheet(), nullptr);
    EXPECT_EQ(doc.currentWorksheet()->sheetName(), QStringLiteral("Sheet1"));

    Document merged, sized, widened;   // merges and sizes create it too
    merged.mergeCells(CellRange("A1:B1"));
    sized.setRowHeight(1, 20);
    widened.setColumnWidth(1, 20);
    for (Document* other : {&merged, &sized, &widened})
        EXPECT_EQ(other->sheetNames(), QStringList{"Sheet1"});
}

TEST(DocumentSheets, AddSheetNamesAndMakesItCurrent)
{
    Document doc;
    EXPECT_TRUE(doc.addSheet("Data"));
    EXPECT_TRUE(doc.addSheet());
    EXPECT_TRUE(doc.addSheet("  "));
    EXPECT_EQ(doc.sheetNames(), (QStringList{"Data", "Sheet2", "Sheet3"}));
    EXPECT_EQ(doc.currentSheet()->sheetName(), QStringLiteral("Sheet3"));
    doc.write(1, 1, "on Sheet3");
    EXPECT_TRUE(doc.selectSheet("data"));
    EXPECT_EQ(doc.cellAt(1, 1), nullptr);
    EXPECT_TRUE(doc.selectSheet("Sheet3"));
    EXPECT_EQ(doc.read(1, 1), QVariant("on Sheet3"));
    EXPECT_FALSE(doc.selectSheet("missing"));
}

TEST(DocumentSheets, RefusesNamesExcelRefuses)
{
    Document doc;
    ASSERT_TRUE(doc.addSheet("Data"));
    for (const QString& name : QStringList{"DATA", QString(32, 'x'), "a[b", "a]b", "a:b", "a*b", "a?b", "a/b",
                                           "a\\b", "'quoted", "quoted'", "tab\there"})
        EXPECT_FALSE(doc.addSheet(name)) << qPrintable(name);
    EXPECT_TRUE(doc.addSheet(QString(31, 'x')));
    EXPECT_TRUE(doc.addSheet("it's fine"));
    EXPECT_FALSE(doc.addSheet("Chart", AbstractSheet::ST_ChartSheet));
    EXPECT_EQ(doc.sheetNames().size(), 3);
}

TEST(DocumentSheets, RenameAndDelete)
{
    Document doc;
    for (const char* name : {"One", "Two", "Three"})
        doc.addSheet(name);
    EXPECT_FALSE(doc.renameSheet("One", "two"));
    EXPECT_TRUE(doc.renameSheet("One", "ONE"));
    EXPECT_FALSE(doc.renameSheet("missing", "x"));
    EXPECT_FALSE(doc.renameSheet("Two", "bad/name"));
    EXPECT_TRUE(doc.deleteSheet("Three"));   // the current one
    EXPECT_EQ(doc.currentSheet()->sheetName(), QStringLiteral("Two"));
    EXPECT_TRUE(doc.deleteSheet("ONE"));
    EXPECT_EQ(doc.currentSheet()->sheetName(), QStringLiteral("Two"));
    EXPECT_FALSE(doc.deleteSheet("ONE"));
    EXPECT_EQ(doc.sheetNames(), QStringList{"Two"});

    // The last visible sheet stays while hidden ones remain.
    doc.addSheet("Hidden");
    doc.sheet("Hidden")->setSheetState(AbstractSheet::SS_Hidden);
    EXPECT_FALSE(doc.deleteSheet("Two"));
    EXPECT_TRUE(doc.deleteSheet("Hidden"));
    // Writing after deleting every sheet starts Sheet1 again.
    doc.write(1, 1, 1);
    ASSERT_TRUE(doc.deleteSheet("Two"));
    EXPECT_EQ(doc.currentSheet(), nullptr);
    EXPECT_TRUE(doc.write(2, 2, 2));
    EXPECT_EQ(doc.sheetNames(), QStringList{"Sheet1"});
    EXPECT_EQ(doc.cellAt(1, 1), nullptr);
}

// The sheets of a workbook keep their cells in shared memory: thousands of small sheets,
// some deleted and others added in their place, each keep their own values and survive
// a save and an open.
TEST(DocumentSheets, ThousandsOfSmallSheetsKeepTheirOwnCellsThroughDeletesAndASave)
{
    const int count = 3000;
    Document doc;
    for (int i = 0; i < count; ++i) {
        ASSERT_TRUE(doc.addSheet(QStringLiteral("S%1").arg(i)));
        for (int column = 1; column <= 3; ++column)
            doc.write(1, column, QStringLiteral("%1-%2").arg(i).arg(column));
    }
    for (int i = 0; i < count; i += 2)
        ASSERT_TRUE(doc.deleteSheet(QStringLiteral("S%1").arg(i)));
    for (int i = 0; i < count; i += 2) {
        ASSERT_TRUE(doc.addSheet(QStringLiteral("N%1").arg(i)));
        doc.write(1, 1, -i);
    }
    QTemporaryDir dir;
    ASSERT_TRUE(doc.saveAs(dir.filePath("many.xlsx")));
    Document read(dir.filePath("many.xlsx"));
    ASSERT_EQ(read.sheetNames().size(), count);
    for (int i = 1; i < count; i += 2 * 97) {
        ASSERT_TRUE(read.selectSheet(QStringLiteral("S%1").arg(i)));
        EXPECT_EQ(read.read(1, 3), QStringLiteral("%1-3").arg(i));
        ASSERT_TRUE(read.selectSheet(QStringLiteral("N%1").arg(i - 1)));
        EXPECT_EQ(read.read(1, 1), QVariant(double(1 - i)));
        EXPECT_EQ(read.cellAt(1, 2), nullptr);
    }
}

TEST(DocumentSave, SaveWritesToTheOpenedPathAndFailsWithoutOne)
{
    Document unnamed;
    unnamed.write(1, 1, 1);
    EXPECT_FALSE(unnamed.save());
    EXPECT_FALSE(unnamed.errorString().isEmpty());

    QTemporaryDir dir;
    const QString path = dir.filePath("new.xlsx");
    Document doc(path);
    doc.write(1, 1, "x");
    EXPECT_TRUE(doc.save()) << qPrintable(doc.errorString());
    EXPECT_TRUE(QFileInfo(path).size() > 0);
    EXPECT_TRUE(doc.errorString().isEmpty());
}

TEST(DocumentSave, AnUnwritableTargetFailsAndLeavesWhatWasThere)
{
    QTemporaryDir dir;
    Document doc;
    doc.write(1, 1, 1);
    // A folder cannot be replaced by a file: the save fails and the folder stays.
    const QString folder = dir.filePath("folder.xlsx");
    ASSERT_TRUE(QDir().mkpath(folder));
    EXPECT_FALSE(doc.saveAs(folder));
    EXPECT_FALSE(doc.errorString().isEmpty());
    EXPECT_TRUE(QFileInfo(folder).isDir());
    EXPECT_FALSE(doc.saveAs(dir.filePath("no/such/folder/book.xlsx")));
    EXPECT_EQ(QDir(dir.path()).entryList(QDir::Files), QStringList());
}
