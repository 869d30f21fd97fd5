#include "clitesting.h"

#include <QDateTime>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QStandardPaths>
#include <QThread>

#ifdef Q_OS_UNIX
#include <unistd.h>
#endif

namespace {

const QString codepage = QStringLiteral("dxf-codepage");
const QString everyAnsiLine = QStringLiteral("--every-ansi-line");

// A drawing whose header declares codePage, with a paper size that holds "ANSI_" and a
// text in GBK; the line ends take their turns from lineEnds.
QByteArray drawing(const QByteArray& codePage, const QList<QByteArray>& lineEnds, const QByteArray& head = {})
{
    const QList<QByteArray> lines{
        "  0", "SECTION", "  2", "HEADER", "  9", "$ACADVER", "  1", "AC1015", "  9", "$DWGCODEPAGE", "  3", codePage,
        "  0", "ENDSEC", "  0", "SECTION", "  2", "OBJECTS", "  0", "PLOTSETTINGS", "  4",
        "ANSI_A_(8.50_x_11.00_Inches)", "  0", "ENDSEC", "  0", "SECTION", "  2", "ENTITIES", "  0", "TEXT", "  1",
        "\xB5\xD8\xCD\xBC", "  0", "ENDSEC", "  0", "EOF"};
    QByteArray bytes = head;
    for (int i = 0; i < lines.size(); ++i)
        bytes += lines[i] + lineEnds[i % lineEnds.size()];
    return bytes;
}

const QList<QByteArray> crlf{"\r\n"};
const QList<QByteArray> lf{"\n"};

QByteArray contentOf(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("<unreadable>");
}

const QDateTime longAgo(QDate(2001, 2, 3), QTime(4, 5, 6), Qt::UTC);

} // namespace

class ToolDxf : public ToolTest
{
protected:
    // A drawing file whose time of change lies long ago, so that a save shows.
    QString drawingFile(const QByteArray& bytes, const QString& name = QStringLiteral("plan.dxf")) const
    {
        QFile out(file(name));
        EXPECT_TRUE(out.open(QIODevice::WriteOnly) && out.write(bytes) == bytes.size());
        out.flush();
        out.setFileTime(longAgo, QFileDevice::FileModificationTime);
        return out.fileName();
    }

    // Runs the tool where permissions count: as an unprivileged user when the tests run
    // as root, who may write anything. Empty when no such run can be made.
    QStringList asUnprivilegedUser(const QStringList& arguments) const
    {
#ifdef Q_OS_UNIX
        if (geteuid() != 0)
            return QStringList{QStringLiteral(VYGIS_TOOL)} + arguments;
        const QString setpriv = QStandardPaths::findExecutable("setpriv");
        if (setpriv.isEmpty())
            return {};
        const QStringList nobody{"--reuid=65534", "--regid=65534", "--clear-groups", QStringLiteral(VYGIS_TOOL)};
        // The build may stand in a folder that only root may enter.
        if (runProgram(setpriv, nobody + QStringList{"--version"}).status != 0)
            return {};
        QFile::setPermissions(QFileInfo(file("x")).absolutePath(), QFileDevice::Permissions(0x7777));
        return QStringList{setpriv} + nobody + arguments;
#else
        return QStringList{QStringLiteral(VYGIS_TOOL)} + arguments;
#endif
    }
};

