// What the tool's writing commands do to files they were not asked to replace: every
// refusal leaves the file byte for byte as it was, exits 1 and names the file and why.

#include "layertesting.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QThread>

#include <functional>

#ifdef Q_OS_UNIX
#include <csignal>
#include <unistd.h>
#endif

using namespace VyObjects;

namespace {

// The writing commands, each with arguments that write its output at a given path.
struct WritingCommand
{
    const char* name;
    std::function<QStringList(const QString& output)> arguments;
};

} // namespace

class ToolSafety : public ToolTest
{
protected:
    void SetUp() override
    {
        writeBytes(file("table.csv"), "name,pop\nOslo,700000\nLima,9700000\n");
        writeBytes(file("fields.csv"), "ROADS,NAME,Text,50,0\nROADS,LANES,Integer,4,0\n");
    }

    QList<WritingCommand> writingCommands() const
    {
        const QString countries = sample("countries-110m.json") + QStringLiteral(":countries");
        const QString table = file("table.csv");
        const QString fields = file("fields.csv");
        const QString topology = sample("topology.json");
        const QString points = sample("elevation-points.txt");
        const QString dem = sample("dem.tif");
        return {
            {"export", [=](const QString& out) { return QStringList{"export", countries, out}; }},
            {"export-table", [=](const QString& out) { return QStringList{"export-table", table, out}; }},
            {"errors", [=](const QString& out) { return QStringList{"errors", out, "Gap", "2", "roads"}; }},
            {"topology", [=](const QString& out) { return QStringList{"topology", topology, out}; }},
            {"elevation", [=](const QString& out) { return QStringList{"elevation", points, dem, out}; }},
            {"template write", [=](const QString& out) { return QStringList{"template", "write", out, fields}; }},
            {"template write-names", [=](const QString& out) { return QStringList{"template", "write-names", out, "ROADS"}; }},
            {"clear", [=](const QString& out) { return QStringList{"clear", out}; }},
            {"create", [=](const QString& out) { return QStringList{"create", out}; }},
        };
    }

    // A file of each kind that is not a workbook, under a workbook's name where a user
    // might have renamed it, with the words the refusal must use for it.
    struct ForeignFile
    {
        QString path;
        QString kindWords;
    };

    QList<ForeignFile> foreignFiles()
    {
        QList<ForeignFile> files;
        files.append({pointLayer(file("survey.gpkg"), "plots", {{"owner"}}, {}), "GeoPackage"});
        writeBytes(file("renamed-csv.xlsx"), "id,name\n1,Oslo\n");
        files.append({file("renamed-csv.xlsx"), "text file"});
        writeBytes(file("old.xlsx"), compoundDocument({"Root Entry", "Workbook"}));
        files.append({file("old.xlsx"), "Excel 97-2003"});
        writeBytes(file("locked.xlsx"), compoundDocument({"Root Entry", "EncryptionInfo", "EncryptedPackage"}));
        files.append({file("locked.xlsx"), "encrypted"});
        writeOpenDocumentSpreadsheet(file("calc.xlsx"));
        files.append({file("calc.xlsx"), "OpenDocument"});
        writeBytes(file("empty.xlsx"), QByteArray());
        files.append({file("empty.xlsx"), "empty file"});
        return files;
    }

    // A copy of a sample workbook that the command may be asked to write.
    QString workbookCopy(const char* sampleName = "field-template.xlsx")
    {
        return copyOf(QString::fromLatin1(sampleName));
    }
};

TEST_F(ToolSafety, FilesThatAreNotWorkbooksAreLeftAsTheyWere)
{
    const QList<ForeignFile> files = foreignFiles();
    for (const WritingCommand& command : writingCommands()) {
        for (const ForeignFile& foreign : files) {
            SCOPED_TRACE(std::string(command.name) + " over " + foreign.path.toStdString());
            const QByteArray before = bytesOf(foreign.path);
            const ToolRun run = vygis(command.arguments(foreign.path));
            EXPECT_EQ(run.status, 1) << run.err.toStdString();
            EXPECT_TRUE(run.err.contains(foreign.path)) << run.err.toStdString();
            EXPECT_TRUE(run.err.contains(foreign.kindWords)) << run.err.toStdString();
            EXPECT_EQ(bytesOf(foreign.path), before);
        }
    }
}

