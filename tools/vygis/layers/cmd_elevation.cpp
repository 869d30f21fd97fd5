#include "arguments.h"
#include "command.h"
#include "commandruns.h"
#include "elevationnodata.h"
#include "filesafety.h"
#include "pointfile.h"
#include "readprogress.h"
#include "terminalprogress.h"
#include "tsgdal.h"
#include "vygisutil.h"
#include "xlsxglobal.h"

#include <QFile>

using namespace VyObjects;

namespace {

const QString commandName = QStringLiteral("elevation");
const QString bandOption = QStringLiteral("--band");
const QString overwriteOption = QStringLiteral("--overwrite");

// The report's header takes the sheet's first row.
constexpr int MostPairs = QXlsx::MaxRows - 1;
// Skipped lines are named up to this many; the count says how many there were.
constexpr int NamedSkippedLines = 5;

// Lines passed over are told, never dropped silently.
void tellWhatWasPassedOver(const QString& path, const PointFileNotes& notes)
{
    if (notes.columnHeaderLine > 0)
        printNote(QStringLiteral("vygis %1: %2: line %3 (%4) taken for a column header")
                       .arg(commandName, path, QString::number(notes.columnHeaderLine),
                            notes.columnHeader));
    const int count = notes.skippedLines.size();
    if (count == 0)
        return;
    QStringList named;
    for (const int line : notes.skippedLines.mid(0, NamedSkippedLines))
        named.append(QString::number(line));
    if (count > NamedSkippedLines)
        named.append(QStringLiteral("..."));
    const QString lines = count == 1 ? QStringLiteral("line") : QStringLiteral("lines");
    printNote(QStringLiteral("vygis %1: %2: %3 %4 skipped, neither a point nor a heading: %4 %5")
                   .arg(commandName, path, QString::number(count), lines, named.join(QStringLiteral(", "))));
}

TsRefPtr<TsRasterProps> openBand(const QString& path, int band, QString* error)
{
    const TsRefPtr<TsGdalDataSource> dem = TsGdalDataSource::open(path, TsGdalDataSource::ReadOnly, error);
    return dem ? dem->raster(band, error) : TsRefPtr<TsRasterProps>();
}

} // namespace

int runElevation(const QStringList& arguments)
{
    Arguments parsed;
    if (!parsed.parse(commandName, arguments, {{overwriteOption}, {bandOption}, {}, 3, 3}))
        return ExitUsage;
    bool bandIsNumber = true;
    const int band = parsed.values(bandOption).value(0, QStringLiteral("1")).toInt(&bandIsNumber);
    if (!bandIsNumber || band < 1)
        return usageError(commandName, QStringLiteral("--band takes a band number from 1"));
    const QString pointPath = parsed.positional(0);
    const QString demPath = parsed.positional(1);
    const QString output = parsed.positional(2);
    const QString refusal = outputRefusal(output, {pointPath, demPath}, OutputUse::Replace,
                                          parsed.isSet(overwriteOption));
    if (!refusal.isEmpty())
        return failure(commandName, refusal);

    QStringList points;
    QString error;
    PointFileNotes notes;
    if (!readPointFile(pointPath, points, &error, &notes))
        return failure(commandName, error);
    tellWhatWasPassedOver(pointPath, notes);
    if ((points.size() + 1) / 2 > MostPairs)
        return failure(commandName, QStringLiteral("%1: %2 points and headings; a sheet holds %3 below "
                                                   "its header")
                                        .arg(pointPath, QString::number((points.size() + 1) / 2),
                                             QString::number(MostPairs)));
    TsRefPtr<TsRasterProps> raster = openBand(demPath, band, &error);
    if (!raster)
        return failure(commandName, error);

    TerminalProgress progress(QStringLiteral("vygis elevation: "));
    // A point outside the raster is passed over without a read, so the count may end
    // short of the total.
    const auto recorder = TsRefPtr<ReadRecordingRaster>::create(
        TsRefPtr<ProgressRaster>::create(std::move(raster), (points.size() + 1) / 2, progress));
    const bool saved = VyExcelUtil::saveQueryElevationOutputFile(output, points, recorder);
    progress.finish();
    if (!saved)
        return failure(commandName, QStringLiteral("%1: not saved: %2").arg(output, saveFailureReason(output)));
    if (recorder->anyReadWithoutValue() && !markCellsWithoutValue(output, recorder->reads(), &error)) {
        // Its no-data cells would read as heights.
        QFile::remove(output);
        return failure(commandName, error + QStringLiteral("; the report is removed"));
    }
    return ExitSuccess;
}
