// The layer functions: the code page of DXF drawings, layer type icons and unique layer
// names.

#include "libtesting.h"

#include "vyapplication.h"

#include <QColor>
#include <QDir>
#include <QImage>

#ifdef Q_OS_UNIX
#include <unistd.h>
#endif

#include <cstdlib>
#include <string>
#include <vector>

using namespace VyObjects;

namespace {

#ifdef Q_OS_WIN
const QByteArray eol = "\r\n";
#else
const QByteArray eol = "\n";
#endif

// Lines written with "|" for the platform's line end.
QByteArray lines(const char* text)
{
    return QByteArray(text).replace('|', eol);
}

// Acts as an ordinary account while it lives, where the tests run as the superuser, who
// reads every file whatever its permissions; folder is opened to that account.
class UnprivilegedAccount
{
public:
    explicit UnprivilegedAccount(const QString& folder)
    {
#ifdef Q_OS_UNIX
        if (geteuid() != 0)
            return;
        QFile::setPermissions(folder, QFile::permissions(folder) | QFileDevice::ExeOther | QFileDevice::ReadOther);
        m_switched = seteuid(65534) == 0;
#else
        Q_UNUSED(folder);
#endif
    }
    ~UnprivilegedAccount()
    {
#ifdef Q_OS_UNIX
        if (m_switched && seteuid(0) != 0)
            std::abort();
#endif
    }
    UnprivilegedAccount(const UnprivilegedAccount&) = delete;
    UnprivilegedAccount& operator=(const UnprivilegedAccount&) = delete;

private:
    [[maybe_unused]] bool m_switched = false;
};

class DxfCodepage : public LibraryTest
{
protected:
    QString write(const QByteArray& content) const { return fileWith(content, QStringLiteral("drawing.dxf")); }

    static QByteArray rewritten(const QString& file)
    {
        VyUniversalFunction::replaceDxfCodepage(TsString(file.toStdWString()));
        return QFile::exists(file) ? bytesOf(file) : QByteArray("<no file>");
    }
};

TEST_F(DxfCodepage, RewritesLineByLine)
{
    // A binary drawing is left alone.
    static const char raw[] = "AutoCAD Binary DXF\r\n\x1a\0\x01\nANSI_1252\n\r\n";
    const QByteArray binary(raw, sizeof raw - 1);
    struct Case { QByteArray before; QByteArray after; };
    const Case cases[] = {
        {binary, binary},
        {"  9\n$DWGCODEPAGE\n  3\nANSI_1252\n  0\n", lines("  9|$DWGCODEPAGE|  3|ANSI_936|  0|")},
        {"  3\r\n   ANSI_1252\r\n\r\n  0\r\nEOF", lines("  3|ANSI_936||  0|EOF")},
        {"1\nansi_1252\nx ANSI_ y\nANSI_932\n", lines("1|ansi_1252|ANSI_936|ANSI_936|")},
        {"  3\nANSI_1252", lines("  3|ANSI_1252")},
        {"\n\n1\n\xC4\xCF\xBE\xA9\xB5\rx\n", lines("||1|\xC4\xCF\xBE\xA9\xB5\rx|")},
        {QByteArray("0123456789\n").repeated(7) + "end\r\n", lines("0123456789|").repeated(7) + lines("end|")},
        {"", ""},
    };
    for (const Case& c : cases)
        EXPECT_EQ(rewritten(write(c.before)), c.after) << c.before.toStdString();
}

TEST_F(DxfCodepage, LinesAcrossReadBlocksAreRewrittenWhole)
{
    const int megabyte = 1 << 20;
    QByteArray before;
    QByteArray after;
    for (int i = 0; before.size() < 3 * megabyte; ++i) {
        QByteArray line = QByteArray::number(i);
        const bool crossesBlock = before.size() % megabyte > megabyte - 16;
        if (crossesBlock || i % 9973 == 0)
            line = "  ANSI_" + line;
        before += line + "\r\n";
        after += (line.contains("ANSI_") ? QByteArray("ANSI_936") : line) + eol;
    }
    EXPECT_TRUE(rewritten(write(before)) == after);
}

TEST_F(DxfCodepage, MissingFileBecomesEmptyAndAFolderIsLeftAlone)
{
    EXPECT_EQ(rewritten(path(QStringLiteral("new.dxf"))), QByteArray());
    EXPECT_EQ(rewritten(path(QStringLiteral("no/such/folder.dxf"))), "<no file>");
    const QString folder = path(QStringLiteral("folder.dxf"));
    ASSERT_TRUE(QDir().mkdir(folder));
    VyUniversalFunction::replaceDxfCodepage(TsString(folder.toStdWString()));
    EXPECT_TRUE(QFileInfo(folder).isDir());
}

TEST_F(DxfCodepage, FileThatCannotBeReadKeepsItsContent)
{
    const QString file = write("ANSI_1252\n");
    QFile::setPermissions(file, QFileDevice::WriteOwner);
    {
        const UnprivilegedAccount account(QFileInfo(file).absolutePath());
        if (QFile(file).open(QIODevice::ReadOnly))
            GTEST_SKIP() << "this account reads files whatever their permissions";
        VyUniversalFunction::replaceDxfCodepage(TsString(file.toStdWString()));
    }
    QFile::setPermissions(file, QFileDevice::ReadOwner | QFileDevice::WriteOwner);
    EXPECT_EQ(bytesOf(file), "ANSI_1252\n");
}

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
        const QIcon icon = VyUniversalFunction::layertypeToIcon(static_cast<TsLayer::LayerType>(type));
        EXPECT_EQ(icon.pixmap(16, 16).toImage().pixel(8, 8), colourOf(expected[type])) << "type " << type;
    }
    VyApplication::setThemeFolder(QString());
}