TEST_F(ToolSafety, OverwriteReplacesAFileThatIsNotAWorkbook)
{
    const QString csv = file("renamed-csv.xlsx");
    const QStringList replacing{"export", "export-table", "errors", "topology", "elevation", "clear"};
    for (const WritingCommand& command : writingCommands()) {
        if (!replacing.contains(QString::fromLatin1(command.name)))
            continue;
        SCOPED_TRACE(command.name);
        writeBytes(csv, "id,name\n1,Oslo\n");
        const ToolRun run = vygis(command.arguments(csv) << QStringLiteral("--overwrite"));
        EXPECT_EQ(run.status, 0) << run.err.toStdString();
        EXPECT_TRUE(bytesOf(csv).startsWith("PK\x03\x04"));
    }
}

TEST_F(ToolSafety, AFolderIsNeverWritten)
{
    const QString folder = file("reports");
    ASSERT_TRUE(QDir().mkpath(folder));
    writeBytes(QDir(folder).filePath("kept.txt"), "kept");
    for (const WritingCommand& command : writingCommands()) {
        SCOPED_TRACE(command.name);
        for (const QString& path : {folder, folder + QLatin1Char('/')}) {
            const ToolRun run = vygis(command.arguments(path) << QStringLiteral("--overwrite"));
            // create takes no --overwrite: a usage error is as good a refusal.
            EXPECT_NE(run.status, 0);
            EXPECT_TRUE(QFileInfo(folder).isDir());
            EXPECT_EQ(QDir(folder).entryList(QDir::NoDotAndDotDot | QDir::AllEntries), QStringList{"kept.txt"});
        }
        const ToolRun run = vygis(command.arguments(folder));
        EXPECT_EQ(run.status, 1) << run.err.toStdString();
        EXPECT_TRUE(run.err.contains(folder) && run.err.contains("folder")) << run.err.toStdString();
    }
}

TEST_F(ToolSafety, TheOutputIsNeverTheInput)
{
    const QString table = file("table.csv");
    const QString topology = copyOf("topology.json");
    const QString countries = copyOf("countries-110m.json");
    const QString fields = file("fields.csv");
    const QList<QStringList> runs{
        {"export", countries + QStringLiteral(":countries"), countries, "--overwrite"},
        {"export-table", table, table, "--overwrite"},
        {"errors", table, "--from", table, "--overwrite"},
        {"topology", topology, topology, "--overwrite"},
        {"template", "write", fields, fields},
    };
    for (const QStringList& arguments : runs) {
        SCOPED_TRACE(arguments.join(QLatin1Char(' ')).toStdString());
        const QString input = arguments.at(arguments.first() == "template" ? 2 : 1)
                                  .section(QLatin1Char(':'), 0, 0);
        const QByteArray before = bytesOf(input);
        const ToolRun run = vygis(arguments);
        EXPECT_EQ(run.status, 1) << run.err.toStdString();
        EXPECT_TRUE(run.err.contains("input")) << run.err.toStdString();
        EXPECT_EQ(bytesOf(input), before);
    }
}

TEST_F(ToolSafety, TheDemoWritesOnlyIntoItsOwnFolder)
{
    const QString folder = file("survey");
    ASSERT_TRUE(QDir().mkpath(folder));
    const QString own = QDir(folder).filePath("countries.gpkg");
    writeBytes(own, "the only copy of a survey");
    const ToolRun refused = vygis({"demo", folder});
    EXPECT_EQ(refused.status, 1);
    EXPECT_TRUE(refused.err.contains(folder)) << refused.err.toStdString();
    EXPECT_EQ(bytesOf(own), QByteArray("the only copy of a survey"));
    EXPECT_EQ(QDir(folder).entryList(QDir::Files | QDir::Hidden), QStringList{"countries.gpkg"});

    const QString demo = file("demo");
    EXPECT_EQ(vygis({"demo", demo}).status, 0);
    EXPECT_EQ(vygis({"demo", demo}).status, 0) << "a demo's own folder may be written again";
}

