#include "formatprivate.h"

#include "numberformats.h"

#include <QHash>

namespace QXlsx {

namespace {

uint hashColor(const ColorSpec& color, uint seed)
{
    const uint rgba = color.rgb.isValid() ? uint(color.rgb.rgba()) : 0u;
    return ::qHash(color.raw, seed) ^ (rgba * 0x9E3779B1u);
}

uint combine(uint seed, uint value)
{
    return seed ^ (value + 0x9E3779B9u + (seed << 6) + (seed >> 2));
}

} // namespace

FormatPrivate* FormatPrivate::sharedDefault()
{
    // Never freed: every Format() points here, so it must outlive them all, static ones
    // included. The extra reference keeps the implicit sharing from ever deleting it.
    static FormatPrivate* const instance = [] {
        auto* p = new FormatPrivate;
        p->ref.ref();
        return p;
    }();
    return instance;
}

bool FormatPrivate::operator==(const FormatPrivate& o) const
{
    if (this == &o)
        return true;
    const bool sameNumberFormat = numFmtCode.isEmpty()
        ? (o.numFmtCode.isEmpty() && numFmtId == o.numFmtId)
        : numFmtCode == o.numFmtCode;
    return sameNumberFormat
        && fontSize == o.fontSize && bold == o.bold && italic == o.italic
        && strikeOut == o.strikeOut && underline == o.underline
        && horizontal == o.horizontal && vertical == o.vertical && wrap == o.wrap
        && shrink == o.shrink && rotation == o.rotation && indent == o.indent
        && borderStyle[0] == o.borderStyle[0] && borderStyle[1] == o.borderStyle[1]
        && borderStyle[2] == o.borderStyle[2] && borderStyle[3] == o.borderStyle[3]
        && pattern == o.pattern && locked == o.locked && hidden == o.hidden && xfId == o.xfId
        && fontName == o.fontName && fontColor == o.fontColor && fontExtra == o.fontExtra
        && borderColor[0] == o.borderColor[0] && borderColor[1] == o.borderColor[1]
        && borderColor[2] == o.borderColor[2] && borderColor[3] == o.borderColor[3]
        && borderExtra == o.borderExtra && foreground == o.foreground
        && background == o.background && fillRaw == o.fillRaw && xfExtra == o.xfExtra;
}

uint FormatPrivate::hash() const
{
    uint h = numFmtCode.isEmpty() ? uint(numFmtId) : ::qHash(numFmtCode);
    h = combine(h, ::qHash(fontSize));
    h = combine(h, uint(bold) | uint(italic) << 1 | uint(strikeOut) << 2 | uint(wrap) << 3
                       | uint(shrink) << 4 | uint(locked) << 5 | uint(hidden) << 6
                       | uint(underline) << 8 | uint(horizontal) << 12 | uint(vertical) << 16
                       | uint(pattern) << 20);
    h = combine(h, uint(quint16(rotation)) | uint(quint16(indent)) << 16);
    h = combine(h, uint(borderStyle[0]) | uint(borderStyle[1]) << 8 | uint(borderStyle[2]) << 16
                       | uint(borderStyle[3]) << 24);
    h = combine(h, uint(xfId));
    h = combine(h, ::qHash(fontName));
    h = combine(h, hashColor(fontColor, 1));
    h = combine(h, hashColor(foreground, 2));
    h = combine(h, hashColor(background, 3));
    for (int side = 0; side < 4; ++side)
        h = combine(h, hashColor(borderColor[side], uint(side) + 4));
    h = combine(h, ::qHash(fontExtra) ^ ::qHash(borderExtra, 1) ^ ::qHash(fillRaw, 2) ^ ::qHash(xfExtra, 3));
    return h;
}

bool FormatPrivate::isDateTimeFormat() const
{
    return numFmtCode.isEmpty() ? detail::isBuiltinDateTimeFormat(numFmtId)
                                : detail::isDateTimeFormatCode(numFmtCode);
}

void FormatPrivate::setNumberFormatCode(const QString& code)
{
    const int builtin = detail::builtinNumberFormatId(code);
    if (code.isEmpty() || builtin >= 0) {
        numFmtId = code.isEmpty() ? 0 : builtin;
        numFmtCode.clear();
    } else {
        numFmtId = -1;
        numFmtCode = code;
    }
}

void FormatPrivate::setNumberFormatId(int id)
{
    numFmtId = id;
    numFmtCode.clear();
}

} // namespace QXlsx
