#pragma once

#include "xlsxglobal.h"

#include <QColor>
#include <QSharedDataPointer>
#include <QString>

namespace QXlsx {

class FormatPrivate;

// The look of a cell: font, alignment, borders, fill, number format and protection.
// A value type, cheap to copy (implicitly shared). Format() with nothing set is the
// workbook's default cell format; equal formats share one style record in the file.
class XLSX_EXPORT Format
{
public:
    enum HorizontalAlignment {
        AlignHGeneral, AlignLeft, AlignHCenter, AlignRight, AlignHFill, AlignHJustify,
        AlignHMerge, AlignHDistributed
    };
    enum VerticalAlignment { AlignTop, AlignVCenter, AlignBottom, AlignVJustify, AlignVDistributed };
    enum BorderStyle {
        BorderNone, BorderThin, BorderMedium, BorderDashed, BorderDotted, BorderThick,
        BorderDouble, BorderHair, BorderMediumDashed, BorderDashDot, BorderMediumDashDot,
        BorderDashDotDot, BorderMediumDashDotDot, BorderSlantDashDot
    };
    enum FillPattern {
        PatternNone, PatternSolid, PatternMediumGray, PatternDarkGray, PatternLightGray,
        PatternDarkHorizontal, PatternDarkVertical, PatternDarkDown, PatternDarkUp,
        PatternDarkGrid, PatternDarkTrellis, PatternLightHorizontal, PatternLightVertical,
        PatternLightDown, PatternLightUp, PatternLightGrid, PatternLightTrellis,
        PatternGray125, PatternGray0625
    };
    enum FontUnderline { FontUnderlineNone, FontUnderlineSingle, FontUnderlineDouble,
                         FontUnderlineSingleAccounting, FontUnderlineDoubleAccounting };

    Format();
    Format(const Format& other);
    Format& operator=(const Format& other);
    ~Format();

    // Font. A size of 0 and an empty name mean the workbook's default font.
    double fontSize() const;
    void setFontSize(double size);
    bool fontBold() const;
    void setFontBold(bool bold);
    bool fontItalic() const;
    void setFontItalic(bool italic);
    bool fontStrikeOut() const;
    void setFontStrikeOut(bool strikeOut);
    FontUnderline fontUnderline() const;
    void setFontUnderline(FontUnderline underline);
    QColor fontColor() const;
    void setFontColor(const QColor& color);
    QString fontName() const;
    void setFontName(const QString& name);

    // Alignment.
    HorizontalAlignment horizontalAlignment() const;
    void setHorizontalAlignment(HorizontalAlignment alignment);
    VerticalAlignment verticalAlignment() const;
    void setVerticalAlignment(VerticalAlignment alignment);
    bool textWrap() const;
    void setTextWrap(bool wrap);
    int rotation() const;
    void setRotation(int degrees);
    int indent() const;
    void setIndent(int indent);
    bool shrinkToFit() const;
    void setShrinkToFit(bool shrink);

    // Borders. setBorderStyle and setBorderColor set all four sides.
    void setBorderStyle(BorderStyle style);
    void setBorderColor(const QColor& color);
    BorderStyle leftBorderStyle() const;
    void setLeftBorderStyle(BorderStyle style);
    BorderStyle rightBorderStyle() const;
    void setRightBorderStyle(BorderStyle style);
    BorderStyle topBorderStyle() const;
    void setTopBorderStyle(BorderStyle style);
    BorderStyle bottomBorderStyle() const;
    void setBottomBorderStyle(BorderStyle style);
    QColor leftBorderColor() const;
    void setLeftBorderColor(const QColor& color);
    QColor rightBorderColor() const;
    void setRightBorderColor(const QColor& color);
    QColor topBorderColor() const;
    void setTopBorderColor(const QColor& color);
    QColor bottomBorderColor() const;
    void setBottomBorderColor(const QColor& color);

    // Fill. A solid fill shows the pattern's foreground colour; setPatternBackgroundColor
    // on a format without a pattern makes it a solid fill of that colour, as users expect.
    FillPattern fillPattern() const;
    void setFillPattern(FillPattern pattern);
    QColor patternForegroundColor() const;
    void setPatternForegroundColor(const QColor& color);
    QColor patternBackgroundColor() const;
    void setPatternBackgroundColor(const QColor& color);

    // Number format: a format code ("0.00", "yyyy-mm-dd") or a built-in id (0 to 163).
    QString numberFormat() const;
    void setNumberFormat(const QString& format);
    int numberFormatIndex() const;
    void setNumberFormatIndex(int index);
    // True when the number format shows a date or a time.
    bool isDateTimeFormat() const;

    // Protection.
    bool locked() const;
    void setLocked(bool locked);
    bool hidden() const;
    void setHidden(bool hidden);

    // True when nothing was set: the format is the workbook's default cell format.
    bool isEmpty() const;

    bool operator==(const Format& other) const;
    bool operator!=(const Format& other) const { return !(*this == other); }

private:
    friend class FormatPrivate;
    QSharedDataPointer<FormatPrivate> d;
};

XLSX_EXPORT uint qHash(const Format& format, uint seed = 0);

} // namespace QXlsx
