#include "arguments.h"
#include "command.h"
#include "filesafety.h"
#include "import/attributejoin.h"
#include "interruption.h"
#include "joinreport.h"
#include "joinwatch.h"
#include "layersource.h"
#include "terminalprogress.h"
#include "tsqtext.h"
#include "vygisutil.h"

using namespace VyObjects;
using vygis::JoinWorkbook;

namespace {

const QString commandName = QStringLiteral("join");
const int ExitInterrupted = 130;

struct JoinRequest
{
    QString workbook;
    QString layer;                      // PATH or PATH:LAYER
    QString keyName;                    // upper case
    QMap<QString, QString> fieldNames;  // normalised header -> field
    QStringList whereClauses;
    bool keepGoing = false;
};

bool parseFieldMap(const QStringList& entries, QMap<QString, QString>& fieldNames, QString& bad)
{
    for (const QString& entry : entries) {
        const int equals = entry.indexOf(QLatin1Char('='));
        if (equals <= 0 || equals == entry.size() - 1) {
            bad = entry;
            return false;
        }
        fieldNames.insert(JoinWorkbook::normalisedHeader(entry.left(equals)), entry.mid(equals + 1));
    }
    return true;
}

QString quotedList(const QStringList& texts)
{
    QStringList quoted;
    for (const QString& text : texts)
        quoted.append(QLatin1Char('"') + text + QLatin1Char('"'));
    return quoted.join(QStringLiteral(", "));
}

// The map's fields must be the layer's, and its headers the workbook's.
int checkFieldMap(const JoinRequest& request, const JoinWorkbook& workbook, const TsFeatureLayer& layer)
{
    for (auto entry = request.fieldNames.cbegin(); entry != request.fieldNames.cend(); ++entry) {
        if (!layer.FindField(toTsString(entry.value())))
            return usageError(commandName, QStringLiteral("--map %1=%2: %3 has no field %2")
                                               .arg(entry.key(), entry.value(), request.layer));
        if (!workbook.dataHeaders().contains(entry.key()))
            return usageError(commandName, QStringLiteral("--map %1=%2: %3 has no column headed %1 (its headers: %4)")
                                               .arg(entry.key(), entry.value(), request.workbook,
                                                    quotedList(workbook.dataHeaders())));
    }
    return ExitSuccess;
}

int checkColumns(const JoinRequest& request, const JoinWorkbook& workbook, const TsFeatureLayer& layer)
{
    for (const QString& header : workbook.dataHeaders()) {
        if (layer.FindField(toTsString(JoinWorkbook::fieldFor(header, request.fieldNames))))
            return ExitSuccess;
    }
    return failure(commandName, QStringLiteral("%1: no column goes to a field of %2 (headers besides the key: %3); "
                                               "nothing was changed")
                                    .arg(request.workbook, request.layer, quotedList(workbook.dataHeaders())));
}

// Everything that can be known before the layer is opened for update.
int checkBeforeJoining(const JoinRequest& request, JoinWorkbook& workbook, TerminalProgress& progress)
{
    const QString refusal = workbookInputRefusal(request.workbook);
    if (!refusal.isEmpty())
        return failure(commandName, refusal + QStringLiteral("; nothing was changed"));
    QString error;
    const TsRefPtr<TsFeatureLayer> layer = openFeatureLayer(request.layer, TsGdalDataSource::ReadOnly, &error);
    if (!layer)
        return failure(commandName, error);
    if (!layer->FindField(toTsString(request.keyName)))
        return failure(commandName, QStringLiteral("%1: the layer has no field %2").arg(request.layer, request.keyName));
    progress.step(QStringLiteral("reading %1").arg(request.workbook));
    const bool keyFound = workbook.read(request.workbook, request.keyName);
    progress.finish();
    if (!keyFound)
        return failure(commandName, QStringLiteral("%1: The assocation field is not consistent with "
                                                   "the excel key field! (no column %2 in row 1 or 2)")
                                        .arg(request.workbook, request.keyName));
    const int mapStatus = checkFieldMap(request, workbook, *layer);
    return mapStatus != ExitSuccess ? mapStatus : checkColumns(request, workbook, *layer);
}

// The counts are a note after a join that landed, and part of the failure (naming the
// values that could not be converted) after one that was undone.
void printCounts(const JoinRequest& request, const JoinCounts& counts, bool undone)
{
    const auto print = undone ? printError : printNote;
    print(QStringLiteral("vygis join: %1 from %2:").arg(request.layer, request.workbook));
    for (const QString& line : counts.lines())
        print(QStringLiteral("  ") + line);
}

int reportInterruption(const JoinRequest& request, const TsGdalEditSummary& summary)
{
    if (summary.outcome == TsGdalEditSummary::Committed)
        failure(commandName, QStringLiteral("interrupted after the join was written; %1 holds it").arg(request.layer));
    else if (summary.featuresNotSetBack > 0)
        failure(commandName, QStringLiteral("interrupted; %1 changed features of %2 could not be set back")
                                 .arg(summary.featuresNotSetBack)
                                 .arg(request.layer));
    else
        failure(commandName, QStringLiteral("interrupted; %1 was left as it was").arg(request.layer));
    return ExitInterrupted;
}

int reportUndone(const JoinRequest& request, const TsGdalFeatureLayer& layer)
{
    const TsGdalEditSummary summary = layer.editSummary();
    if (summary.valuesNotConvertible > 0 && summary.featuresNotSetBack == 0)
        return failure(commandName, QStringLiteral("%1 value(s) could not be converted to their field's type; "
                                                   "the join was undone and %2 was left as it was "
                                                   "(--keep-going writes the rest and keeps the old values of those)")
                                        .arg(summary.valuesNotConvertible)
                                        .arg(request.layer));
    return failure(commandName, layer.errorString());
}

int join(const JoinRequest& request, const JoinWorkbook& workbook, TerminalProgress& progress)
{
    QString error;
    const TsRefPtr<TsFeatureLayer> opened = openFeatureLayer(request.layer, TsGdalDataSource::Update, &error);
    const TsRefPtr<TsGdalFeatureLayer> layer = opened.dynamicCast<TsGdalFeatureLayer>();
    if (!layer)
        return failure(commandName, error);
    for (const QString& where : request.whereClauses)
        if (!setLayerFilter(*layer, where, &error))
            return failure(commandName, error);
    layer->setUnconvertibleValues(request.keepGoing ? TsGdalFeatureLayer::KeepOldValues
                                                    : TsGdalFeatureLayer::UndoOperation);
    const auto watched = TsRefPtr<WatchedJoinLayer>::create(TsRefPtr<TsFeatureLayer>(layer), request.keyName, progress);
    bool ran = false;
    {
        const InterruptionGuard guard;
        ran = vygis::joinWorkbook(workbook, watched.get(), request.fieldNames);
        progress.finish();
    }
    const TsGdalEditSummary summary = layer->editSummary();
    if (InterruptionGuard::interrupted())
        return reportInterruption(request, summary);
    if (!ran)
        return failure(commandName, layer->errorString().isEmpty()
                                        ? QStringLiteral("%1: nothing was joined").arg(request.layer)
                                        : layer->errorString());
    const bool committed = summary.outcome == TsGdalEditSummary::Committed;
    printCounts(request, JoinCounts::of(workbook, watched->featuresByKey(), summary), !committed);
    return committed ? ExitSuccess : reportUndone(request, *layer);
}

int runJoin(const QStringList& arguments)
{
    Arguments parsed;
    if (!parsed.parse(commandName, arguments,
                      {{QStringLiteral("--keep-going")},
                       {QStringLiteral("--key"), QStringLiteral("--map"), QStringLiteral("--where")}, {}, 2, 2}))
        return ExitUsage;
    JoinRequest request;
    request.workbook = parsed.positional(0);
    request.layer = parsed.positional(1);
    request.keyName = parsed.values(QStringLiteral("--key")).value(0).toUpper();
    request.whereClauses = parsed.values(QStringLiteral("--where"));
    request.keepGoing = parsed.isSet(QStringLiteral("--keep-going"));
    if (request.keyName.isEmpty())
        return usageError(commandName, QStringLiteral("--key FIELD is required"));
    QString bad;
    if (!parseFieldMap(parsed.values(QStringLiteral("--map")), request.fieldNames, bad))
        return usageError(commandName, QStringLiteral("--map %1: expected HEADER=FIELD").arg(bad));
    JoinWorkbook workbook;
    TerminalProgress progress(QStringLiteral("vygis join: "));
    const int checked = checkBeforeJoining(request, workbook, progress);
    return checked != ExitSuccess ? checked : join(request, workbook, progress);
}

} // namespace

