#include "clitesting.h"

namespace {

const QStringList allCommands{
    "demo",     "export",       "export-table",
    "join",     "elevation",    "errors",
    "topology", "dump",         "coords",
    "rules",    "pairs",        "template",
    "create",   "clear",        "dxf-codepage",
    "layer-name"};

} // namespace

using ToolUsage = ToolTest;

TEST_F(ToolUsage, OverviewListsEveryCommandAndHowLayersAreNamed)
{
    const ToolRun run = vygis({"--help"});
    EXPECT_EQ(run.status, 0);
    for (const QString& command : allCommands)
        EXPECT_TRUE(run.out.contains(QStringLiteral("  ") + command + QLatin1Char(' '))) << command.toStdString();
    EXPECT_TRUE(run.out.contains("PATH:LAYER"));
}

TEST_F(ToolUsage, EveryCommandHasHelp)
{
    for (const QString& command : allCommands) {
        const ToolRun run = vygis({command, "--help"});
        EXPECT_EQ(run.status, 0) << command.toStdString();
        EXPECT_TRUE(run.out.startsWith(QStringLiteral("Usage: vygis ") + command)) << command.toStdString();
    }
}

TEST_F(ToolUsage, EveryCommandTellsTheVersion)
{
    const ToolRun overall = vygis({"--version"});
    EXPECT_EQ(overall.status, 0);
    EXPECT_TRUE(overall.out.startsWith("vygis ")) << overall.out.toStdString();
    for (const QString& command : allCommands) {
        const ToolRun run = vygis({command, "--version"});
        EXPECT_EQ(run.status, 0) << command.toStdString();
        EXPECT_EQ(run.out, overall.out) << command.toStdString();
    }
}

TEST_F(ToolUsage, WrongUsageExitsWithTwoAndSaysWhy)
{
    const ToolRun unknownCommand = vygis({"frobnicate"});
    EXPECT_EQ(unknownCommand.status, 2);
    EXPECT_TRUE(unknownCommand.err.contains("unknown command"));

    const ToolRun unknownOption = vygis({"rules", "x.xlsx", "--fast"});
    EXPECT_EQ(unknownOption.status, 2);
    EXPECT_TRUE(unknownOption.err.contains("unknown option --fast"));

    EXPECT_EQ(vygis({"rules"}).status, 2);
    EXPECT_EQ(vygis({"rules", "a", "b"}).status, 2);
    EXPECT_EQ(vygis({"template", "sort", "a"}).status, 2);
    EXPECT_EQ(vygis({"join", "a", "b"}).status, 2);  // no --key
}
