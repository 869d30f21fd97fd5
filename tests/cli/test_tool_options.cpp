#include "clitesting.h"

#include <QRegularExpression>

#ifdef Q_OS_UNIX
#include <fcntl.h>
#include <unistd.h>
#endif

// What every command shares: --quiet, lists separated by commas, the usage given when
// nothing is asked, and progress shown only on a terminal.
class ToolOptions : public ToolTest
{
protected:
    QString countries() const { return sample("countries-110m.json") + QStringLiteral(":countries"); }
    QString cities() const { return sample("cities.geojson"); }

    QString pointsWithHeader() const
    {
        const QString path = file("points.txt");
        writeBytes(path, "X,Y\n1,2\n");
        return path;
    }

#ifdef Q_OS_UNIX
    // Runs vygis with its standard error on a terminal of its own and gives what that
    // terminal received.
    static QByteArray terminalOfRun(const QStringList& arguments, int* status)
    {
        const int master = posix_openpt(O_RDWR | O_NOCTTY);
        if (master < 0 || grantpt(master) != 0 || unlockpt(master) != 0)
            return "no terminal";
        const QString terminal = QString::fromLocal8Bit(ptsname(master));
        // Kept open, so that what the tool wrote stays readable after it ended.
        const int slave = open(ptsname(master), O_RDWR | O_NOCTTY);
        QProcess process;
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.remove("DISPLAY");
        environment.remove("WAYLAND_DISPLAY");
        process.setProcessEnvironment(environment);
        process.setStandardErrorFile(terminal);
        process.start(QStringLiteral(VYGIS_TOOL), arguments);
        process.waitForFinished(120000);
        *status = process.exitCode();
        QByteArray received;
        fcntl(master, F_SETFL, fcntl(master, F_GETFL) | O_NONBLOCK);
        char buffer[4096];
        for (ssize_t got; (got = read(master, buffer, sizeof buffer)) > 0;)
            received.append(buffer, static_cast<int>(got));
        close(slave);
        close(master);
        return received;
    }
#endif
};

TEST_F(ToolOptions, NoArgumentsGiveTheUsageOnStandardError)
{
    const ToolRun run = vygis({});
    EXPECT_EQ(run.status, 2);
    EXPECT_TRUE(run.out.isEmpty()) << run.out.toStdString();
    EXPECT_TRUE(run.err.startsWith("Usage: vygis")) << run.err.toStdString();
    EXPECT_TRUE(run.err.contains("  export ")) << run.err.toStdString();
}

TEST_F(ToolOptions, QuietLeavesOutNotesButNotTheOutputOrErrors)
{
    const struct {
        const char* what;
        QStringList arguments;
        int status;
    } cases[] = {
        {"header line passed over", {"elevation", pointsWithHeader(), sample("dem.tif"), file("heights.xlsx")}, 0},
        {"workbook left as it was", {"create", sample("cities.xlsx")}, 0},
    };
    for (const auto& c : cases) {
        const ToolRun noisy = vygis(c.arguments);
        EXPECT_EQ(noisy.status, c.status) << c.what;
        EXPECT_FALSE(noisy.err.isEmpty()) << c.what;
        for (const QStringList& quiet : {QStringList{"--quiet"} + c.arguments,
                                         c.arguments + QStringList{"-q"}}) {
            const ToolRun run = vygis(quiet);
            EXPECT_EQ(run.status, c.status) << c.what;
            EXPECT_TRUE(run.err.isEmpty()) << c.what << ": " << run.err.toStdString();
        }
    }
    const ToolRun dump = vygis({"dump", "--quiet", sample("name-pairs.xlsx")});
    EXPECT_EQ(dump.status, 0);
    EXPECT_FALSE(dump.out.isEmpty());
    const ToolRun missing = vygis({"--quiet", "dump", file("none.xlsx")});
    EXPECT_EQ(missing.status, 1);
    EXPECT_TRUE(missing.err.contains("none.xlsx: no such file")) << missing.err.toStdString();
}

