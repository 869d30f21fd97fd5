#include "arguments.h"
#include "command.h"
#include "csv.h"
#include "vygisutil.h"

#include <QFileInfo>

#include <algorithm>

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

// The readers answer a missing file and a sheet that is not a template alike, with
// nothing; the message says which it was.
int nothingRead(const QString& path, const QString& what)
{
    if (!QFileInfo(path).isFile())
        return failure(commandName, QStringLiteral("%1: no such file").arg(path));
    return failure(commandName, QStringLiteral("%1: %2").arg(path, what));
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
    if (!QFileInfo(path).isFile())
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
    if (!VyExcelUtil::updateFieldsTemplateTableContent(content, path))
        return failure(commandName, QStringLiteral("%1: no field rows given; the workbook was reset without a header").arg(path));
    return ExitSuccess;
}

int runWriteNames(const QStringList& positional)
{
    const QString path = positional[0];
    if (!QFileInfo(path).isFile())
        return failure(commandName, QStringLiteral("%1: no such file; table names are only written where a workbook exists").arg(path));
    VyExcelUtil::updateTemplateName(path, positional.mid(1));
    return ExitSuccess;
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
        "Exit status 1 when there is no file, the sheet is not a template, or nothing\n"
        "was found.");
    command.run = runTemplate;
    return command;
}