TEST_F(ToolDxf, ChangesOnlyTheCodePageValue)
{
    const struct {
        const char* label;
        QByteArray before;
        QByteArray after;
    } cases[] = {
        {"CRLF line ends", drawing("ANSI_1252", crlf), drawing("ANSI_936", crlf)},
        {"LF line ends", drawing("ANSI_1252", lf), drawing("ANSI_936", lf)},
        {"mixed line ends", drawing("ANSI_1252", {"\r\n", "\n", "\n"}), drawing("ANSI_936", {"\r\n", "\n", "\n"})},
        {"blanks around the value", drawing(" ANSI_1252  ", crlf), drawing("ANSI_936", crlf)},
        {"not an ANSI code page", drawing("UTF8", lf), drawing("ANSI_936", lf)},
        {"byte order mark and comments first", drawing("ANSI_1252", lf, "\xEF\xBB\xBF" "999\nmade by hand\n"),
         drawing("ANSI_936", lf, "\xEF\xBB\xBF" "999\nmade by hand\n")},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.label);
        const QString path = drawingFile(c.before);
        QFile::setPermissions(path, QFileDevice::ReadOwner | QFileDevice::WriteOwner | QFileDevice::ReadGroup);
        const QFileDevice::Permissions permissions = QFileInfo(path).permissions();
        const ToolRun result = vygis({codepage, path});
        EXPECT_EQ(result.status, 0) << result.err.toStdString();
        EXPECT_EQ(contentOf(path), c.after);
        EXPECT_EQ(QFileInfo(path).permissions(), permissions);
    }
}

TEST_F(ToolDxf, LeavesByteForByteWhatItMustNotOrNeedNotChange)
{
    QByteArray geoPackage("SQLite format 3\0", 16);
    geoPackage += QByteArray(52, '\0') + "GPKG" + QByteArray(28, '\0') + "\n  3\nANSI_1252\n";
    const QByteArray zippedDrawing = QByteArray("PK\x03\x04\x14\0\0\0", 8) + QByteArray(22, '\0') + drawing("ANSI_1252", lf);
    const QByteArray binaryDrawing = QByteArray("AutoCAD Binary DXF\r\n\x1a\0", 22) + QByteArray("\x03\0" "ANSI_1252\n", 12);
    const QByteArray noVariable = drawing("ANSI_1252", crlf).replace("$DWGCODEPAGE", "$INSUNITS");
    const QByteArray noHeader = "  0\nSECTION\n  2\nENTITIES\n  0\nTEXT\n  1\n$DWGCODEPAGE\n  3\nANSI_1252\n  0\nENDSEC\n";
    const struct {
        const char* label;
        QByteArray bytes;
        QStringList options;
        int status;
        const char* message;
    } cases[] = {
        {"already ANSI_936", drawing("ANSI_936", crlf), {}, 0, "already ANSI_936"},
        {"no code page variable", noVariable, {}, 1, "no $DWGCODEPAGE variable"},
        {"code page text outside the header", noHeader, {}, 1, "no $DWGCODEPAGE variable"},
        {"binary DXF", binaryDrawing, {}, 1, "a binary DXF drawing; only a text DXF"},
        {"GeoPackage", geoPackage, {}, 1, "a GeoPackage; only a text DXF"},
        {"zip", zippedDrawing, {}, 1, "a zip archive"},
        {"plain text", "Code pages\nANSI_1252\nANSI_1251\n", {}, 1, "does not look like a DXF drawing"},
        {"empty file", "", {}, 1, "an empty file"},
        {"no ANSI_ line", QByteArray(noVariable).replace("ANSI_", "PAPER"), {everyAnsiLine}, 1, "no line holds \"ANSI_\""},
        {"every ANSI_ line already", drawing("ANSI_936", crlf).replace("ANSI_A_(8.50_x_11.00_Inches)", "ANSI_936"),
         {everyAnsiLine}, 0, "already ANSI_936"},
        {"GeoPackage, every ANSI_ line", geoPackage, {everyAnsiLine}, 1, "a GeoPackage"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.label);
        const QString path = drawingFile(c.bytes);
        const ToolRun result = vygis(QStringList{codepage, path} + c.options);
        EXPECT_EQ(result.status, c.status);
        EXPECT_TRUE(result.err.contains(path + QStringLiteral(": "))) << result.err.toStdString();
        EXPECT_TRUE(result.err.contains(QString::fromUtf8(c.message))) << result.err.toStdString();
        EXPECT_EQ(contentOf(path), c.bytes);
        EXPECT_EQ(QFileInfo(path).lastModified(), longAgo);
    }
}

