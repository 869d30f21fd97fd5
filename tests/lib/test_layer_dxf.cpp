#include "libtesting.h"

#include <QDir>

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

class DxfCodepage : public LibraryTest
{
protected:
    QString write(const QByteArray& content) const { return fileWith(content, QStringLiteral("drawing.dxf")); }

    static QByteArray rewritten(const QString& file)
    {
        VyUniversalFunction::replaceDxfCodepage(VyObjects::TsString(file.toStdWString()));
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

TEST_F(DxfCodepage, MissingFileBecomesEmptyAndOneThatCannotBeReadKeepsItsContent)
{
    EXPECT_EQ(rewritten(path(QStringLiteral("new.dxf"))), QByteArray());
    EXPECT_EQ(rewritten(path(QStringLiteral("no/such/folder.dxf"))), "<no file>");
    const QString folder = path(QStringLiteral("folder.dxf"));
    ASSERT_TRUE(QDir().mkdir(folder));
    VyUniversalFunction::replaceDxfCodepage(VyObjects::TsString(folder.toStdWString()));
    EXPECT_TRUE(QFileInfo(folder).isDir());

    const QString file = write("ANSI_1252\n");
    QFile::setPermissions(file, QFileDevice::WriteOwner);
    QFile probe(file);
    if (probe.open(QIODevice::ReadOnly))
        return; // the account reads files regardless of permissions
    VyUniversalFunction::replaceDxfCodepage(VyObjects::TsString(file.toStdWString()));
    QFile::setPermissions(file, QFileDevice::ReadOwner | QFileDevice::WriteOwner);
    ASSERT_TRUE(probe.open(QIODevice::ReadOnly));
    EXPECT_EQ(probe.readAll(), "ANSI_1252\n");
}

} // namespace
