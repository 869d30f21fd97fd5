#include "arguments.h"
#include "command.h"
#include "commandruns.h"
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

} // namespace

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
