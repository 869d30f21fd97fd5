#include "command.h"
#include "csv.h"
#include "filesafety.h"
#include "terminalprogress.h"
#include "vygisutil.h"

#include <QFileInfo>

namespace {

void printRows(const std::vector<QStringList>& rows, TerminalProgress& progress)
{
    // Lines printed on the terminal itself show how far the dump got.
    const bool counted = !outputIsTerminal();
    const long long total = static_cast<long long>(rows.size());
    long long written = 0;
    for (const QStringList& row : rows) {
        writeCsvLine(standardOutput(), row);
        if (counted)
            progress.count(++written, total, QStringLiteral("rows"));
    }
    standardOutput().flush();
    progress.finish();
}

int runDump(const QStringList& arguments)
{
    if (arguments.size() != 1) {
        printError(QStringLiteral("vygis dump: expected one workbook; see 'vygis dump --help'"));
        return ExitUsage;
    }
    const QString path = arguments.first();
    if (!QFileInfo(path).isFile()) {
        printError(QStringLiteral("vygis dump: %1: no such file").arg(path));
        return ExitFailure;
    }
    std::vector<QStringList> rows;
    TerminalProgress progress(QStringLiteral("vygis dump: "));
    progress.step(QStringLiteral("reading %1").arg(path));
    VyExcelUtil::getExcelData(path, rows);
    progress.finish();
    if (rows.empty()) {
        const QString unreadable = workbookInputRefusal(path);
        printError(QStringLiteral("vygis dump: %1").arg(
            unreadable.isEmpty() ? QStringLiteral("%1: no sheet data (the active sheet is empty or "
                                                  "a chart sheet)").arg(path)
                                 : unreadable));
        return ExitFailure;
    }
    printRows(rows, progress);
    return ExitSuccess;
}

} // namespace

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
    command.run = runDump;
    return command;
}
