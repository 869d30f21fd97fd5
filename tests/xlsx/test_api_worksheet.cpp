#include "xlsxdocument.h"

#include <QColor>

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <tuple>
#include <utility>

using namespace QXlsx;

TEST(WorksheetValues, TextStaysTextWhateverItLooksLike)
{
    Document doc;
    for (const QString& text : QStringList{"=1+1", "007", "http://example.com", "2024-01-02", "TRUE", "#N/A", QString()}) {
        ASSERT_TRUE(doc.write(1, 1, text));
        const Cell* cell = doc.cellAt(1, 1);
        ASSERT_NE(cell, nullptr);
        EXPECT_EQ(cell->cellType(), Cell::StringType) << qPrintable(text);
        EXPECT_EQ(cell->value(), QVariant(text));
        EXPECT_FALSE(cell->hasFormula());
    }
}

TEST(WorksheetValues, NumbersBooleansAndOtherTypesAndNonFiniteNumbersAsNumErrors)
{
    const std::pair<QVariant, QVariant> values[] = {
        {42, 42.0}, {2.5, 2.5}, {qint64(1) << 40, double(qint64(1) << 40)}, {7u, 7.0}, {1.5f, 1.5}, {true, true},
        {QByteArray("bytes"), QStringLiteral("bytes")}, {std::numeric_limits<double>::quiet_NaN(), QStringLiteral("#NUM!")},
        {std::numeric_limits<double>::infinity(), QStringLiteral("#NUM!")}};
    Document doc;
    for (const auto& [written, read] : values) {
        doc.write(1, 1, written);
        EXPECT_EQ(doc.read(1, 1), read) << qPrintable(written.toString());
    }
    EXPECT_EQ(doc.cellAt(1, 1)->cellType(), Cell::ErrorType);
    doc.write(1, 1, true);
    EXPECT_EQ(doc.cellAt(1, 1)->cellType(), Cell::BooleanType);
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

// A cell finds its workbook from where its sheet keeps it, so a cell of one document must
// never answer with another's texts or formats, wherever in the sheet's memory it is:
// far into a large sheet, and in a row filled to the last column.
TEST(WorksheetValues, EveryCellAnswersFromItsOwnWorkbookInLargeSheets)
{
    Document first, second;
    Format bold;
    bold.setFontBold(true);
    const int rows = 20000;   // 200,000 cells: several megabytes of cell records
    for (int row = 1; row <= rows; ++row) {
        for (int column = 1; column <= 10; ++column) {
            first.write(row, column, QStringLiteral("first %1-%2").arg(row).arg(column));
            second.write(row, column, QStringLiteral("second %1-%2").arg(row).arg(column), bold);
        }
    }
    for (int column = 1; column <= MaxColumns; ++column)
        second.write(rows + 1, column, column);
    for (const int row : {1, rows / 2, rows}) {
        EXPECT_EQ(first.read(row, 10), QStringLiteral("first %1-10").arg(row));
        EXPECT_EQ(second.read(row, 10), QStringLiteral("second %1-10").arg(row));
        EXPECT_FALSE(first.cellAt(row, 10)->format().fontBold());
        EXPECT_TRUE(second.cellAt(row, 10)->format().fontBold());
    }
    EXPECT_EQ(second.read(rows + 1, MaxColumns), QVariant(double(MaxColumns)));
    EXPECT_EQ(second.read(rows + 1, 1), QVariant(1.0));
}

TEST(WorksheetDates, DatesGetADateFormatUnlessTheCallerGaveOneAndReadBackInEitherDateSystem)
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
    Format bordered;   // a format without a number format gets the date format added
    bordered.setBorderStyle(Format::BorderThin);
    doc.write(1, 3, QDate(2024, 2, 29), bordered);
    EXPECT_EQ(doc.cellAt(1, 3)->format().numberFormatIndex(), 14);
    EXPECT_EQ(doc.cellAt(1, 3)->format().leftBorderStyle(), Format::BorderThin);

    const QDateTime stamp(QDate(2021, 7, 3), QTime(13, 14, 15));
    doc.write(2, 1, stamp);
    doc.write(2, 2, QTime(6, 30));
    EXPECT_EQ(doc.read(2, 1), QVariant(stamp));
    EXPECT_EQ(doc.cellAt(2, 1)->format().numberFormat(), QStringLiteral("yyyy-mm-dd hh:mm:ss"));
    EXPECT_EQ(doc.read(2, 2), QVariant(QTime(6, 30)));
    EXPECT_EQ(doc.cellAt(2, 2)->value(), QVariant(0.2708333333333333));
    EXPECT_EQ(doc.cellAt(2, 2)->dateTime().date().year(), 1899);

    // Only date formats make dates, and the date system decides the serial.
    doc.write(3, 1, 45351);
    EXPECT_FALSE(doc.cellAt(3, 1)->isDateTime());
    EXPECT_FALSE(doc.cellAt(3, 1)->dateTime().isValid());
    EXPECT_EQ(doc.read(3, 1), QVariant(45351.0));
    ASSERT_TRUE(doc.write(3, 2, QDate()));
    EXPECT_EQ(doc.cellAt(3, 2)->cellType(), Cell::BlankType);
    doc.setDate1904(true);
    doc.write(3, 3, QDate(1904, 1, 2));
    EXPECT_EQ(doc.cellAt(3, 3)->value(), QVariant(1.0));
    EXPECT_EQ(doc.read(3, 3), QVariant(QDate(1904, 1, 2)));
}


