#include "xlsxdocument.h"
#include "xlsxformat.h"

#include <QBuffer>
#include <QHash>

#include <gtest/gtest.h>

using QXlsx::Document;
using QXlsx::Format;

TEST(Format, EmptyUntilSetAndEqualFormatsHashEqual)
{
    Format a;
    EXPECT_TRUE(a.isEmpty());
    EXPECT_EQ(a, Format());
    a.setFontBold(true);
    EXPECT_FALSE(a.isEmpty());
    a.setFontBold(false);
    EXPECT_TRUE(a.isEmpty());

    a.setBorderStyle(Format::BorderThin);
    a.setPatternBackgroundColor(QColor(255, 0, 0));
    Format b;
    b.setPatternBackgroundColor(QColor::fromHsv(0, 255, 255));   // the same red
    b.setBorderStyle(Format::BorderThin);
    EXPECT_EQ(a, b);
    EXPECT_EQ(qHash(a), qHash(b));
    QHash<Format, int> set;
    set.insert(a, 1);
    EXPECT_EQ(set.value(b), 1);
    Format copy = a;
    copy.setBorderStyle(Format::BorderMedium);   // a copy changes on its own
    EXPECT_EQ(a.leftBorderStyle(), Format::BorderThin);
    EXPECT_NE(a, copy);
}

TEST(Format, BorderStyleSetsAllSidesAndABackgroundColourASolidFill)
{
    Format f;
    f.setBorderStyle(Format::BorderMedium);
    f.setBorderColor(Qt::blue);
    f.setTopBorderStyle(Format::BorderNone);
    EXPECT_EQ((QList<Format::BorderStyle>{f.leftBorderStyle(), f.rightBorderStyle(), f.topBorderStyle(), f.bottomBorderStyle()}),
              (QList<Format::BorderStyle>{Format::BorderMedium, Format::BorderMedium, Format::BorderNone, Format::BorderMedium}));
    EXPECT_EQ(f.bottomBorderColor(), QColor(Qt::blue));

    f.setPatternBackgroundColor(QColor(200, 220, 240));
    EXPECT_EQ(f.fillPattern(), Format::PatternSolid);
    Format striped;   // unless a pattern was chosen
    striped.setFillPattern(Format::PatternLightGray);
    striped.setPatternBackgroundColor(Qt::yellow);
    EXPECT_EQ(striped.fillPattern(), Format::PatternLightGray);
    EXPECT_EQ(striped.patternBackgroundColor(), QColor(Qt::yellow));
}

TEST(Format, BuiltinNumberFormatCodesBecomeTheirIdsAndDateCodesAreDates)
{
    Format byCode;
    byCode.setNumberFormat(QStringLiteral("0.00"));
    Format byId;
    byId.setNumberFormatIndex(2);
    EXPECT_EQ(byCode, byId);
    EXPECT_EQ(byCode.numberFormatIndex(), 2);
    EXPECT_EQ(byId.numberFormat(), QStringLiteral("0.00"));
    byId.setNumberFormatIndex(14);
    EXPECT_TRUE(byId.isDateTimeFormat());
    Format f;
    f.setNumberFormat(QStringLiteral("General"));
    EXPECT_TRUE(f.isEmpty());
    f.setNumberFormat(QStringLiteral("yyyy-mm-dd"));
    EXPECT_EQ(f.numberFormat(), QStringLiteral("yyyy-mm-dd"));
    EXPECT_TRUE(f.isDateTimeFormat());
    f.setNumberFormat(QStringLiteral("#,##0.000"));
    EXPECT_FALSE(f.isDateTimeFormat());
}

TEST(Format, FontAndAlignmentSurviveASaveAndReopen)
{
    Format f;
    f.setFontBold(true);
    f.setFontItalic(true);
    f.setFontSize(14);
    f.setFontName(QStringLiteral("Arial"));
    f.setFontColor(Qt::red);
    f.setFontUnderline(Format::FontUnderlineDouble);
    f.setVerticalAlignment(Format::AlignVCenter);
    f.setTextWrap(true);
    f.setRotation(90);
    f.setRotation(400);   // not storable: ignored
    EXPECT_EQ(f.rotation(), 90);
    Document doc;
    doc.write(1, 1, QStringLiteral("styled"), f);
    QBuffer file;
    ASSERT_TRUE(file.open(QIODevice::WriteOnly) && doc.saveAs(&file));
    file.close();
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    const Format read = Document(&file).cellAt(1, 1)->format();
    EXPECT_EQ(read, f);
    EXPECT_EQ(read.fontUnderline(), Format::FontUnderlineDouble);
    EXPECT_EQ(read.fontColor(), QColor(Qt::red));
}
