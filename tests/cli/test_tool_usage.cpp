#include "clitesting.h"

namespace {

const QStringList allCommands{
    QStringLiteral("demo"),     QStringLiteral("export"),       QStringLiteral("export-table"),
    QStringLiteral("join"),     QStringLiteral("elevation"),    QStringLiteral("errors"),
    QStringLiteral("topology"), QStringLiteral("dump"),         QStringLiteral("coords"),
    QStringLiteral("rules"),    QStringLiteral("pairs"),        QStringLiteral("template"),
    QStringLiteral("create"),   QStringLiteral("clear"),        QStringLiteral("dxf-codepage"),
    QStringLiteral("layer-name")};

} // namespace

using ToolUsage = ToolTest;

TEST_F(ToolUsage, OverviewListsEveryCommandAndHowLayersAreNamed)
{
    const ToolRun run = vygis({QStringLiteral("--help")});
    EXPECT_EQ(run.status, 0);
    for (const QString& command : allCommands)
        EXPECT_TRUE(run.out.contains(QStringLiteral("  ") + command + QLatin1Char(' '))) << command.toStdString();
    EXPECT_TRUE(run.out.contains(QStringLiteral("PATH:LAYER")));
    EXPECT_EQ(vygis({}).status, 2);
}

TEST_F(ToolUsage, EveryCommandHasHelp)
{
    for (const QString& command : allCommands) {
        const ToolRun run = vygis({command, QStringLiteral("--help")});
        EXPECT_EQ(run.status, 0) << command.toStdString();
        EXPECT_TRUE(run.out.startsWith(QStringLiteral("Usage: vygis ") + command)) << command.toStdString();
    }
}

TEST_F(ToolUsage, EveryCommandTellsTheVersion)
{
    const ToolRun overall = vygis({QStringLiteral("--version")});
    EXPECT_EQ(overall.status, 0);
    EXPECT_TRUE(overall.out.startsWith(QStringLiteral("vygis "))) << overall.out.toStdString();
    for (const QString& command : allCommands) {
        const ToolRun run = vygis({command, QStringLiteral("--version")});
        EXPECT_EQ(run.status, 0) << command.toStdString();
        EXPECT_EQ(run.out, overall.out) << command.toStdString();
    }
}

TEST_F(ToolUsage, WrongUsageExitsWithTwoAndSaysWhy)
{
    const ToolRun unknownCommand = vygis({QStringLiteral("frobnicate")});
    EXPECT_EQ(unknownCommand.status, 2);
    EXPECT_TRUE(unknownCommand.err.contains(QStringLiteral("unknown command")));

    const ToolRun unknownOption = vygis({QStringLiteral("rules"), QStringLiteral("x.xlsx"), QStringLiteral("--fast")});
    EXPECT_EQ(unknownOption.status, 2);
    EXPECT_TRUE(unknownOption.err.contains(QStringLiteral("unknown option --fast")));

    EXPECT_EQ(vygis({QStringLiteral("rules")}).status, 2);
    EXPECT_EQ(vygis({QStringLiteral("rules"), QStringLiteral("a"), QStringLiteral("b")}).status, 2);
    EXPECT_EQ(vygis({QStringLiteral("template"), QStringLiteral("sort"), QStringLiteral("a")}).status, 2);
    EXPECT_EQ(vygis({QStringLiteral("join"), QStringLiteral("a"), QStringLiteral("b")}).status, 2);  // no --key
}
