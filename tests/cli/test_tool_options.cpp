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
    QString countries() const { return sample(QStringLiteral("countries-110m.json")) + QStringLiteral(":countries"); }
    QString cities() const { return sample(QStringLiteral("cities.geojson")); }

    QString pointsWithHeader() const
    {
        const QString path = file(QStringLiteral("points.txt"));
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
        environment.remove(QStringLiteral("DISPLAY"));
        environment.remove(QStringLiteral("WAYLAND_DISPLAY"));
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
    EXPECT_TRUE(run.err.startsWith(QStringLiteral("Usage: vygis"))) << run.err.toStdString();
    EXPECT_TRUE(run.err.contains(QStringLiteral("  export "))) << run.err.toStdString();
}

TEST_F(ToolOptions, QuietLeavesOutNotesButNotTheOutputOrErrors)
{
    const struct {
        const char* what;
        QStringList arguments;
        int status;
    } cases[] = {
        {"header line passed over", {QStringLiteral("elevation"), pointsWithHeader(), sample(QStringLiteral("dem.tif")), file(QStringLiteral("heights.xlsx"))}, 0},
        {"workbook left as it was", {QStringLiteral("create"), sample(QStringLiteral("cities.xlsx"))}, 0},
    };
    for (const auto& c : cases) {
        const ToolRun noisy = vygis(c.arguments);
        EXPECT_EQ(noisy.status, c.status) << c.what;
        EXPECT_FALSE(noisy.err.isEmpty()) << c.what;
        for (const QStringList& quiet : {QStringList{QStringLiteral("--quiet")} + c.arguments,
                                         c.arguments + QStringList{QStringLiteral("-q")}}) {
            const ToolRun run = vygis(quiet);
            EXPECT_EQ(run.status, c.status) << c.what;
            EXPECT_TRUE(run.err.isEmpty()) << c.what << ": " << run.err.toStdString();
        }
    }
    const ToolRun dump = vygis({QStringLiteral("dump"), QStringLiteral("--quiet"), sample(QStringLiteral("name-pairs.xlsx"))});
    EXPECT_EQ(dump.status, 0);
    EXPECT_FALSE(dump.out.isEmpty());
    const ToolRun missing = vygis({QStringLiteral("--quiet"), QStringLiteral("dump"), file(QStringLiteral("none.xlsx"))});
    EXPECT_EQ(missing.status, 1);
    EXPECT_TRUE(missing.err.contains(QStringLiteral("none.xlsx: no such file"))) << missing.err.toStdString();
}

TEST_F(ToolOptions, QuietJoinPrintsNoCounts)
{
    const QString layer = file(QStringLiteral("cities.geojson"));
    ASSERT_TRUE(QFile::copy(cities(), layer));
    QFile::setPermissions(layer, QFile::ReadOwner | QFile::WriteOwner);
    const QStringList join{QStringLiteral("join"), sample(QStringLiteral("cities.xlsx")), layer,
                           QStringLiteral("--key"), QStringLiteral("NAME")};
    EXPECT_TRUE(vygis(join).err.contains(QStringLiteral("features joined:")));
    const ToolRun quiet = vygis(join + QStringList{QStringLiteral("--quiet")});
    EXPECT_EQ(quiet.status, 0);
    EXPECT_TRUE(quiet.err.isEmpty()) << quiet.err.toStdString();
}

