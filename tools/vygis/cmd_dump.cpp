#include "command.h"
#include "csv.h"
#include "filesafety.h"
#include "vygisutil.h"

#include <QFileInfo>

Command dumpCommand()
{
    Command command;
    command.name = QStringLiteral("dump");
    command.summary = QStringLiteral("print the active sheet of a workbook as CSV");
    command.usage = QStringLiteral(
        "Usage: vygis dump WORKBOOK\n\n"
        "Prints the active worksheet of WORKBOOK as CSV on standard output, one line per\n"
        "sheet row from row 1, one field per column from column A. Exit status 1 when the\n"
        "file is missing or holds no sheet data.");
    command.run = [](const QStringList& arguments) {
        if (arguments.size() != 1) {
            printError(QStringLiteral("vygis dump: expected one workbook; see 'vygis dump --help'"));
            return int(ExitUsage);
        }
        if (!QFileInfo(arguments.first()).isFile()) {
            printError(QStringLiteral("vygis dump: %1: no such file").arg(arguments.first()));
            return int(ExitFailure);
        }
        std::vector<QStringList> rows;
        VyExcelUtil::getExcelData(arguments.first(), rows);
        if (rows.empty()) {
            const QString unreadable = workbookInputRefusal(arguments.first());
            printError(QStringLiteral("vygis dump: %1").arg(
                unreadable.isEmpty() ? QStringLiteral("%1: no sheet data (the active sheet is empty or "
                                                      "a chart sheet)").arg(arguments.first())
                                     : unreadable));
            return int(ExitFailure);
        }
        for (const QStringList& row : rows)
            writeCsvLine(standardOutput(), row);
        return int(ExitSuccess);
    };
    return command;
}
