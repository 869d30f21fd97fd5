#include "xlsxdocument.h"

#include <QColor>

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

using namespace QXlsx;

TEST(WorksheetValues, TextStaysTextWhateverItLooksLike)
{
    Document doc;
    const QString texts[] = {QStringLiteral("=1+1"), QStringLiteral("007"),
                             QStringLiteral("http://example.com"), QStringLiteral("2024-01-02"),
                             QStringLiteral("TRUE"), QStringLiteral("#N/A"), QString()};
    int row = 1;
    for (const QString& text : texts) {
        ASSERT_TRUE(doc.write(row, 1, text));
        const Cell* cell = doc.cellAt(row++, 1);
        ASSERT_NE(cell, nullptr);
        EXPECT_EQ(cell->cellType(), Cell::StringType) << qPrintable(text);
        EXPECT_EQ(cell->value(), QVariant(text));
        EXPECT_FALSE(cell->hasFormula());
    }
}

TEST(WorksheetValues, NumbersBooleansAndOtherTypesAndNonFiniteNumbersAsNumErrors)
{
    Document doc;
    doc.write(1, 1, 42);
    doc.write(1, 2, 2.5);
    doc.write(1, 3, qint64(1) << 40);
    doc.write(1, 4, 7u);
    doc.write(1, 5, 1.5f);
    doc.write(1, 6, true);
    doc.write(1, 7, QByteArray("bytes"));
    doc.write(1, 8, std::numeric_limits<double>::quiet_NaN());
    doc.write(1, 9, std::numeric_limits<double>::infinity());
    EXPECT_EQ(doc.read(1, 1), QVariant(42.0));
    EXPECT_EQ(doc.read(1, 2), QVariant(2.5));
    EXPECT_EQ(doc.read(1, 3), QVariant(double(qint64(1) << 40)));
    EXPECT_EQ(doc.read(1, 4), QVariant(7.0));
    EXPECT_EQ(doc.read(1, 5), QVariant(1.5));
    EXPECT_EQ(doc.cellAt(1, 6)->cellType(), Cell::BooleanType);
    EXPECT_EQ(doc.read(1, 6), QVariant(true));
    EXPECT_EQ(doc.read(1, 7), QVariant(QStringLiteral("bytes")));
    EXPECT_EQ(doc.cellAt(1, 8)->cellType(), Cell::ErrorType);
    EXPECT_EQ(doc.read(1, 9), QVariant(QStringLiteral("#NUM!")));
}

TEST(WorksheetValues, NullVariantIsAFormattedBlankAndOverwritingReplacesValueAndFormat)
{
    Document doc;
    Format bordered;
    bordered.setBorderStyle(Format::BorderThin);
    ASSERT_TRUE(doc.write(2, 2, QVariant(), bordered));
    const Cell* cell = doc.cellAt(2, 2);
    ASSERT_NE(cell, nullptr);
    EXPECT_EQ(cell->cellType(), Cell::BlankType);
    EXPECT_FALSE(cell->value().isValid());
    EXPECT_EQ(cell->format(), bordered);
    doc.write(2, 2, 3);
    EXPECT_EQ(doc.read(2, 2), QVariant(3.0));
    EXPECT_TRUE(doc.cellAt(2, 2)->format().isEmpty());
}

TEST(WorksheetValues, CellsWrittenOutOfOrderAreFound)
{
    Document doc;
    for (int cell : {55, 13, 51, 32, 11})
        doc.write(cell / 10, cell % 10, cell);
    for (int cell : {11, 13, 32, 51, 55})
        EXPECT_EQ(doc.read(cell / 10, cell % 10), QVariant(double(cell)));
    EXPECT_EQ(doc.cellAt(5, 3), nullptr);
    EXPECT_EQ(doc.cellAt(4, 1), nullptr);
}

