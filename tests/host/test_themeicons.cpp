#include "hosttesting.h"

#include "vyapplication.h"

#include <QImage>
#include <QTemporaryDir>

namespace {

class ThemeIconTest : public WidgetApplicationTest
{
protected:
    void TearDown() override
    {
        VyApplication::setThemeFolder(QString());
        WidgetApplicationTest::TearDown();
    }
};

QRgb centreColour(const QIcon& icon)
{
    return icon.pixmap(16, 16).toImage().pixel(8, 8);
}

} // namespace

TEST_F(ThemeIconTest, BuiltInThemeHasADistinctIconForEveryLayerAndNoOthers)
{
    for (const char* name : {"point.png", "line.png", "polygon.png", "annolayer.png", "layer.png"}) {
        const QIcon icon = VyApplication::getThemeIcon(QString::fromLatin1(name));
        EXPECT_FALSE(icon.isNull()) << name;
        EXPECT_FALSE(icon.pixmap(16, 16).isNull()) << name;
    }
    EXPECT_NE(VyApplication::getThemeIcon(QStringLiteral("point.png")).pixmap(16, 16).toImage(),
              VyApplication::getThemeIcon(QStringLiteral("layer.png")).pixmap(16, 16).toImage());
    for (const QString& name : {QStringLiteral("river.png"), QString(), QStringLiteral("../theme/point.png")})
        EXPECT_TRUE(VyApplication::getThemeIcon(name).isNull()) << name.toStdString();
}

TEST_F(ThemeIconTest, ThemeFolderReplacesBuiltInIcons)
{
    QTemporaryDir folder;
    ASSERT_TRUE(folder.isValid());
    QImage red(16, 16, QImage::Format_ARGB32);
    red.fill(Qt::red);
    ASSERT_TRUE(red.save(folder.filePath(QStringLiteral("point.png"))));

    VyApplication::setThemeFolder(folder.path());
    EXPECT_EQ(centreColour(VyApplication::getThemeIcon(QStringLiteral("point.png"))), QColor(Qt::red).rgba());
    EXPECT_FALSE(VyApplication::getThemeIcon(QStringLiteral("line.png")).isNull());

    VyApplication::setThemeFolder(QString());
    EXPECT_NE(centreColour(VyApplication::getThemeIcon(QStringLiteral("point.png"))), QColor(Qt::red).rgba());
}
