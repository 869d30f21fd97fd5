#include "command.h"
#include "vygisutil.h"

#include <QFileInfo>

Command createCommand()
{
    Command command;
    command.name = QStringLiteral("create");
    command.summary = QStringLiteral("make a blank workbook where no file exists");
    command.usage = QStringLiteral(
        "Usage: vygis create WORKBOOK\n\n"
        "Saves a workbook with one empty sheet \"Sheet1\" at WORKBOOK, unless a file is\n"
        "already there, which is left untouched. Exit status 1 when no workbook stands at\n"
        "the path afterwards.");
    command.run = [](const QStringList& arguments) {
        if (arguments.size() != 1) {
            printError(QStringLiteral("vygis create: expected one path; see 'vygis create --help'"));
            return int(ExitUsage);
        }
        const QString path = arguments.first();
        if (QFileInfo::exists(path))
            printError(QStringLiteral("vygis create: %1 exists and was left as it was").arg(path));
        VyExcelUtil::createExcel(path);
        if (!QFileInfo::exists(path)) {
            printError(QStringLiteral("vygis create: %1: could not be saved").arg(path));
            return int(ExitFailure);
        }
        return int(ExitSuccess);
    };
    return command;
}

Command clearCommand()
{
    Command command;
    command.name = QStringLiteral("clear");
    command.summary = QStringLiteral("replace a workbook by a blank one");
    command.usage = QStringLiteral(
        "Usage: vygis clear WORKBOOK\n\n"
        "Replaces the file at WORKBOOK by a workbook with one empty sheet \"Sheet1\".\n"
        "Exit status 1 when there is no file or it cannot be removed.");
    command.run = [](const QStringList& arguments) {
        if (arguments.size() != 1) {
            printError(QStringLiteral("vygis clear: expected one path; see 'vygis clear --help'"));
            return int(ExitUsage);
        }
        if (!VyExcelUtil::clearExcel(arguments.first())) {
            printError(QStringLiteral("vygis clear: %1: no file, or it cannot be removed").arg(arguments.first()));
            return int(ExitFailure);
        }
        return int(ExitSuccess);
    };
    return command;
}
