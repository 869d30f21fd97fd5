#include "arguments.h"
#include "command.h"
#include "hosttext.h"
#include "layersource.h"
#include "vygisutil.h"

#include <QApplication>
#include <QFileInfo>

using namespace VyObjects;

namespace {

const QString commandName = QStringLiteral("join");

// Whether row 1 or 2 of the workbook heads a column keyName, compared as the join
// compares headers: trimmed, upper case, cut before the first "(".
bool hasKeyColumn(const QString& path, const QString& keyName)
{
    std::vector<QStringList> rows;
    VyExcelUtil::getExcelData(path, rows);
    for (std::size_t row = 0; row < rows.size() && row < 2; ++row) {
        for (const QString& cell : rows[row]) {
            const QString header = cell.trimmed().toUpper();
            if (header.left(header.indexOf(QLatin1Char('('))) == keyName)
                return true;
        }
    }
    return false;
}

bool parseFieldMap(const QStringList& entries, QMap<QString, QString>& fieldNames, QString& bad)
{
    for (const QString& entry : entries) {
        const int equals = entry.indexOf(QLatin1Char('='));
        if (equals <= 0 || equals == entry.size() - 1) {
            bad = entry;
            return false;
        }
        fieldNames.insert(entry.left(equals), entry.mid(equals + 1));
    }
    return true;
}

int runJoin(const QStringList& arguments)
{
    Arguments parsed;
    if (!parsed.parse(commandName, arguments,
                      {{}, {QStringLiteral("--key"), QStringLiteral("--map"), QStringLiteral("--where")}, {}, 2, 2}))
        return ExitUsage;
    const QString workbook = parsed.positional(0);
    const QString keyField = parsed.values(QStringLiteral("--key")).value(0);
    if (keyField.isEmpty())
        return usageError(commandName, QStringLiteral("--key FIELD is required"));
    QMap<QString, QString> fieldNames;
    QString bad;
    if (!parseFieldMap(parsed.values(QStringLiteral("--map")), fieldNames, bad))
        return usageError(commandName, QStringLiteral("--map %1: expected HEADER=FIELD").arg(bad));
    if (!QFileInfo(workbook).isFile())
        return failure(commandName, QStringLiteral("%1: no such file").arg(workbook));

    QString error;
    const TsRefPtr<TsFeatureLayer> layer
        = openFeatureLayer(parsed.positional(1), TsGdalDataSource::Update, &error);
    if (!layer)
        return failure(commandName, error);
    for (const QString& where : parsed.values(QStringLiteral("--where")))
        if (!setLayerFilter(*layer, where, &error))
            return failure(commandName, error);
    if (!layer->FindField(tsText(keyField.toUpper())))
        return failure(commandName, QStringLiteral("%1: the layer has no field %2")
                                        .arg(parsed.positional(1), keyField.toUpper()));
    // The join shows its warning in a message box, which needs a display.
    if (!qobject_cast<QApplication*>(QCoreApplication::instance())
        && !hasKeyColumn(workbook, keyField.toUpper()))
        return failure(commandName, QStringLiteral("%1: The assocation field is not consistent with "
                                                   "the excel key field! (no column %2 in row 1 or 2)")
                                        .arg(workbook, keyField.toUpper()));
    if (!VyExcelUtil::assocationFromExcel(workbook, keyField, layer.get(), fieldNames)) {
        const auto* gdalLayer = dynamic_cast<const TsGdalFeatureLayer*>(layer.get());
        const QString reason = gdalLayer ? gdalLayer->errorString() : QString();
        return failure(commandName, reason.isEmpty()
                                        ? QStringLiteral("%1: nothing was joined").arg(parsed.positional(1))
                                        : reason);
    }
    return ExitSuccess;
}

} // namespace

Command joinCommand()
{
    Command command;
    command.name = commandName;
    command.summary = QStringLiteral("join a workbook's columns into a layer on a key field");
    command.usage = QStringLiteral(
        "Usage: vygis join WORKBOOK LAYER --key FIELD [--map HEADER=FIELD]... [--where CLAUSE]\n\n"
        "Writes the cells of WORKBOOK into the attributes of LAYER (PATH or PATH:LAYER,\n"
        "changed in place): each feature whose FIELD value matches a text in the column\n"
        "headed FIELD (row 1, or row 2 below a title) takes the cells of that row, each\n"
        "into the field its column's header names. Headers are compared trimmed, in upper\n"
        "case and cut before \"(\"; columns the layer has no field for are skipped. All\n"
        "changes are made in one edit operation.\n\n"
        "  --key FIELD          the key field of the layer and header of the key column\n"
        "  --map HEADER=FIELD   write the column headed HEADER (upper case) into FIELD\n"
        "  --where CLAUSE       join only into the features the clause admits\n\n"
        "Exit status 1 when the layer cannot be opened for update, lacks FIELD, the\n"
        "workbook has no key column (the warning goes to standard error when there is no\n"
        "display) or the edit cannot be made.");
    command.run = runJoin;
    return command;
}