Command joinCommand()
{
    Command command;
    command.name = commandName;
    command.summary = QStringLiteral("join a workbook's columns into a layer on a key field");
    command.usage = QStringLiteral(
        "Usage: vygis join WORKBOOK LAYER --key FIELD [--map HEADER=FIELD]...\n"
        "                  [--where CLAUSE] [--keep-going]\n\n"
        "Writes the cells of WORKBOOK (an .xlsx workbook, its first sheet) into the\n"
        "attributes of LAYER (PATH or PATH:LAYER, changed in place): each feature whose\n"
        "FIELD value matches a text in the column headed FIELD (row 1, or row 2 below a\n"
        "title) takes the cells of that row, each into the field its column's header\n"
        "names. Headers are compared trimmed, in upper case and cut before \"(\".\n\n"
        "What it changes: only the fields that workbook columns go to, of the features\n"
        "whose key has a row; a blank cell empties a text field and makes other fields\n"
        "null. What it leaves: every other field and feature, the shapes, and a value\n"
        "equal to what the field holds (not written, so an exported workbook joined\n"
        "back changes nothing); columns the layer has no field for are skipped. When a\n"
        "key has several rows, the last one is used.\n\n"
        "  --key FIELD          the key field of the layer and header of the key column\n"
        "  --map HEADER=FIELD   write the column headed HEADER into the field FIELD\n"
        "  --where CLAUSE       join only into the features the clause admits\n"
        "  --keep-going         when some values cannot be converted to their field's\n"
        "                       type, write the rest; those fields keep their old values\n\n"
        "Nothing is changed when WORKBOOK is no workbook (CSV, .xls, .ods, encrypted,\n"
        "empty), lacks the key column, or none of its other columns goes to a field of\n"
        "LAYER, nor when --map names a field LAYER lacks or a header WORKBOOK lacks. A\n"
        "value that cannot be converted to its field's type (a word or 20200000000 for a\n"
        "32-bit integer, 45000 for a date, a text longer than a shapefile's field) is\n"
        "never written as null: without --keep-going the whole join is undone.\n\n"
        "The join is one edit operation: one transaction where the format has them\n"
        "(GeoPackage); elsewhere (shapefile) the old values are kept and written back if\n"
        "it fails. Ctrl-C or SIGTERM during the join undoes it and leaves LAYER as it was\n"
        "(exit status 130). Long joins show their progress on a terminal.\n\n"
        "Afterwards standard error gives the counts: features joined, features with no\n"
        "row, workbook rows that matched no feature, duplicate keys, values written,\n"
        "unchanged and not convertible (with the first few of these).\n\n"
        "Exit status 1 when the layer cannot be opened for update or lacks FIELD, the\n"
        "workbook is refused, values could not be converted (without --keep-going) or\n"
        "the edit cannot be made; 2 for wrong usage, --map naming a missing field too.");
    command.run = runJoin;
    return command;
}
