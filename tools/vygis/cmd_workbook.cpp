#include "arguments.h"
#include "command.h"
#include "filesafety.h"
#include "vygisutil.h"

#include "xlsxdocument.h"

namespace {

int runCreate(const QStringList& arguments)
{
    const QString name = QStringLiteral("create");
    Arguments parsed;
    if (!parsed.parse(name, arguments, {{}, {}, {}, 1, 1}))
        return ExitUsage;
    const QString path = parsed.positional(0);
    const FileKind existing = inspectFile(path);
    if (existing.isWorkbook()) {
        printNote(QStringLiteral("vygis create: %1 is a workbook already and was left as it was").arg(path));
        return ExitSuccess;
    }
    if (existing.exists())
        return failure(name, workbookInputRefusal(path) + QStringLiteral("; it is left as it is"));
    const QString refusal = outputRefusal(path, {}, OutputUse::Replace, false);
    if (!refusal.isEmpty())
        return failure(name, refusal);
    VyExcelUtil::createExcel(path);
    if (!inspectFile(path).isWorkbook())
        return failure(name, QStringLiteral("%1: could not be saved: %2").arg(path, saveFailureReason(path)));
    return ExitSuccess;
}

// The library's reset deletes the file before it saves the blank workbook, so a save
// that fails there loses the file. The tool saves the same blank workbook over it in one
// atomic step instead: the old file stays until the new one is complete.
int runClear(const QStringList& arguments)
{
    const QString name = QStringLiteral("clear");
    Arguments parsed;
    if (!parsed.parse(name, arguments, {{QStringLiteral("--overwrite")}, {}, {}, 1, 1}))
        return ExitUsage;
    const QString path = parsed.positional(0);
    if (!inspectFile(path).exists())
        return failure(name, QStringLiteral("%1: no such file; only an existing workbook is cleared").arg(path));
    const QString refusal = outputRefusal(path, {}, OutputUse::Replace, parsed.isSet(QStringLiteral("--overwrite")));
    if (!refusal.isEmpty())
        return failure(name, refusal);
    QXlsx::Document blank;
    blank.addSheet(QStringLiteral("Sheet1"));
    if (!blank.saveAs(path))
        return failure(name, QStringLiteral("%1: not cleared: %2; the old file is left as it was")
                                 .arg(path, blank.errorString()));
    return ExitSuccess;
}

} // namespace

Command createCommand()
{
    Command command;
    command.name = QStringLiteral("create");
    command.summary = QStringLiteral("make a blank workbook where no file exists");
    command.usage = QStringLiteral(
        "Usage: vygis create WORKBOOK\n\n"
        "Saves a workbook with one empty sheet \"Sheet1\" at WORKBOOK where no file is.\n"
        "A workbook already there is left untouched (exit status 0, with a note); any\n"
        "other file or a folder is left untouched with exit status 1. Exit status 1 also\n"
        "when the workbook could not be saved; the message says why.");
    command.run = runCreate;
    return command;
}

Command clearCommand()
{
    Command command;
    command.name = QStringLiteral("clear");
    command.summary = QStringLiteral("replace a workbook by a blank one");
    command.usage = QStringLiteral(
        "Usage: vygis clear WORKBOOK [--overwrite]\n\n"
        "Replaces the workbook at WORKBOOK by a workbook with one empty sheet \"Sheet1\".\n"
        "The old file stays until the blank workbook is completely written, so a full\n"
        "disk or a killed process never loses it. A file that is not a workbook (a\n"
        "GeoPackage, a CSV, an encrypted or .xls workbook, ...) is left alone unless\n"
        "--overwrite is given. Exit status 1 when there is no file, it is refused, or\n"
        "the blank workbook could not be saved; the message says why.");
    command.run = runClear;
    return command;
}