TEST_F(ToolOptions, QuietJoinPrintsNoCounts)
{
    const QString layer = file("cities.geojson");
    ASSERT_TRUE(QFile::copy(cities(), layer));
    QFile::setPermissions(layer, QFile::ReadOwner | QFile::WriteOwner);
    const QStringList join{"join", sample("cities.xlsx"), layer, "--key", "NAME"};
    EXPECT_TRUE(vygis(join).err.contains("features joined:"));
    const ToolRun quiet = vygis(join + QStringList{"--quiet"});
    EXPECT_EQ(quiet.status, 0);
    EXPECT_TRUE(quiet.err.isEmpty()) << quiet.err.toStdString();
}

TEST_F(ToolOptions, ListsTakeCommasAndRepeatedOptionsAddToThem)
{
    const QString oldForm = file("old.xlsx");
    ASSERT_EQ(vygis({"export", cities(), oldForm, "--columns", "X", "Y", "NAME"}).status, 0);
    const struct {
        const char* what;
        QStringList options;
        bool optionsFirst;
    } lists[] = {
        {"one list", {"--columns", "X,Y,NAME"}, false},
        {"spaces after commas", {"--columns", "X, Y, NAME"}, false},
        {"repeated", {"--columns", "X,Y", "--columns", "NAME"}, false},
        {"before the positional arguments", {"--columns", "X,Y,NAME"}, true},
        {"excluded by a list", {"--columns", "X,Y,Z,NAME,POP_MILLIONS", "--exclude", "2,pop_millions"}, false},
        {"excluded repeatedly", {"--columns", "X,Y,Z,NAME,POP_MILLIONS", "--exclude", "Z", "--exclude", "4"}, false},
    };
    for (const auto& list : lists) {
        const QString workbook = file("new.xlsx");
        QFile::remove(workbook);
        const QStringList positional{cities(), workbook};
        const QStringList arguments = QStringList{"export"}
            + (list.optionsFirst ? list.options + positional : positional + list.options);
        const ToolRun run = vygis(arguments);
        EXPECT_EQ(run.status, 0) << list.what << ": " << run.err.toStdString();
        EXPECT_EQ(sheet(workbook), sheet(oldForm)) << list.what;
    }
}

TEST_F(ToolOptions, ListWrittenTheOldWayWhereItCouldBeMistakenIsRefusedWithTheNewForm)
{
    const QString workbook = file("out.xlsx");
    const ToolRun run = vygis({"export", cities(), "--columns", "X", "Y", workbook});
    EXPECT_EQ(run.status, 2);
    EXPECT_TRUE(run.err.contains("--columns X,Y")) << run.err.toStdString();
    EXPECT_FALSE(QFile::exists(workbook));
    const ToolRun empty = vygis({"export", cities(), workbook, "--columns", ","});
    EXPECT_EQ(empty.status, 2);
    EXPECT_TRUE(empty.err.contains("--columns needs a list")) << empty.err.toStdString();
}

TEST_F(ToolOptions, NoProgressOnAPipe)
{
    const ToolRun run = vygis({"export", countries(), file("countries.xlsx")});
    EXPECT_EQ(run.status, 0);
    EXPECT_TRUE(run.err.isEmpty()) << run.err.toStdString();
}

#ifdef Q_OS_UNIX
TEST_F(ToolOptions, ProgressOnATerminalCountsAndIsWipedAndQuietShowsNone)
{
    int status = -1;
    const QByteArray shown = terminalOfRun({"export", countries(), file("a.xlsx")}, &status);
    EXPECT_EQ(status, 0);
    const QRegularExpression progress("vygis export: \\d+ of 177 features \\(\\d+%\\)");
    EXPECT_TRUE(QString::fromLocal8Bit(shown).contains(progress)) << shown.toStdString();
    EXPECT_FALSE(shown.contains("Exporting")) << shown.toStdString();
    // Wiped: the last thing written is the return to the start of a blanked line.
    EXPECT_TRUE(shown.endsWith('\r')) << shown.toStdString();

    const QByteArray quiet = terminalOfRun({"export", countries(), file("b.xlsx"), "--quiet"}, &status);
    EXPECT_EQ(status, 0);
    EXPECT_TRUE(quiet.isEmpty()) << quiet.toStdString();
}
#endif