TEST(WorksheetDates, DatesGetADateFormatUnlessTheCallerGaveOneAndReadAsTimeDateOrDateTime)
{
    Document doc;
    doc.write(1, 1, QDate(2024, 2, 29));
    const Cell* date = doc.cellAt(1, 1);
    EXPECT_EQ(date->value(), QVariant(45351.0));
    EXPECT_TRUE(date->isDateTime());
    EXPECT_EQ(date->format().numberFormatIndex(), 14);
    EXPECT_EQ(doc.read(1, 1), QVariant(QDate(2024, 2, 29)));

    Format own;
    own.setNumberFormat(QStringLiteral("dd.mm.yyyy"));
    doc.write(1, 2, QDate(2024, 2, 29), own);
    EXPECT_EQ(doc.cellAt(1, 2)->format().numberFormat(), QStringLiteral("dd.mm.yyyy"));

    const QDateTime stamp(QDate(2021, 7, 3), QTime(13, 14, 15));
    doc.write(2, 1, stamp);
    doc.write(2, 2, QTime(6, 30));
    EXPECT_EQ(doc.read(2, 1), QVariant(stamp));
    EXPECT_EQ(doc.cellAt(2, 1)->format().numberFormat(), QStringLiteral("yyyy-mm-dd hh:mm:ss"));
    EXPECT_EQ(doc.read(2, 2), QVariant(QTime(6, 30)));
    EXPECT_EQ(doc.cellAt(2, 2)->value(), QVariant(0.2708333333333333));
    EXPECT_EQ(doc.cellAt(2, 2)->dateTime().date().year(), 1899);
}

TEST(WorksheetDates, TheDateSystemDecidesTheSerialAndOnlyDateFormatsMakeDates)
{
    Document doc;
    doc.write(1, 1, 45351);
    EXPECT_FALSE(doc.cellAt(1, 1)->isDateTime());
    EXPECT_FALSE(doc.cellAt(1, 1)->dateTime().isValid());
    EXPECT_EQ(doc.read(1, 1), QVariant(45351.0));
    ASSERT_TRUE(doc.write(1, 2, QDate()));
    EXPECT_EQ(doc.cellAt(1, 2)->cellType(), Cell::BlankType);
    doc.setDate1904(true);
    doc.write(1, 3, QDate(1904, 1, 2));
    EXPECT_EQ(doc.cellAt(1, 3)->value(), QVariant(1.0));
    EXPECT_EQ(doc.read(1, 3), QVariant(QDate(1904, 1, 2)));
}

TEST(WorksheetDimension, CoversTheStoredCellsUpToTheGridEdgesAndNothingBeyond)
{
    Document doc;
    doc.addSheet();
    const CellRange empty = doc.dimension();
    EXPECT_FALSE(empty.isValid());
    EXPECT_EQ(empty.rowCount(), 0);
    EXPECT_EQ(empty.columnCount(), 0);
    EXPECT_LT(empty.lastRow(), 1);
    doc.write(7, 3, 1);
    doc.write(2, 9, 1);
    doc.write(4, 2, QVariant());   // a formatted blank counts as stored
    EXPECT_EQ(doc.dimension(), CellRange(2, 2, 7, 9));
    doc.setRowHeight(20, 30);      // a sized row without cells does not
    EXPECT_EQ(doc.dimension(), CellRange(2, 2, 7, 9));

    EXPECT_TRUE(doc.write(1048576, 16384, 1));
    EXPECT_TRUE(doc.write(CellReference("XFD1048576"), 2));
    EXPECT_EQ(doc.read(1048576, 16384), QVariant(2.0));
    const int outside[][2] = {{0, 1}, {1, 0}, {1048577, 1}, {1, 16385}};
    for (const auto& cell : outside)
        EXPECT_FALSE(doc.write(cell[0], cell[1], 1)) << cell[0] << "," << cell[1];
    EXPECT_FALSE(doc.write(CellReference("XFE1"), 1));
    EXPECT_EQ(doc.dimension(), CellRange(2, 2, 1048576, 16384));
}

TEST(WorksheetMerges, AcceptsDisjointRangesOnly)
{
    Document doc;
    EXPECT_TRUE(doc.mergeCells(CellRange("A1:C2")));
    EXPECT_TRUE(doc.mergeCells(CellRange("D1:D5")));
    EXPECT_FALSE(doc.mergeCells(CellRange("C2:E3")));   // overlaps both
    EXPECT_FALSE(doc.mergeCells(CellRange("B7")));      // a single cell
    EXPECT_FALSE(doc.mergeCells(CellRange()));
    EXPECT_FALSE(doc.mergeCells(CellRange(1, 1, 1048577, 2)));
    EXPECT_EQ(doc.currentWorksheet()->mergedCells(),
              (QList<CellRange>{CellRange("A1:C2"), CellRange("D1:D5")}));
    EXPECT_TRUE(doc.unmergeCells(CellRange("A1:C2")));
    EXPECT_FALSE(doc.unmergeCells(CellRange("A1:C2")));
    EXPECT_TRUE(doc.mergeCells(CellRange("B2:C3")));
}

