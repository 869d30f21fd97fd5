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
    EXPECT_EQ(doc.sheetNames(), QStringList{QStringLiteral("Sheet1")});
    ASSERT_NE(doc.currentWorksheet(), nullptr);
    EXPECT_EQ(doc.currentWorksheet()->sheetName(), QStringLiteral("Sheet1"));

    Document merged, sized, widened;   // merges and sizes create it too
    merged.mergeCells(CellRange("A1:B1"));
    sized.setRowHeight(1, 20);
    widened.setColumnWidth(1, 20);
    for (Document* other : {&merged, &sized, &widened})
        EXPECT_EQ(other->sheetNames(), QStringList{QStringLiteral("Sheet1")});
}

TEST(DocumentSheets, AddSheetNamesAndMakesItCurrent)
{
    Document doc;
    EXPECT_TRUE(doc.addSheet(QStringLiteral("Data")));
    EXPECT_TRUE(doc.addSheet());
    EXPECT_TRUE(doc.addSheet(QStringLiteral("  ")));
    EXPECT_EQ(doc.sheetNames(), (QStringList{QStringLiteral("Data"), QStringLiteral("Sheet2"), QStringLiteral("Sheet3")}));
    EXPECT_EQ(doc.currentSheet()->sheetName(), QStringLiteral("Sheet3"));
    doc.write(1, 1, QStringLiteral("on Sheet3"));
    EXPECT_TRUE(doc.selectSheet(QStringLiteral("data")));
    EXPECT_EQ(doc.cellAt(1, 1), nullptr);
    EXPECT_TRUE(doc.selectSheet(QStringLiteral("Sheet3")));
    EXPECT_EQ(doc.read(1, 1), QVariant(QStringLiteral("on Sheet3")));
    EXPECT_FALSE(doc.selectSheet(QStringLiteral("missing")));
}

TEST(DocumentSheets, RefusesNamesExcelRefuses)
{
    Document doc;
    ASSERT_TRUE(doc.addSheet(QStringLiteral("Data")));
    for (const QString& name : {QStringLiteral("DATA"), QString(32, QLatin1Char('x')),
                                QStringLiteral("a[b"), QStringLiteral("a]b"), QStringLiteral("a:b"),
                                QStringLiteral("a*b"), QStringLiteral("a?b"), QStringLiteral("a/b"),
                                QStringLiteral("a\\b"), QStringLiteral("'quoted"), QStringLiteral("quoted'"),
                                QStringLiteral("tab\there")})
        EXPECT_FALSE(doc.addSheet(name)) << qPrintable(name);
    EXPECT_TRUE(doc.addSheet(QString(31, QLatin1Char('x'))));
    EXPECT_TRUE(doc.addSheet(QStringLiteral("it's fine")));
    EXPECT_FALSE(doc.addSheet(QStringLiteral("Chart"), AbstractSheet::ST_ChartSheet));
    EXPECT_EQ(doc.sheetNames().size(), 3);
}

TEST(DocumentSheets, RenameAndDelete)
{
    Document doc;
    doc.addSheet(QStringLiteral("One"));
    doc.addSheet(QStringLiteral("Two"));
    doc.addSheet(QStringLiteral("Three"));
    EXPECT_FALSE(doc.renameSheet(QStringLiteral("One"), QStringLiteral("two")));
    EXPECT_TRUE(doc.renameSheet(QStringLiteral("One"), QStringLiteral("ONE")));
    EXPECT_FALSE(doc.renameSheet(QStringLiteral("missing"), QStringLiteral("x")));
    EXPECT_FALSE(doc.renameSheet(QStringLiteral("Two"), QStringLiteral("bad/name")));
    EXPECT_TRUE(doc.deleteSheet(QStringLiteral("Three")));   // the current one
    EXPECT_EQ(doc.currentSheet()->sheetName(), QStringLiteral("Two"));
    EXPECT_TRUE(doc.deleteSheet(QStringLiteral("ONE")));
    EXPECT_EQ(doc.currentSheet()->sheetName(), QStringLiteral("Two"));
    EXPECT_FALSE(doc.deleteSheet(QStringLiteral("ONE")));
    EXPECT_EQ(doc.sheetNames(), QStringList{QStringLiteral("Two")});

    // The last visible sheet stays while hidden ones remain.
    doc.addSheet(QStringLiteral("Hidden"));
    doc.sheet(QStringLiteral("Hidden"))->setSheetState(AbstractSheet::SS_Hidden);
    EXPECT_FALSE(doc.deleteSheet(QStringLiteral("Two")));
    EXPECT_TRUE(doc.deleteSheet(QStringLiteral("Hidden")));
    // Writing after deleting every sheet starts Sheet1 again.
    doc.write(1, 1, 1);
    ASSERT_TRUE(doc.deleteSheet(QStringLiteral("Two")));
    EXPECT_EQ(doc.currentSheet(), nullptr);
    EXPECT_TRUE(doc.write(2, 2, 2));
    EXPECT_EQ(doc.sheetNames(), QStringList{QStringLiteral("Sheet1")});
    EXPECT_EQ(doc.cellAt(1, 1), nullptr);
}

TEST(DocumentSave, SaveWritesToTheOpenedPathAndFailsWithoutOne)
{
    Document unnamed;
    unnamed.write(1, 1, 1);
    EXPECT_FALSE(unnamed.save());
    EXPECT_FALSE(unnamed.errorString().isEmpty());

    QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("new.xlsx"));
    Document doc(path);
    doc.write(1, 1, QStringLiteral("x"));
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
    const QString folder = dir.filePath(QStringLiteral("folder.xlsx"));
    ASSERT_TRUE(QDir().mkpath(folder));
    EXPECT_FALSE(doc.saveAs(folder));
    EXPECT_FALSE(doc.errorString().isEmpty());
    EXPECT_TRUE(QFileInfo(folder).isDir());
    EXPECT_FALSE(doc.saveAs(dir.filePath(QStringLiteral("no/such/folder/book.xlsx"))));
    EXPECT_EQ(QDir(dir.path()).entryList(QDir::Files), QStringList());
}
