#include "arguments.h"
#include "command.h"
#include "csv.h"
#include "filesafety.h"
#include "vygisutil.h"

#include <algorithm>
#include <functional>

namespace {

const QString commandName = QStringLiteral("template");
const int fieldsPerRow = 5;

int printRows(const QStringList& flat, int perRow)
{
    for (int i = 0; i < flat.size(); i += perRow)
        printLine(csvLine(flat.mid(i, perRow)));
    return ExitSuccess;
}

int printList(const QStringList& texts)
{
    for (const QString& text : texts)
        printLine(text);
    return ExitSuccess;
}

// The readers answer a missing file, a file that is no workbook and a sheet that is not
// a template alike, with nothing; the message says which it was.
int nothingRead(const QString& path, const QString& what)
{
    const QString unreadable = workbookInputRefusal(path);
    if (!unreadable.isEmpty())
        return failure(commandName, unreadable);
    return failure(commandName, QStringLiteral("%1: %2").arg(path, what));
}

// The writers reset the workbook before they write it anew; the tool only lets them at
// a workbook it can read, and keeps the old file until the new one has landed.
int rewriteTemplate(const QString& path, const QString& input, const std::function<bool()>& rewrite)
{
    const QString refusal = outputRefusal(path, {input}, OutputUse::Rewrite, false);
    if (!refusal.isEmpty())
        return failure(commandName, refusal);
    QString reason;
    if (!rewriteKeepingOldFile(path, rewrite, &reason))
        return failure(commandName, reason);
    return ExitSuccess;
}

const QString notATemplate = QStringLiteral(
    "not a field template workbook (A1 to E1 must read TableName, FieldsName, FieldsType, "
    "FieldsLenth, Precision, no cell may stand beyond column E and a field row must follow)");

int runTables(const QStringList& positional)
{
    const QStringList names = VyExcelUtil::readFieldsTemplateTableName(positional[0]);
    if (names.isEmpty())
        return nothingRead(positional[0], QStringLiteral("no table names below \"TableName\" in A1"));
    return printList(names);
}

int runFields(const QStringList& positional, bool withTable)
{
    const QStringList rows = withTable
        ? VyExcelUtil::readFieldsTemplateTableContent1(positional[1], positional[0])
        : VyExcelUtil::readFieldsTemplateTableContent(positional[1], positional[0]);
    if (rows.isEmpty())
        return nothingRead(positional[0], notATemplate + QStringLiteral(", or no field rows of table \"%1\"")
                                                            .arg(positional[1]));
    return printRows(rows, withTable ? fieldsPerRow : fieldsPerRow - 1);
}

int runRows(const QStringList& positional)
{
    const QStringList rows = VyExcelUtil::getImportTemplateTable(positional[0]);
    if (rows.isEmpty())
        return nothingRead(positional[0], notATemplate);
    return printRows(rows, fieldsPerRow);
}

int runNames(const QStringList& positional)
{
    const QStringList names = VyExcelUtil::getImportTemplateTableName(positional[0]);
    if (names.isEmpty())
        return nothingRead(positional[0], notATemplate);
    return printList(names);
}

int runWrite(const QStringList& positional)
{
    const QString path = positional[0];
    if (!inspectFile(path).exists())
        return failure(commandName, QStringLiteral("%1: no such file; a template is only rewritten where one exists").arg(path));
    std::vector<QStringList> records;
    QString error;
    if (!readCsvFile(positional[1], records, &error))
        return failure(commandName, error);
    QStringList content;
    for (const QStringList& record : records) {
        if (record.size() != fieldsPerRow)
            return failure(commandName, QStringLiteral("%1: every row must hold five fields (table, field, type, length, precision)")
                                            .arg(positional[1]));
        content += record;
    }
    if (content.isEmpty())
        return failure(commandName, QStringLiteral("%1: no field rows; %2 is left as it is").arg(positional[1], path));
    return rewriteTemplate(path, positional[1], [&] {
        return VyExcelUtil::updateFieldsTemplateTableContent(content, path);
    });
}

int runWriteNames(const QStringList& positional)
{
    const QString path = positional[0];
    if (!inspectFile(path).exists())
        return failure(commandName, QStringLiteral("%1: no such file; table names are only written where a workbook exists").arg(path));
    return rewriteTemplate(path, QString(), [&] {
        VyExcelUtil::updateTemplateName(path, positional.mid(1));
        return true;
    });
}

struct Action
{
    QString name;
    int minPositional;
    int maxPositional;
};

int runTemplate(const QStringList& arguments)
{
    static const QList<Action> actions{
        {QStringLiteral("tables"), 1, 1}, {QStringLiteral("fields"), 2, 2},
        {QStringLiteral("rows"), 1, 1},   {QStringLiteral("names"), 1, 1},
        {QStringLiteral("write"), 2, 2},  {QStringLiteral("write-names"), 1, 1 << 20}};
    const QString actionName = arguments.value(0);
    const auto action = std::find_if(actions.cbegin(), actions.cend(),
                                     [&](const Action& a) { return a.name == actionName; });
    if (action == actions.cend())
        return usageError(commandName, actionName.isEmpty()
                              ? QStringLiteral("expected an action")
                              : QStringLiteral("unknown action %1").arg(actionName));
    Arguments parsed;
    const QStringList switches = action->name == QStringLiteral("fields")
        ? QStringList{QStringLiteral("--with-table")} : QStringList();
    if (!parsed.parse(commandName, arguments.mid(1),
                      {switches, {}, {}, action->minPositional, action->maxPositional}))
        return ExitUsage;
    const QStringList& positional = parsed.positional();
    if (action->name == QStringLiteral("tables"))
        return runTables(positional);
    if (action->name == QStringLiteral("fields"))
        return runFields(positional, parsed.isSet(QStringLiteral("--with-table")));
    if (action->name == QStringLiteral("rows"))
        return runRows(positional);
    if (action->name == QStringLiteral("names"))
        return runNames(positional);
    if (action->name == QStringLiteral("write"))
        return runWrite(positional);
    return runWriteNames(positional);
}

} // namespace

Command templateCommand()
{
    Command command;
    command.name = commandName;
    command.summary = QStringLiteral("read and rewrite field template workbooks");
    command.usage = QStringLiteral(
        "Usage: vygis template ACTION WORKBOOK [ARGUMENTS]\n\n"
        "A field template workbook lists one field a row below the header TableName,\n"
        "FieldsName, FieldsType, FieldsLenth, Precision (columns A to E); a table name\n"
        "workbook lists table names below TableName in column A. Actions:\n\n"
        "  tables WORKBOOK             the names in column A from row 2, one a line\n"
        "  fields WORKBOOK TABLE       the field rows of TABLE as CSV: name, type, length,\n"
        "                              precision (--with-table: the table name first)\n"
        "  rows WORKBOOK               every field row as CSV, five fields\n"
        "  names WORKBOOK              the tables, one a line per run of equal names\n"
        "  write WORKBOOK CSV          replace the field rows of an existing template by\n"
        "                              the CSV rows (five fields each; CSV may be -)\n"
        "  write-names WORKBOOK NAME...  replace the table names of an existing workbook\n\n"
        "The writers only rewrite an existing workbook the tool can read (never a CSV,\n"
        "an .xls, .ods or encrypted workbook, ...); a copy of the old file stays beside it\n"
        "(WORKBOOK.old-XXXXXX) until the new one has been saved, and is put back when the\n"
        "save fails. Exit status 1 when there is no file, it is not a workbook, the sheet\n"
        "is not a template, nothing was found, or the rewrite failed; the message says why.");
    command.run = runTemplate;
    return command;
}