TEST(WorksheetMerges, AFormatCoversEveryCellAndKeepsValues)
{
    Document doc;
    doc.write(1, 1, QStringLiteral("Title"));
    Format boxed;
    boxed.setBorderStyle(Format::BorderThin);
    boxed.setHorizontalAlignment(Format::AlignHCenter);
    ASSERT_TRUE(doc.mergeCells(CellRange("A1:C2"), boxed));
    for (int r = 1; r <= 2; ++r) {
        for (int c = 1; c <= 3; ++c) {
            const Cell* cell = doc.cellAt(r, c);
            ASSERT_NE(cell, nullptr);
            EXPECT_EQ(cell->format(), boxed);
        }
    }
    EXPECT_EQ(doc.read(1, 1), QVariant(QStringLiteral("Title")));
    EXPECT_EQ(doc.cellAt(2, 3)->cellType(), Cell::BlankType);
}

TEST(WorksheetMerges, AHugeFormattedMergeStaysSmall)
{
    Document doc;
    doc.write(5, 5, 1);
    Format bold;
    bold.setFontBold(true);
    ASSERT_TRUE(doc.mergeCells(CellRange(1, 1, 1048576, 16384), bold));
    EXPECT_EQ(doc.cellAt(1, 1)->format(), bold);
    EXPECT_EQ(doc.cellAt(5, 5)->format(), bold);
    EXPECT_EQ(doc.cellAt(2, 2), nullptr);
}

TEST(WorksheetSizes, RowHeightsAndColumnRangesThatSplitAndJoin)
{
    Document doc;
    EXPECT_TRUE(doc.setRowHeight(3, 30.5));
    EXPECT_EQ(doc.rowHeight(3), 30.5);
    EXPECT_EQ(doc.rowHeight(4), 15.0);
    EXPECT_TRUE(doc.setRowHeight(5, 7, 20));
    EXPECT_EQ(doc.rowHeight(6), 20.0);
    EXPECT_TRUE(doc.setRowHeight(3, 0));
    EXPECT_EQ(doc.rowHeight(3), 15.0);
    EXPECT_FALSE(doc.setRowHeight(0, 10));
    EXPECT_FALSE(doc.setRowHeight(1, -1));
    EXPECT_FALSE(doc.setRowHeight(1, 500));
    EXPECT_FALSE(doc.setRowHeight(1, std::nan("")));

    ASSERT_TRUE(doc.setColumnWidth(1, 10, 12));
    ASSERT_TRUE(doc.setColumnWidth(4, 6, 30));
    EXPECT_EQ(doc.columnWidth(3), 12.0);
    EXPECT_EQ(doc.columnWidth(4), 30.0);
    EXPECT_EQ(doc.columnWidth(6), 30.0);
    EXPECT_EQ(doc.columnWidth(7), 12.0);
    EXPECT_EQ(doc.columnWidth(11), 8.43);
    ASSERT_TRUE(doc.setColumnWidth(4, 6, 12));
    ASSERT_TRUE(doc.setColumnWidth(12, 14, 5));
    ASSERT_TRUE(doc.setColumnWidth(9, 13, 0));   // back to the default
    EXPECT_EQ(doc.columnWidth(8), 12.0);
    EXPECT_EQ(doc.columnWidth(9), 8.43);
    EXPECT_EQ(doc.columnWidth(13), 8.43);
    EXPECT_EQ(doc.columnWidth(14), 5.0);
    EXPECT_TRUE(doc.setColumnWidth(16384, 1));
    EXPECT_FALSE(doc.setColumnWidth(16385, 1));
    EXPECT_FALSE(doc.setColumnWidth(5, 4, 1));
    EXPECT_FALSE(doc.setColumnWidth(1, 256));
}
