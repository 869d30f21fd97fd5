#include "arguments.h"
#include "command.h"
#include "csv.h"
#include "topologyjson.h"
#include "vygisutil.h"

#include <QFile>
#include <QFileInfo>

namespace {

int runErrors(const QStringList& arguments)
{
    const QString name = QStringLiteral("errors");
    Arguments parsed;
    if (!parsed.parse(name, arguments, {{}, {QStringLiteral("--from")}, {}, 1, 1 << 20}))
        return ExitUsage;
    QStringList errors = parsed.positional().mid(1);
    for (const QString& csvPath : parsed.values(QStringLiteral("--from"))) {
        std::vector<QStringList> records;
        QString error;
        if (!readCsvFile(csvPath, records, &error))
            return failure(name, error);
        for (const QStringList& record : records) {
            if (record.size() != 3)
                return failure(name, QStringLiteral("%1: every row must hold three fields (type, count, layer)").arg(csvPath));
            errors += record;
        }
    }
    if (errors.isEmpty() || errors.size() % 3 != 0)
        return usageError(name, QStringLiteral("errors come in threes: TYPE COUNT LAYER"));
    if (!VyExcelUtil::exportErrorTable(errors, parsed.positional(0)))
        return failure(name, QStringLiteral("%1: not written (too many errors for a sheet, a chart sheet, or the save failed)")
                                 .arg(parsed.positional(0)));
    return ExitSuccess;
}

int runTopology(const QStringList& arguments)
{
    const QString name = QStringLiteral("topology");
    Arguments parsed;
    if (!parsed.parse(name, arguments, {{}, {}, {}, 2, 2}))
        return ExitUsage;
    QString error;
    const auto topology = readTopologyJson(parsed.positional(0), &error);
    if (!topology)
        return failure(name, error);
    const QString output = parsed.positional(1);
    QFile::remove(output);
    VyExcelUtil::exportExcelByTsTopology(output, topology.get());
    if (!QFileInfo(output).isFile())
        return failure(name, QStringLiteral("%1: could not be saved").arg(output));
    return ExitSuccess;
}

} // namespace

Command errorsCommand()
{
    Command command;
    command.name = QStringLiteral("errors");
    command.summary = QStringLiteral("write check errors into a workbook");
    command.usage = QStringLiteral(
        "Usage: vygis errors WORKBOOK [TYPE COUNT LAYER]... [--from CSV]\n\n"
        "Writes error triples below the header Error Type, Layer Count, Layer Name in\n"
        "columns A to C of WORKBOOK's active sheet; the workbook's other content is kept,\n"
        "and a new one is made where there is none. Triples come as arguments and from\n"
        "CSV files of three fields a row (--from, repeatable; - reads standard input).\n\n"
        "Exit status 1 when the list does not fit a sheet, the active sheet is a chart\n"
        "sheet or the save fails.");
    command.run = runErrors;
    return command;
}

Command topologyCommand()
{
    Command command;
    command.name = QStringLiteral("topology");
    command.summary = QStringLiteral("report a topology check result given as JSON");
    command.usage = QStringLiteral(
        "Usage: vygis topology RESULT.json WORKBOOK\n\n"
        "Writes the errors of a finished topology or attribute check to a new WORKBOOK,\n"
        "one row each below the header Error type, Status, Number, Layer, Notes, Feature 1,\n"
        "Feature 2, coordinate, Related layer. RESULT.json holds:\n\n"
        "  { \"attributeCheck\": false,      (optional)\n"
        "    \"reportedCount\": 2,           (optional: the count the check reported)\n"
        "    \"errors\": [ { \"number\": 1, \"ruleId\": 2, \"featureId\": 15,\n"
        "                  \"relatedFeatureId\": 16, \"layerId\": 1, \"relatedLayerId\": 1,\n"
        "                  \"layerName\": \"countries\", \"relatedLayerName\": \"countries\",\n"
        "                  \"coordinate\": \"12.5,41.9\", \"ruleDescription\": \"...\",\n"
        "                  \"errorType\": \"\", \"isException\": false,\n"
        "                  \"unreadable\": false } ] }\n\n"
        "Every member of an error is optional; \"unreadable\": true marks an error that is\n"
        "counted but cannot be read (the report repeats the row before it). Unknown\n"
        "members are refused. Exit status 1 for a file that is not of this shape, or when\n"
        "the workbook could not be saved.");
    command.run = runTopology;
    return command;
}
