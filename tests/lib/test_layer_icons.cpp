#include "vygisutil.h"

#include "vyapplication.h"

#include <QColor>
#include <QImage>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace {

QRgb colourOf(int icon)
{
    return QColor::fromHsv(60 * icon, 255, 255).rgba();
}

// A theme whose icons are solid squares of one colour each, so the colour of an icon
// tells which file name was asked for.
TEST(LayerTypeIcons, EveryTypeValueGetsTheIconOfItsName)
{
    const char* const iconNames[] = {"point.png", "line.png", "polygon.png", "annolayer.png", "layer.png"};
    QTemporaryDir theme;
    for (int icon = 0; icon < 5; ++icon) {
        QImage square(16, 16, QImage::Format_ARGB32);
        square.fill(colourOf(icon));
        ASSERT_TRUE(square.save(theme.filePath(QString::fromLatin1(iconNames[icon]))));
    }
    VyApplication::setThemeFolder(theme.path());
    const int expected[] = {4, 0, 0, 1, 2, 3, 4, 4};   // layer, point, point, line, polygon, annolayer, layer, layer
    for (int type = 0; type < 8; ++type) {
        const QIcon icon = VyUniversalFunction::layertypeToIcon(static_cast<VyObjects::TsLayer::LayerType>(type));
        EXPECT_EQ(icon.pixmap(16, 16).toImage().pixel(8, 8), colourOf(expected[type])) << "type " << type;
    }
    VyApplication::setThemeFolder(QString());
}

} // namespace
