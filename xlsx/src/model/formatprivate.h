#pragma once

#include "xlsxformat.h"

#include <QByteArray>
#include <QColor>
#include <QSharedData>
#include <QString>

namespace QXlsx {

// A colour as a workbook stores it: an RGB value, or the attributes of a theme, indexed
// or automatic colour kept as they were read (theme="1" tint="-0.25"), which QColor
// cannot express but a saved file must keep.
struct ColorSpec
{
    QColor rgb;
    QByteArray raw;

    bool isSet() const { return rgb.isValid() || !raw.isEmpty(); }
    bool operator==(const ColorSpec& o) const { return rgb == o.rgb && raw == o.raw; }
    bool operator!=(const ColorSpec& o) const { return !(*this == o); }
};

enum BorderSide { LeftSide, RightSide, TopSide, BottomSide };

// Every field has a "not set" value, so that Format() is the default cell format and
// only what a caller or a file set is written.
class FormatPrivate : public QSharedData
{
public:
    // Font; a size of 0 and an empty name mean the workbook's default font.
    double fontSize = 0;
    QString fontName;
    ColorSpec fontColor;
    bool bold = false;
    bool italic = false;
    bool strikeOut = false;
    quint8 underline = Format::FontUnderlineNone;
    QByteArray fontExtra;      // children of <font> not modelled (family, scheme, charset, ...)

    // Alignment.
    quint8 horizontal = Format::AlignHGeneral;
    quint8 vertical = Format::AlignBottom;
    bool wrap = false;
    bool shrink = false;
    qint16 rotation = 0;
    qint16 indent = 0;

    // Borders, indexed by BorderSide.
    quint8 borderStyle[4] = {0, 0, 0, 0};
    ColorSpec borderColor[4];
    QByteArray borderExtra;    // diagonal borders and other children kept as read

    // Fill.
    quint8 pattern = Format::PatternNone;
    ColorSpec foreground;
    ColorSpec background;
    QByteArray fillRaw;        // a gradient fill, kept whole as read

    // Number format: a built-in id, or a custom code. With a code, numFmtId is only the
    // id the code had in the file it was read from (or -1); equality ignores it and the
    // writer assigns ids on save. Use setNumberFormatCode so that a built-in code becomes
    // its id and equal formats compare equal.
    int numFmtId = 0;
    QString numFmtCode;

    bool locked = true;
    bool hidden = false;

    // The named cell style the record derives from, kept for files that use them.
    int xfId = 0;
    QByteArray xfExtra;        // attributes of <xf> not modelled (quotePrefix, pivotButton)

    bool operator==(const FormatPrivate& o) const;
    uint hash() const;

    bool hasNumberFormat() const { return numFmtId != 0 || !numFmtCode.isEmpty(); }
    bool isDateTimeFormat() const;
    void setNumberFormatCode(const QString& code);
    void setNumberFormatId(int id);

    // The fields behind a Format, for the engine's readers and writers.
    static const FormatPrivate& of(const Format& format) { return *format.d; }
    // Write access for the engine's reader, which fills a Format field by field.
    static FormatPrivate& edit(Format& format) { return *format.d; }
    // Formats sharing one record compare equal without looking at the fields.
    static const FormatPrivate* identity(const Format& format) { return format.d.constData(); }
    // The record of Format(), shared by every default format so that making one is free.
    static FormatPrivate* sharedDefault();
};

} // namespace QXlsx
