#include "clitesting.h"

#include <QDir>
#include <QFileInfo>

// The commands that read or write layers live in a module the tool loads only to run
// one of them: the other commands, and the help of all, start without GDAL.
class ToolLayerModule : public ToolTest
{
protected:
    // The files the dynamic loader opened for a run of the tool, as glibc's loader
    // lists them on standard error when asked.
    static QString filesLoadedBy(const QStringList& arguments)
    {
        return runProgram(QStringLiteral(VYGIS_TOOL), arguments, {{"LD_DEBUG", "files"}}).err;
    }

    // Where the module is seen from the tool's folder, the same wherever the tool is.
    static QString moduleFromToolFolder()
    {
        return QFileInfo(QStringLiteral(VYGIS_TOOL)).dir().relativeFilePath(QStringLiteral(VYGIS_LAYER_MODULE_FILE));
    }
};

TEST_F(ToolLayerModule, OnlyTheLayerCommandsLoadGdal)
{
#ifndef Q_OS_LINUX
    GTEST_SKIP() << "reads what the GNU dynamic loader reports";
#endif
    const QString exported = file("cities.xlsx");
    const QString layerRun = filesLoadedBy({"export", sample("cities.geojson"), exported});
    if (!layerRun.contains("file="))
        GTEST_SKIP() << "this dynamic loader does not list the files it loads";
    EXPECT_TRUE(layerRun.contains("libgdal")) << layerRun.toStdString();
    EXPECT_TRUE(layerRun.contains(QFileInfo(QStringLiteral(VYGIS_LAYER_MODULE_FILE)).fileName()));

    const QList<QStringList> runsWithoutLayers{
        {"--version"},
        {"--help"},
        {"export", "--help"},
        {"demo", "--version"},
        {"dump", exported},
        {"rules", sample("check-rules.xlsx")}};
    for (const QStringList& arguments : runsWithoutLayers) {
        const QString loaded = filesLoadedBy(arguments);
        EXPECT_TRUE(loaded.contains("libQt5Core")) << arguments.join(' ').toStdString();
        EXPECT_FALSE(loaded.contains("libgdal")) << arguments.join(' ').toStdString();
        EXPECT_FALSE(loaded.contains("vygisutil-gdal")) << arguments.join(' ').toStdString();
    }
}

TEST_F(ToolLayerModule, AModuleThatCannotBeLoadedFailsTheLayerCommandsOnly)
{
#ifdef Q_OS_WIN
    GTEST_SKIP() << "a copy of the program finds its DLLs only beside the original";
#endif
    // A copy of the tool in a folder of its own, so that the module is where the test
    // puts it, or nowhere.
    const QString tool = file(QStringLiteral("bin/") + QFileInfo(QStringLiteral(VYGIS_TOOL)).fileName());
    const QString module = QDir::cleanPath(file("bin/") + moduleFromToolFolder());
    ASSERT_TRUE(QDir().mkpath(file("bin")) && QDir().mkpath(QFileInfo(module).path()));
    ASSERT_TRUE(QFile::copy(QStringLiteral(VYGIS_TOOL), tool));
    const QStringList exportCities{"export", sample("cities.geojson"), file("cities.xlsx")};
    const QString cannotLoad = QStringLiteral("vygis export: cannot load the layer commands from %1: ")
                                   .arg(QDir::toNativeSeparators(module));

    const ToolRun missing = runProgram(tool, exportCities);
    EXPECT_EQ(missing.status, 1);
    EXPECT_TRUE(missing.err.startsWith(cannotLoad)) << missing.err.toStdString();
    EXPECT_EQ(missing.err, cannotLoad + QStringLiteral("no such file\n"));

    writeBytes(module, QByteArray("not a library\n"));
    const ToolRun broken = runProgram(tool, exportCities);
    EXPECT_EQ(broken.status, 1);
    EXPECT_TRUE(broken.err.startsWith(cannotLoad)) << broken.err.toStdString();
    EXPECT_GT(broken.err.size(), cannotLoad.size() + 1) << "the reason follows";
    EXPECT_FALSE(QFile::exists(file("cities.xlsx")));

    const ToolRun dump = runProgram(tool, {"dump", sample("cities.xlsx")});
    EXPECT_EQ(dump.status, 0) << dump.err.toStdString();
    EXPECT_EQ(dump.out, vygis({"dump", sample("cities.xlsx")}).out);

    ASSERT_TRUE(QFile::remove(module) && QFile::copy(QStringLiteral(VYGIS_LAYER_MODULE_FILE), module));
    const ToolRun found = runProgram(tool, exportCities);
    EXPECT_EQ(found.status, 0) << found.err.toStdString();
    EXPECT_TRUE(QFile::exists(file("cities.xlsx")));
}