TEST_F(ToolDxf, EveryAnsiLineIsTheLibrarysRewrite)
{
    const QByteArray before = drawing("ANSI_1252", crlf);
    const QString byTool = drawingFile(before);
    const QString byLibrary = drawingFile(before, "library.dxf");
    EXPECT_EQ(vygis({codepage, everyAnsiLine, byTool}).status, 0);
    VyUniversalFunction::replaceDxfCodepage(VyObjects::TsString(byLibrary.toStdWString()));
    EXPECT_EQ(contentOf(byTool), contentOf(byLibrary));
    EXPECT_FALSE(contentOf(byTool).contains("ANSI_A_"));
}

TEST_F(ToolDxf, AFailedWriteLeavesTheDrawingAsItWas)
{
    const QByteArray before = drawing("ANSI_1252", crlf).repeated(2000); // 370 kB
    const QString path = drawingFile(before);
    const QString folder = file("locked");
    QDir().mkpath(folder);
    const QString inLockedFolder = folder + QStringLiteral("/plan.dxf");
    QFile::copy(path, inLockedFolder);
    const auto readOnly = QFileDevice::Permissions(0x5555);
    const auto writable = QFileDevice::Permissions(0x7777);
    const struct {
        const char* label;
        QString path;
        QFileDevice::Permissions file;
        QFileDevice::Permissions folder;
        QString shellSetup;
        const char* reason;
    } cases[] = {
        {"read-only file", path, readOnly, writable, {}, "the file is read-only"},
        {"read-only folder", inLockedFolder, writable, readOnly, {}, "cannot be written to"},
        {"file size limit", path, writable, writable, "ulimit -f 100; ", "file size limit"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.label);
        const QStringList command = asUnprivilegedUser({codepage, c.path});
        if (command.isEmpty())
            GTEST_SKIP() << "no way to run the tool as a user whom permissions bind";
        const QString parent = QFileInfo(c.path).absolutePath();
        QFile::setPermissions(c.path, c.file);
        QFile::setPermissions(parent, c.folder);
        const QStringList shell{"-c", c.shellSetup + QStringLiteral("exec \"$@\""), "sh"};
        const ToolRun result = runProgram("/bin/sh", shell + command);
        QFile::setPermissions(parent, QFileDevice::Permissions(0x7700));
        EXPECT_EQ(result.status, 1);
        EXPECT_TRUE(result.err.contains(c.path + QStringLiteral(": "))) << result.err.toStdString();
        EXPECT_TRUE(result.err.contains(QString::fromUtf8(c.reason))) << result.err.toStdString();
        EXPECT_EQ(contentOf(c.path), before);
    }
}

TEST_F(ToolDxf, AKilledRewriteLeavesTheOldDrawingOrTheNewOneWhole)
{
    const QByteArray one = drawing("ANSI_1252", crlf);
    const QByteArray before = one.repeated(300000); // 55 MB
    const QByteArray after = drawing("ANSI_936", crlf) + before.mid(one.size());
    QElapsedTimer clock;
    clock.start();
    ASSERT_EQ(vygis({codepage, drawingFile(before)}).status, 0);
    const qint64 wholeRun = clock.elapsed();
    for (const int percent : {20, 50, 80}) {
        SCOPED_TRACE(percent);
        const QString path = drawingFile(before);
        QProcess tool;
        tool.start(QStringLiteral(VYGIS_TOOL), {codepage, path});
        ASSERT_TRUE(tool.waitForStarted());
        QThread::msleep(static_cast<unsigned long>(wholeRun * percent / 100));
        tool.kill();
        tool.waitForFinished();
        const QByteArray found = contentOf(path);
        EXPECT_TRUE(found == before || found == after)
            << "a drawing of " << found.size() << " bytes, neither the old one nor the new one";
    }
}