TEST_F(ToolSafety, AnExportThatCutsTextsToExcelsLimitSaysSo)
{
    const QString package = pointLayer(file("notes.gpkg"), "notes", {{"note"}},
                                       {{TsString(std::string(40000, 'n').c_str())}});
    const QString workbook = file("notes.xlsx");
    const ToolRun run = vygis({"export", package, workbook});
    EXPECT_EQ(run.status, 0) << run.err.toStdString();
    EXPECT_TRUE(run.err.contains("note") && run.err.contains("cut to 32767"))
        << run.err.toStdString();
}

TEST_F(ToolSafety, AMissingFolderIsNamed)
{
    const QString output = file("no/such/folder/out.xlsx");
    for (const WritingCommand& command : writingCommands()) {
        SCOPED_TRACE(command.name);
        const ToolRun run = vygis(command.arguments(output));
        EXPECT_EQ(run.status, 1);
        EXPECT_TRUE(run.err.contains(output)) << run.err.toStdString();
        EXPECT_FALSE(QFileInfo::exists(output));
    }
}

#ifdef Q_OS_UNIX

class ToolSafetyLimits : public ToolSafety
{
protected:
    // Runs the tool through the shell, after setup (a limit), under wrapper (another user).
    ToolRun shellRun(const QString& setup, const QString& wrapper, const QStringList& arguments)
    {
        QStringList quoted;
        for (const QString& argument : arguments)
            quoted.append(QLatin1Char('\'') + QString(argument).replace(QLatin1Char('\''), "'\\''")
                          + QLatin1Char('\''));
        const QString script = QStringLiteral("%1 exec %2 '%3' %4")
                                   .arg(setup, wrapper, QStringLiteral(VYGIS_TOOL), quoted.join(QLatin1Char(' ')));
        return runProgram("/bin/sh", {"-c", script});
    }

    // Root may write any file; the tool then runs as nobody, in a folder nobody may
    // enter, over files nobody may read.
    QString unprivileged()
    {
        if (geteuid() != 0)
            return QString();
        QFile::setPermissions(QFileInfo(file("x")).absolutePath(),
                              QFileDevice::ReadOwner | QFileDevice::WriteOwner | QFileDevice::ExeOwner
                                  | QFileDevice::ReadOther | QFileDevice::ExeOther);
        for (const QString& name : QDir(QFileInfo(file("x")).absolutePath()).entryList(QDir::Files))
            QFile::setPermissions(file(name), QFile::permissions(file(name)) | QFileDevice::ReadOther);
        return QStringLiteral("setpriv --reuid=65534 --regid=65534 --clear-groups");
    }

    static bool toolReachableAsNobody()
    {
        if (geteuid() != 0)
            return true;
        QProcess probe;
        probe.start("setpriv", {"--reuid=65534", "--regid=65534", "--clear-groups", QStringLiteral(VYGIS_TOOL),
                                                "--version"});
        return probe.waitForFinished(30000) && probe.exitStatus() == QProcess::NormalExit && probe.exitCode() == 0;
    }
};

TEST_F(ToolSafetyLimits, AReadOnlyWorkbookIsLeftAsItWas)
{
    if (!toolReachableAsNobody())
        GTEST_SKIP() << "the tool's folder cannot be entered by an unprivileged user";
    const QString workbook = workbookCopy();
    QFile::setPermissions(workbook, QFileDevice::ReadOwner | QFileDevice::ReadGroup | QFileDevice::ReadOther);
    const QByteArray before = bytesOf(workbook);
    const QString as = unprivileged();
    for (const WritingCommand& command : writingCommands()) {
        if (qstrcmp(command.name, "create") == 0)
            continue;
        SCOPED_TRACE(command.name);
        const ToolRun run = shellRun(QString(), as, command.arguments(workbook));
        EXPECT_EQ(run.status, 1) << run.err.toStdString();
        EXPECT_TRUE(run.err.contains(workbook) && run.err.contains("read-only")) << run.err.toStdString();
        EXPECT_EQ(bytesOf(workbook), before);
    }
}

