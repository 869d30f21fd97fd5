#ifndef VYGIS_VYAPPLICATION_H
#define VYGIS_VYAPPLICATION_H

#include "vygishost_export.h"

#include <QIcon>
#include <QString>

// Services of the application core that need no application object.
class VYGIS_HOST_EXPORT VyApplication
{
public:
    VyApplication() = delete;

    // value with at most precision decimals (precision is clamped to 0..15),
    // rounded to the nearest, trailing zeros and a trailing point dropped:
    //     doubleToQString(1234.5, 8)      == "1234.5"
    //     doubleToQString(0.1 + 0.2, 8)   == "0.3"
    //     doubleToQString(2.0 / 3.0, 3)   == "0.667"
    //     doubleToQString(-0.000000001, 8) == "0"   (never "-0")
    // A tie in the binary value rounds away from zero (0.125 at 2 gives
    // "0.13"). Magnitudes of 1e15 and more carry no decimals in a double and
    // are written in the shortest form that reads back as the same value
    // ("1e+15", "-1e+20"). Not-a-number reads "nan",
    // infinities "inf" and "-inf". The text never depends on the locale.
    static QString doubleToQString(double value, int precision);

    // The icon of a theme file name such as "point.png": from the theme
    // folder when one is set and holds the file, otherwise from the built-in
    // theme ("point.png", "line.png", "polygon.png", "annolayer.png",
    // "layer.png"). Unknown names and names with a folder give a null icon.
    static QIcon getThemeIcon(const QString& name);

    // A folder whose icons replace the built-in ones; empty for none.
    static void setThemeFolder(const QString& folder);
    static QString themeFolder();
};

#endif // VYGIS_VYAPPLICATION_H