TEST_F(ToolOptions, ListsTakeCommasAndRepeatedOptionsAddToThem)
{
    const QString oldForm = file(QStringLiteral("old.xlsx"));
    ASSERT_EQ(vygis({QStringLiteral("export"), cities(), oldForm, QStringLiteral("--columns"), QStringLiteral("X"),
                     QStringLiteral("Y"), QStringLiteral("NAME")}).status, 0);
    const struct {
        const char* what;
        QStringList options;
        bool optionsFirst;
    } lists[] = {
        {"one list", {QStringLiteral("--columns"), QStringLiteral("X,Y,NAME")}, false},
        {"spaces after commas", {QStringLiteral("--columns"), QStringLiteral("X, Y, NAME")}, false},
        {"repeated", {QStringLiteral("--columns"), QStringLiteral("X,Y"), QStringLiteral("--columns"), QStringLiteral("NAME")}, false},
        {"before the positional arguments", {QStringLiteral("--columns"), QStringLiteral("X,Y,NAME")}, true},
        {"excluded by a list", {QStringLiteral("--columns"), QStringLiteral("X,Y,Z,NAME,POP_MILLIONS"),
                                QStringLiteral("--exclude"), QStringLiteral("2,pop_millions")}, false},
        {"excluded repeatedly", {QStringLiteral("--columns"), QStringLiteral("X,Y,Z,NAME,POP_MILLIONS"),
                                 QStringLiteral("--exclude"), QStringLiteral("Z"), QStringLiteral("--exclude"), QStringLiteral("4")}, false},
    };
    for (const auto& list : lists) {
        const QString workbook = file(QStringLiteral("new.xlsx"));
        QFile::remove(workbook);
        const QStringList positional{cities(), workbook};
        const QStringList arguments = QStringList{QStringLiteral("export")}
            + (list.optionsFirst ? list.options + positional : positional + list.options);
        const ToolRun run = vygis(arguments);
        EXPECT_EQ(run.status, 0) << list.what << ": " << run.err.toStdString();
        EXPECT_EQ(sheet(workbook), sheet(oldForm)) << list.what;
    }
}

TEST_F(ToolOptions, ListWrittenTheOldWayWhereItCouldBeMistakenIsRefusedWithTheNewForm)
{
    const QString workbook = file(QStringLiteral("out.xlsx"));
    const ToolRun run = vygis({QStringLiteral("export"), cities(), QStringLiteral("--columns"), QStringLiteral("X"),
                               QStringLiteral("Y"), workbook});
    EXPECT_EQ(run.status, 2);
    EXPECT_TRUE(run.err.contains(QStringLiteral("--columns X,Y"))) << run.err.toStdString();
    EXPECT_FALSE(QFile::exists(workbook));
    const ToolRun empty = vygis({QStringLiteral("export"), cities(), workbook, QStringLiteral("--columns"), QStringLiteral(",")});
    EXPECT_EQ(empty.status, 2);
    EXPECT_TRUE(empty.err.contains(QStringLiteral("--columns needs a list"))) << empty.err.toStdString();
}

TEST_F(ToolOptions, NoProgressOnAPipe)
{
    const ToolRun run = vygis({QStringLiteral("export"), countries(), file(QStringLiteral("countries.xlsx"))});
    EXPECT_EQ(run.status, 0);
    EXPECT_TRUE(run.err.isEmpty()) << run.err.toStdString();
}

#ifdef Q_OS_UNIX
TEST_F(ToolOptions, ProgressOnATerminalCountsAndIsWipedAndQuietShowsNone)
{
    int status = -1;
    const QByteArray shown = terminalOfRun({QStringLiteral("export"), countries(), file(QStringLiteral("a.xlsx"))}, &status);
    EXPECT_EQ(status, 0);
    EXPECT_TRUE(QString::fromLocal8Bit(shown).contains(QRegularExpression(QStringLiteral("vygis export: \\d+ of 177 features \\(\\d+%\\)"))))
        << shown.toStdString();
    EXPECT_FALSE(shown.contains("Exporting")) << shown.toStdString();
    // Wiped: the last thing written is the return to the start of a blanked line.
    EXPECT_TRUE(shown.endsWith('\r')) << shown.toStdString();

    const QByteArray quiet = terminalOfRun({QStringLiteral("export"), countries(), file(QStringLiteral("b.xlsx")),
                                            QStringLiteral("--quiet")}, &status);
    EXPECT_EQ(status, 0);
    EXPECT_TRUE(quiet.isEmpty()) << quiet.toStdString();
}
#endif
