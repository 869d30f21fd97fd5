#include "xlsxformat.h"

#include "model/formatprivate.h"
#include "model/numberformats.h"

namespace QXlsx {

namespace {

// QColor compares its colour spec as well as the channels, so a colour given as HSV
// would not match the same colour read back from a file as RGB.
ColorSpec rgbColor(const QColor& color)
{
    ColorSpec spec;
    if (color.isValid())
        spec.rgb = color.toRgb();
    return spec;
}

} // namespace

Format::Format() : d(FormatPrivate::sharedDefault()) {}
Format::Format(const Format& other) = default;
Format& Format::operator=(const Format& other) = default;
Format::~Format() = default;

double Format::fontSize() const { return d->fontSize; }
void Format::setFontSize(double size) { d->fontSize = size > 0 ? size : 0; }
bool Format::fontBold() const { return d->bold; }
void Format::setFontBold(bool bold) { d->bold = bold; }
bool Format::fontItalic() const { return d->italic; }
void Format::setFontItalic(bool italic) { d->italic = italic; }
bool Format::fontStrikeOut() const { return d->strikeOut; }
void Format::setFontStrikeOut(bool strikeOut) { d->strikeOut = strikeOut; }
Format::FontUnderline Format::fontUnderline() const { return FontUnderline(d->underline); }
void Format::setFontUnderline(FontUnderline underline) { d->underline = quint8(underline); }
QColor Format::fontColor() const { return d->fontColor.rgb; }
void Format::setFontColor(const QColor& color) { d->fontColor = rgbColor(color); }
QString Format::fontName() const { return d->fontName; }
void Format::setFontName(const QString& name) { d->fontName = name; }

Format::HorizontalAlignment Format::horizontalAlignment() const
{
    return HorizontalAlignment(d->horizontal);
}
void Format::setHorizontalAlignment(HorizontalAlignment alignment) { d->horizontal = quint8(alignment); }
Format::VerticalAlignment Format::verticalAlignment() const { return VerticalAlignment(d->vertical); }
void Format::setVerticalAlignment(VerticalAlignment alignment) { d->vertical = quint8(alignment); }
bool Format::textWrap() const { return d->wrap; }
void Format::setTextWrap(bool wrap) { d->wrap = wrap; }
int Format::rotation() const { return d->rotation; }
// 0 to 180 degrees, or 255 for text stacked vertically; anything else is not storable.
void Format::setRotation(int degrees)
{
    if ((degrees >= 0 && degrees <= 180) || degrees == 255)
        d->rotation = qint16(degrees);
}
int Format::indent() const { return d->indent; }
void Format::setIndent(int indent) { d->indent = qint16(qBound(0, indent, 250)); }
bool Format::shrinkToFit() const { return d->shrink; }
void Format::setShrinkToFit(bool shrink) { d->shrink = shrink; }

void Format::setBorderStyle(BorderStyle style)
{
    for (quint8& side : d->borderStyle)
        side = quint8(style);
}
void Format::setBorderColor(const QColor& color)
{
    const ColorSpec spec = rgbColor(color);
    for (ColorSpec& side : d->borderColor)
        side = spec;
}
Format::BorderStyle Format::leftBorderStyle() const { return BorderStyle(d->borderStyle[LeftSide]); }
void Format::setLeftBorderStyle(BorderStyle style) { d->borderStyle[LeftSide] = quint8(style); }
Format::BorderStyle Format::rightBorderStyle() const { return BorderStyle(d->borderStyle[RightSide]); }
void Format::setRightBorderStyle(BorderStyle style) { d->borderStyle[RightSide] = quint8(style); }
Format::BorderStyle Format::topBorderStyle() const { return BorderStyle(d->borderStyle[TopSide]); }
void Format::setTopBorderStyle(BorderStyle style) { d->borderStyle[TopSide] = quint8(style); }
Format::BorderStyle Format::bottomBorderStyle() const { return BorderStyle(d->borderStyle[BottomSide]); }
void Format::setBottomBorderStyle(BorderStyle style) { d->borderStyle[BottomSide] = quint8(style); }
QColor Format::leftBorderColor() const { return d->borderColor[LeftSide].rgb; }
void Format::setLeftBorderColor(const QColor& color) { d->borderColor[LeftSide] = rgbColor(color); }
QColor Format::rightBorderColor() const { return d->borderColor[RightSide].rgb; }
void Format::setRightBorderColor(const QColor& color) { d->borderColor[RightSide] = rgbColor(color); }
QColor Format::topBorderColor() const { return d->borderColor[TopSide].rgb; }
void Format::setTopBorderColor(const QColor& color) { d->borderColor[TopSide] = rgbColor(color); }
QColor Format::bottomBorderColor() const { return d->borderColor[BottomSide].rgb; }
void Format::setBottomBorderColor(const QColor& color) { d->borderColor[BottomSide] = rgbColor(color); }

Format::FillPattern Format::fillPattern() const { return FillPattern(d->pattern); }
void Format::setFillPattern(FillPattern pattern) { d->pattern = quint8(pattern); }
QColor Format::patternForegroundColor() const { return d->foreground.rgb; }
void Format::setPatternForegroundColor(const QColor& color)
{
    d->foreground = rgbColor(color);
    if (d->pattern == PatternNone && color.isValid())
        d->pattern = PatternSolid;
}
// A solid fill paints its foreground colour, so that is the background a person sees.
QColor Format::patternBackgroundColor() const
{
    return d->pattern == PatternSolid ? d->foreground.rgb : d->background.rgb;
}
void Format::setPatternBackgroundColor(const QColor& color)
{
    if (d->pattern == PatternNone && color.isValid())
        d->pattern = PatternSolid;
    if (d->pattern == PatternSolid)
        d->foreground = rgbColor(color);
    else
        d->background = rgbColor(color);
}

QString Format::numberFormat() const
{
    return d->numFmtCode.isEmpty() ? detail::builtinNumberFormat(d->numFmtId) : d->numFmtCode;
}
void Format::setNumberFormat(const QString& format) { d->setNumberFormatCode(format); }
int Format::numberFormatIndex() const { return d->numFmtId; }
void Format::setNumberFormatIndex(int index)
{
    if (index >= 0 && index < 164)
        d->setNumberFormatId(index);
}
bool Format::isDateTimeFormat() const { return d->isDateTimeFormat(); }

bool Format::locked() const { return d->locked; }
void Format::setLocked(bool locked) { d->locked = locked; }
bool Format::hidden() const { return d->hidden; }
void Format::setHidden(bool hidden) { d->hidden = hidden; }

bool Format::isEmpty() const { return *d == *FormatPrivate::sharedDefault(); }

bool Format::operator==(const Format& other) const { return d == other.d || *d == *other.d; }

uint qHash(const Format& format, uint seed)
{
    return FormatPrivate::of(format).hash() ^ seed;
}

} // namespace QXlsx
