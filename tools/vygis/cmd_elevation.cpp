#include "arguments.h"
#include "command.h"
#include "layersource.h"
#include "pointfile.h"
#include "vygisutil.h"


using namespace VyObjects;

namespace {

const QString commandName = QStringLiteral("elevation");

int runElevation(const QStringList& arguments)
{
    Arguments parsed;
    if (!parsed.parse(commandName, arguments, {{}, {QStringLiteral("--band")}, {}, 3, 3}))
        return ExitUsage;
    bool bandIsNumber = true;
    const QString bandText = parsed.values(QStringLiteral("--band")).value(0, QStringLiteral("1"));
    const int band = bandText.toInt(&bandIsNumber);
    if (!bandIsNumber || band < 1)
        return usageError(commandName, QStringLiteral("--band takes a band number from 1"));
    QStringList points;
    QString error;
    if (!readPointFile(parsed.positional(0), points, &error))
        return failure(commandName, error);
    const TsRefPtr<TsGdalDataSource> dem
        = TsGdalDataSource::open(parsed.positional(1), TsGdalDataSource::ReadOnly, &error);
    TsRefPtr<TsRasterProps> raster = dem ? dem->raster(band, &error) : TsRefPtr<TsRasterProps>();
    if (!raster)
        return failure(commandName, error);
    const QString output = parsed.positional(2);
    if (!VyExcelUtil::saveQueryElevationOutputFile(output, points, std::move(raster)))
        return failure(commandName, QStringLiteral("%1: not saved (more points than a sheet has "
                                                   "rows, or the save failed)").arg(output));
    return ExitSuccess;
}

} // namespace

Command elevationCommand()
{
    Command command;
    command.name = commandName;
    command.summary = QStringLiteral("look up the elevations of points in a DEM");
    command.usage = QStringLiteral(
        "Usage: vygis elevation POINTS DEM WORKBOOK [--band N]\n\n"
        "Looks up each point of POINTS in band N (default 1) of the raster DEM and writes\n"
        "a new WORKBOOK: the point's number in its group, \"x,y\" and its elevation with\n"
        "four decimals, or \"Not within the range of Dem data!\" outside the raster.\n"
        "Coordinates are in the raster's coordinate system.\n\n"
        "POINTS is a workbook (.xlsx: its cells read as x, y pairs row by row; a table\n"
        "three columns wide, number, x, y, leaves its first column out) or a text file:\n"
        "a line of two numbers (separated by a comma, a semicolon or spaces) is a point,\n"
        "any other line a heading that starts a new group; lines from \"#\" are comments.\n\n"
        "Exit status 1 when the points or the raster cannot be read or the workbook is\n"
        "not saved.");
    command.run = runElevation;
    return command;
}