TsRefPtr<TsLayer> layerNamed(const std::string& name)
{
    return TsRefPtr<TsLayer>::create(TsString(name.c_str()), TsLayer::LineLayer);
}

std::string nameOf(const TsRefPtr<TsLayer>& layer)
{
    return layer->GetLayerName().toUtf8();
}

// Every test also checks that the call gives back each reference it took.
class UniqueLayerName : public ReferenceBalanceTest
{
protected:
    TsRefPtr<TsMap> mapWith(const std::vector<std::string>& names)
    {
        auto map = TsRefPtr<TsMap>::create();
        for (const std::string& name : names)
            map->AddLayer(layerNamed(name));
        return map;
    }
};

TEST_F(UniqueLayerName, NumbersANameAlreadyTaken)
{
    struct Case { std::string base; std::vector<std::string> inMap; std::string expected; };
    const Case cases[] = {
        {"roads", {}, "roads"},
        {"roads", {"rivers", "lakes-1"}, "roads"},
        {"roads", {"roads"}, "roads-1"},
        {"roads", {"roads", "roads-1"}, "roads-2"},
        {"roads", {"ROADS", "Roads-1"}, "roads-2"},
        {"roads", {"roads-5"}, "roads-6"},
        {"roads", {"roads", "roads-1", "roads-3"}, "roads-4"},
        {"roads", {"roads", "ROADS", "roads-1"}, "roads-3"},
        {"roads", {"roads-x-1"}, "roads"},
        {"Roads", {"roads"}, "Roads-1"},
        {"main-road", {"main-road-1"}, "main-road"},
        {"main-road", {"main-road"}, "main-road-1"},
        {"roads", {"roads-x"}, "roads-1"},
        {"roads", {"roads-2147483647"}, "roads-2147483648"},
    };
    for (const Case& c : cases) {
        const TsRefPtr<TsLayer> layer = layerNamed(c.base);
        const TsRefPtr<TsMap> map = mapWith(c.inMap);
        VyUniversalFunction::setLayerName(map.get(), layer);
        EXPECT_EQ(nameOf(layer), c.expected) << c.base << " among " << c.inMap.size() << " names";
    }
}

TEST_F(UniqueLayerName, NullMapOrLayerChangesNothing)
{
    const TsRefPtr<TsLayer> layer = layerNamed("roads");
    VyUniversalFunction::setLayerName(nullptr, layer);
    EXPECT_EQ(nameOf(layer), "roads");

    const TsRefPtr<TsMap> map = mapWith({"roads"});
    VyUniversalFunction::setLayerName(map.get(), nullptr);
    EXPECT_EQ(nameOf(map->GetLayers(true).front()), "roads");
}

TEST_F(UniqueLayerName, CountsTheLayerItselfAndHiddenLayers)
{
    const TsRefPtr<TsMap> map = mapWith({"roads-1", "roads"});
    const TsRefPtr<TsLayer> hidden = map->GetLayers(true).back();
    hidden->SetVisible(false);
    const TsRefPtr<TsLayer> layer = layerNamed("roads");
    map->AddLayer(layer);
    VyUniversalFunction::setLayerName(map.get(), layer);
    EXPECT_EQ(nameOf(layer), "roads-3");
    EXPECT_EQ(nameOf(hidden), "roads");
}

} // namespace
