#include "arguments.h"
#include "command.h"
#include "csv.h"
#include "filesafety.h"
#include "topologyjson.h"
#include "vygisutil.h"


namespace {

const QString overwriteOption = QStringLiteral("--overwrite");

int runErrors(const QStringList& arguments)
{
    const QString name = QStringLiteral("errors");
    Arguments parsed;
    if (!parsed.parse(name, arguments, {{overwriteOption}, {QStringLiteral("--from")}, {}, 1, 1 << 20}))
        return ExitUsage;
    const QString workbook = parsed.positional(0);
    const QString refusal = outputRefusal(workbook, parsed.values(QStringLiteral("--from")), OutputUse::Rewrite,
                                          parsed.isSet(overwriteOption));
    if (!refusal.isEmpty())
        return failure(name, refusal);
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
    if (!VyExcelUtil::exportErrorTable(errors, workbook)) {
        const QString refused = loggedSaveFailure(workbook);
        return failure(name, refused.isEmpty()
                                 ? QStringLiteral("%1: not written: too many errors for a sheet, or the active "
                                                  "sheet is a chart sheet").arg(workbook)
                                 : QStringLiteral("%1: not saved: %2").arg(workbook, refused));
    }
    return ExitSuccess;
}

int runTopology(const QStringList& arguments)
{
    const QString name = QStringLiteral("topology");
    Arguments parsed;
    if (!parsed.parse(name, arguments, {{overwriteOption}, {}, {}, 2, 2}))
        return ExitUsage;
    const QString output = parsed.positional(1);
    const QString refusal = outputRefusal(output, {parsed.positional(0)}, OutputUse::Replace,
                                          parsed.isSet(overwriteOption));
    if (!refusal.isEmpty())
        return failure(name, refusal);
    QString error;
    const auto topology = readTopologyJson(parsed.positional(0), &error);
    if (!topology)
        return failure(name, error);
    // The report answers true whether or not its save landed; the engine logs a refusal.
    VyExcelUtil::exportExcelByTsTopology(output, topology.get());
    const QString refused = loggedSaveFailure(output);
    if (!refused.isEmpty() || !inspectFile(output).isWorkbook())
        return failure(name, QStringLiteral("%1: not saved: %2").arg(output, saveFailureReason(output)));
    return ExitSuccess;
}

} // namespace

Command errorsCommand()
{
    Command command;
    command.name = QStringLiteral("errors");
    command.summary = QStringLiteral("write check errors into a workbook");
    command.usage = QStringLiteral(
        "Usage: vygis errors WORKBOOK [TYPE COUNT LAYER]... [--from CSV] [--overwrite]\n\n"
        "Writes error triples below the header Error Type, Layer Count, Layer Name in\n"
        "columns A to C of WORKBOOK's active sheet; the workbook's other content is kept,\n"
        "and a new one is made where there is none. Triples come as arguments and from\n"
        "CSV files of three fields a row (--from, repeatable; - reads standard input).\n\n"
        "A file at WORKBOOK that cannot be read as a workbook (a CSV, an .xls, .ods or\n"
        "encrypted workbook, a damaged one, ...) is left alone unless --overwrite is given,\n"
        "which replaces it by a new workbook. The workbook is replaced only once the new\n"
        "one is complete. Exit status 1 when WORKBOOK is refused, the list does not fit a\n"
        "sheet, the active sheet is a chart sheet or the save fails; the message says why.");
    command.run = runErrors;
    return command;
}

Command topologyCommand()
{
    Command command;
    command.name = QStringLiteral("topology");
    command.summary = QStringLiteral("report a topology check result given as JSON");
    command.usage = QStringLiteral(
        "Usage: vygis topology RESULT.json WORKBOOK [--overwrite]\n\n"
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
        "members are refused. A workbook at WORKBOOK is replaced once the new one is\n"
        "complete; any other file is left alone unless --overwrite is given. Exit status 1\n"
        "for a file that is not of this shape, or when the workbook is refused or could\n"
        "not be saved; the message says why.");
    command.run = runTopology;
    return command;
}