TEST_F(ToolSafetyLimits, AFullDiskLeavesTheOldWorkbook)
{
    for (const WritingCommand& command : writingCommands()) {
        if (qstrcmp(command.name, "create") == 0)
            continue;
        SCOPED_TRACE(command.name);
        const QString workbook = workbookCopy("cities.xlsx");
        const QByteArray before = bytesOf(workbook);
        // Writes stop at 512 bytes, below the size of any workbook.
        const ToolRun run = shellRun("ulimit -f 1;", QString(), command.arguments(workbook));
        EXPECT_EQ(run.status, 1) << run.err.toStdString();
        EXPECT_TRUE(run.err.contains(workbook)) << run.err.toStdString();
        EXPECT_TRUE(run.err.contains("too large") || run.err.contains("limit"))
            << run.err.toStdString();
        EXPECT_EQ(bytesOf(workbook), before);
        QFile::remove(workbook);
    }
}

// An export long enough to be stopped part way: 200,000 features of six fields.
TEST_F(ToolSafetyLimits, AnExportStoppedPartWayLeavesTheOldWorkbook)
{
    const QString package = file("parcels.gpkg");
    QString error;
    const auto source = TsGdalDataSource::create(package, &error);
    std::vector<TsGdalFieldDefinition> fields;
    for (const char* name : {"a", "b", "c", "d", "e", "f"})
        fields.emplace_back(QString::fromLatin1(name));
    ASSERT_TRUE(source && source->createLayer("parcels", TsLayer::PointLayer, fields, &error,
                                              TsGdalDataSource::WithoutSpatialIndex)) << error.toStdString();
    const auto writer = source->featureWriter("parcels", &error);
    const std::vector<TsVariant> values(6, TsVariant(TsString("parcel value")));
    for (int i = 0; i < 200000; ++i)
        writer->addFeature(values);
    ASSERT_TRUE(writer->commit(&error)) << error.toStdString();

    // Stopped at fractions of a full run: early ones land while the layer is read, late
    // ones while the new workbook is written. Either the old workbook is whole or the
    // new one is complete: never a mix.
    const QByteArray before = bytesOf(sample("cities.xlsx"));
    QElapsedTimer clock;
    clock.start();
    ASSERT_EQ(vygis({"export", package, file("timed.xlsx")}).status, 0);
    const qint64 fullRun = clock.elapsed();
    int stopped = 0;
    for (double fraction : {0.3, 0.9}) {
        for (int signal : {SIGINT, SIGTERM, SIGKILL}) {
            SCOPED_TRACE(testing::Message() << "signal " << signal << " at " << fraction << " of " << fullRun << " ms");
            const QString workbook = file("stopped.xlsx");
            QFile::remove(workbook);
            QFile::copy(sample("cities.xlsx"), workbook);
            QProcess export_;
            export_.start(QStringLiteral(VYGIS_TOOL), {"export", package, workbook});
            ASSERT_TRUE(export_.waitForStarted());
            QThread::msleep(static_cast<unsigned long>(fraction * fullRun));
            ::kill(static_cast<pid_t>(export_.processId()), signal);
            export_.waitForFinished(60000);
            // A signal may also land after the new workbook has replaced the old one.
            if (bytesOf(workbook) == before)
                ++stopped;
            else
                EXPECT_EQ(sheet(workbook).size(), 200002u);
        }
    }
    EXPECT_GE(stopped, 3) << "too few runs were stopped part way to tell anything";
}

#endif // Q_OS_UNIX