TEST(WorksheetDimension, CoversTheStoredCellsUpToTheGridEdgesAndNothingBeyond)
{
    Document doc;
    doc.addSheet();
    EXPECT_FALSE(doc.dimension().isValid());
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
    for (int r = 1; r <= 2; ++r)
        for (int c = 1; c <= 3; ++c)
            EXPECT_EQ(doc.cellAt(r, c) ? doc.cellAt(r, c)->format() : Format(), boxed) << r << "," << c;
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
    EXPECT_TRUE(doc.setRowHeight(5, 7, 20));
    EXPECT_EQ((QList<double>{doc.rowHeight(3), doc.rowHeight(4), doc.rowHeight(6)}), (QList<double>{30.5, 15, 20}));
    EXPECT_TRUE(doc.setRowHeight(3, 0));   // back to the default
    EXPECT_EQ(doc.rowHeight(3), 15.0);
    for (const auto& [row, height] : {std::make_pair(0, 10.0), {1, -1.0}, {1, 500.0}, {1, std::nan("")}})
        EXPECT_FALSE(doc.setRowHeight(row, height)) << row << " " << height;

    for (const auto& [first, last, width] : {std::make_tuple(1, 10, 12.0), {4, 6, 30.0}})
        ASSERT_TRUE(doc.setColumnWidth(first, last, width));
    const auto widths = [&] {
        QList<double> all;
        for (int column = 3; column <= 14; ++column)
            all << doc.columnWidth(column);
        return all;
    };
    EXPECT_EQ(widths(), (QList<double>{12, 30, 30, 30, 12, 12, 12, 12, 8.43, 8.43, 8.43, 8.43}));
    for (const auto& [first, last, width] : {std::make_tuple(4, 6, 12.0), {12, 14, 5.0}, {9, 13, 0.0}})
        ASSERT_TRUE(doc.setColumnWidth(first, last, width));
    EXPECT_EQ(widths(), (QList<double>{12, 12, 12, 12, 12, 12, 8.43, 8.43, 8.43, 8.43, 8.43, 5}));
    EXPECT_TRUE(doc.setColumnWidth(16384, 1));
    EXPECT_FALSE(doc.setColumnWidth(16385, 1));
    EXPECT_FALSE(doc.setColumnWidth(5, 4, 1));
    EXPECT_FALSE(doc.setColumnWidth(1, 256));
}
