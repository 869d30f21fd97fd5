#include "vygisutil.h"

#include "vyapplication.h"

#include <QColor>
#include <QImage>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <algorithm>
#include <iterator>

namespace {

const char* const iconNames[] = {"point.png", "line.png", "polygon.png", "annolayer.png", "layer.png"};

// A theme whose icons are solid squares of one colour each, so the colour of an icon
// tells which file name was asked for.
class LayerTypeIcons : public ::testing::Test
{
protected:
    void SetUp() override
    {
        ASSERT_TRUE(m_theme.isValid());
        for (const char* icon : iconNames) {
            QImage square(16, 16, QImage::Format_ARGB32);
            square.fill(colourOf(QString::fromLatin1(icon)));
            ASSERT_TRUE(square.save(m_theme.filePath(QString::fromLatin1(icon))));
        }
        VyApplication::setThemeFolder(m_theme.path());
    }

    void TearDown() override { VyApplication::setThemeFolder(QString()); }

    static QRgb colourOf(const QString& iconName)
    {
        const auto found = std::find_if(std::begin(iconNames), std::end(iconNames),
                                        [&](const char* name) { return iconName == QLatin1String(name); });
        return QColor::fromHsv(60 * static_cast<int>(found - std::begin(iconNames)), 255, 255).rgba();
    }

    QTemporaryDir m_theme;
};

TEST_F(LayerTypeIcons, EveryTypeValueGetsTheIconOfItsName)
{
    const char* const expected[] = {"layer.png", "point.png", "point.png", "line.png",
                                    "polygon.png", "annolayer.png", "layer.png", "layer.png"};
    for (int type = 0; type < 8; ++type) {
        const QIcon icon = VyUniversalFunction::layertypeToIcon(static_cast<VyObjects::TsLayer::LayerType>(type));
        EXPECT_EQ(icon.pixmap(16, 16).toImage().pixel(8, 8),
                  colourOf(QString::fromLatin1(expected[type]))) << "type " << type;
    }
}

} // namespace
