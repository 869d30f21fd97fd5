#include "arguments.h"
#include "command.h"
#include "csv.h"
#include "filesafety.h"
#include "vygisutil.h"

#include <QFileInfo>

namespace {

QString number(double value)
{
    return QString::number(value, 'g', 15);
}

// The readers answer a missing file like an empty one; the tool tells them apart.
bool checkFile(const QString& command, const QString& path, int& status)
{
    if (QFileInfo(path).isFile())
        return true;
    status = failure(command, QStringLiteral("%1: no such file").arg(path));
    return false;
}

// The readers answer a file that is not a workbook like an empty one; the message names
// what the file is.
int nothingRead(const QString& command, const QString& path, const QString& what)
{
    const QString unreadable = workbookInputRefusal(path);
    return failure(command, unreadable.isEmpty() ? QStringLiteral("%1: %2").arg(path, what) : unreadable);
}

int runCoords(const QStringList& arguments)
{
    const QString name = QStringLiteral("coords");
    Arguments parsed;
    if (!parsed.parse(name, arguments, {{QStringLiteral("--texts")}, {}, {}, 1, 1}))
        return ExitUsage;
    int status = ExitSuccess;
    if (!checkFile(name, parsed.positional(0), status))
        return status;
    if (parsed.isSet(QStringLiteral("--texts"))) {
        const QStringList texts = VyExcelUtil::readCoordinateFile2(parsed.positional(0));
        if (texts.isEmpty())
            return nothingRead(name, parsed.positional(0),
                           QStringLiteral("no cells to read"));
        for (int i = 0; i < texts.size(); i += 2)
            printLine(csvLine(texts.mid(i, 2)));
        return ExitSuccess;
    }
    const std::vector<VyObjects::TsPoint> points = VyExcelUtil::readCoordinateFile(parsed.positional(0));
    if (points.empty())
        return nothingRead(name, parsed.positional(0),
                           QStringLiteral("no coordinate pairs (an odd number of cells, or none)"));
    for (const VyObjects::TsPoint& point : points)
        printLine(number(point.x) + QLatin1Char(',') + number(point.y));
    return ExitSuccess;
}

int runRules(const QStringList& arguments)
{
    const QString name = QStringLiteral("rules");
    Arguments parsed;
    if (!parsed.parse(name, arguments, {{}, {}, {}, 1, 1}))
        return ExitUsage;
    int status = ExitSuccess;
    if (!checkFile(name, parsed.positional(0), status))
        return status;
    QVector<QStringList> rules;
    if (!VyExcelUtil::readAttributeCheckRuleFromExcel(parsed.positional(0), rules))
        return nothingRead(name, parsed.positional(0),
                           QStringLiteral("not a rule workbook (its cells must end in column D or E)"));
    for (const QStringList& rule : rules)
        printLine(csvLine(rule));
    return ExitSuccess;
}

int runPairs(const QStringList& arguments)
{
    const QString name = QStringLiteral("pairs");
    Arguments parsed;
    if (!parsed.parse(name, arguments, {{}, {}, {}, 1, 1}))
        return ExitUsage;
    int status = ExitSuccess;
    if (!checkFile(name, parsed.positional(0), status))
        return status;
    QMap<QString, QString> pairs;
    if (!VyExcelUtil::readTransactionTemplateFile(parsed.positional(0), pairs))
        return nothingRead(name, parsed.positional(0),
                           QStringLiteral("not a pair workbook (its cells must end in column B)"));
    for (auto pair = pairs.cbegin(); pair != pairs.cend(); ++pair)
        printLine(csvLine({pair.key(), pair.value()}));
    return ExitSuccess;
}

} // namespace

Command coordsCommand()
{
    Command command;
    command.name = QStringLiteral("coords");
    command.summary = QStringLiteral("read a coordinate workbook as x,y points");
    command.usage = QStringLiteral(
        "Usage: vygis coords WORKBOOK [--texts]\n\n"
        "Reads the cells of WORKBOOK's active sheet row by row as x,y pairs and prints one\n"
        "point a line, closed by repeating the first point. A text that is not a number\n"
        "reads as 0.\n\n"
        "  --texts  print the cell texts as they stand instead, two a line; a table three\n"
        "           columns wide (number, X, Y) leaves its first column out\n\n"
        "Exit status 1 when there is no file or no pairs.");
    command.run = runCoords;
    return command;
}

Command rulesCommand()
{
    Command command;
    command.name = QStringLiteral("rules");
    command.summary = QStringLiteral("read attribute check rules from a workbook");
    command.usage = QStringLiteral(
        "Usage: vygis rules WORKBOOK\n\n"
        "Prints the rule rows of WORKBOOK as CSV: every row from row 2 (from row 3 when A1\n"
        "reads \"Related layer\"), columns A to the last used one. Exit status 1 when there\n"
        "is no file or the sheet's cells do not end in column D or E.");
    command.run = runRules;
    return command;
}

Command pairsCommand()
{
    Command command;
    command.name = QStringLiteral("pairs");
    command.summary = QStringLiteral("read a transaction template's name pairs");
    command.usage = QStringLiteral(
        "Usage: vygis pairs WORKBOOK\n\n"
        "Prints the pairs of WORKBOOK as CSV, KEY,VALUE a line in key order: column A maps\n"
        "to column B, both trimmed and upper case, a lower row replacing an earlier one.\n"
        "Exit status 1 when there is no file or the sheet's cells do not end in column B.");
    command.run = runPairs;
    return command;
}
