#include "command.h"
#include "layermodule.h"

// The commands that read or write layers, as the help shows them. What they do is in the
// layer module, loaded only when one of them runs, so that the help and every other
// command start without GDAL.

namespace {

std::function<int(const QStringList& arguments)> runInLayerModule(const QString& name)
{
    return [name](const QStringList& arguments) { return runLayerCommand(name, arguments); };
}

} // namespace

Command exportCommand()
{
    Command command;
    command.name = QStringLiteral("export");
    command.summary = QStringLiteral("export a layer's attributes to a workbook");
    command.usage = QStringLiteral(
        "Usage: vygis export LAYER WORKBOOK [--alias] [--exclude COLUMN,...]\n"
        "                    [--where CLAUSE] [--text]\n"
        "       vygis export LAYER WORKBOOK --columns NAME,... [--alias]\n"
        "                    [--exclude COLUMN,...] [--text]\n\n"
        "Writes the features of LAYER (PATH or PATH:LAYER) to a new WORKBOOK: a title row\n"
        "\"<layer>_attribute table\", a header row of field names, then one row per feature.\n"
        "Values are typed cells, ready to compute with: numbers keep their exact value (a\n"
        "boolean field gives 0 and 1), dates and date-times are date cells (times in UTC),\n"
        "NULL is an empty cell, text stays text. Written as text, since a number cell cannot\n"
        "hold them exactly: 64-bit integers beyond 2^53 (9007199254740992), NaN, infinities.\n"
        "A workbook already at WORKBOOK is replaced once the new one is complete; any other\n"
        "file (a GeoPackage, a CSV, an .xls or encrypted workbook, ...) is left alone unless\n"
        "--overwrite is given, and WORKBOOK may never be LAYER's own file.\n\n"
        "  --alias               head each column NAME(alias)\n"
        "  --exclude COLUMN,...  leave out columns, by 0-based position or by name (with\n"
        "                        --columns: positions in that list); a position or name\n"
        "                        that is not a column is refused\n"
        "  --where CLAUSE        export only the features the clause admits, one\n"
        "                        comparison such as \"POP > 10\" or \"NAME = 'Paris'\"\n"
        "  --columns NAME,...    a plain sheet of a point layer, one column per NAME: X,\n"
        "                        Y and Z give the point's coordinates, other names a\n"
        "                        field's values\n"
        "  --overwrite           replace WORKBOOK even when it is not a workbook\n"
        "  --text                write every value as a text cell instead, a number as\n"
        "                        the shortest text that reads back as the same number\n\n"
        "Lists are separated by commas; an option given again adds to its list. The old\n"
        "form --columns X Y Z, after LAYER and WORKBOOK, is still read.\n\n"
        "Long exports show their progress on a terminal. Exit status 1 when the layer\n"
        "cannot be opened or the workbook is refused or not saved; the message says why.");
    command.run = runInLayerModule(command.name);
    return command;
}

Command exportTableCommand()
{
    Command command;
    command.name = QStringLiteral("export-table");
    command.summary = QStringLiteral("export an attribute table to a workbook");
    command.usage = QStringLiteral(
        "Usage: vygis export-table TABLE WORKBOOK [--overwrite] [--text]\n\n"
        "Writes every row of TABLE (PATH or PATH:LAYER: the attributes of any layer, a\n"
        "CSV file, a GeoPackage table or a spatial layer) to a new WORKBOOK below the title\n"
        "\"<table>_attribute table\" and a header of field names. Values are typed cells,\n"
        "as in 'vygis export'. WORKBOOK is protected as in 'vygis export': only a workbook\n"
        "is replaced unless --overwrite is given, never TABLE's own file.\n\n"
        "  --overwrite  replace WORKBOOK even when it is not a workbook\n"
        "  --text       write every value as a text cell instead, a number as the shortest\n"
        "               text that reads back as the same number\n\n"
        "Exit status 1 when the table cannot be opened or the workbook is refused or not\n"
        "saved; the message says why.");
    command.run = runInLayerModule(command.name);
    return command;
}

Command joinCommand()
{
    Command command;
    command.name = QStringLiteral("join");
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
    command.run = runInLayerModule(command.name);
    return command;
}

Command elevationCommand()
{
    Command command;
    command.name = QStringLiteral("elevation");
    command.summary = QStringLiteral("look up the elevations of points in a DEM");
    command.usage = QStringLiteral(
        "Usage: vygis elevation POINTS DEM WORKBOOK [--band N] [--overwrite]\n\n"
        "Looks up each point of POINTS in band N (default 1) of the raster DEM and writes\n"
        "a new WORKBOOK: the point's number in its group, \"x,y\" and its elevation with\n"
        "four decimals (below 0 written as 0.0000). A point outside the raster, or on a\n"
        "cell that holds no value (the band's no-data value, a masked cell, NaN), gets\n"
        "\"Not within the range of Dem data!\" instead. Coordinates are in the raster's\n"
        "coordinate system.\n\n"
        "POINTS is a workbook (.xlsx: its cells read as x, y pairs row by row; a table\n"
        "three columns wide, number, x, y, leaves its first column out) or a text file,\n"
        "its fields separated by commas, semicolons, tabs or spaces:\n"
        "  - two numbers are a point x, y; three numbers are id, x, y (the id is not\n"
        "    kept: points are numbered within their group);\n"
        "  - a line whose first field is not a number is a heading that starts a new\n"
        "    group;\n"
        "  - the first line is a column header, passed over (standard error says so),\n"
        "    when it holds names separated by commas, semicolons or tabs (X,Y or\n"
        "    id;lon;lat), as many as the point line after it has numbers;\n"
        "  - any other line starting with a number (\"12.5,abc\", or 12,5;48,3 written\n"
        "    with decimal commas) is skipped; standard error tells how many and which;\n"
        "  - empty lines and lines from \"#\" are comments.\n\n"
        "A workbook at WORKBOOK is replaced once the new one is complete; any other file\n"
        "(a GeoPackage, a CSV, ...) is left alone unless --overwrite is given, and\n"
        "WORKBOOK may never be POINTS or DEM. Exit status 1 when WORKBOOK is refused, the\n"
        "points or the raster cannot be read, or the workbook is not saved; the message\n"
        "says why.");
    command.run = runInLayerModule(command.name);
    return command;
}

Command layerNameCommand()
{
    Command command;
    command.name = QStringLiteral("layer-name");
    command.summary = QStringLiteral("a unique name for a layer added to a data source's map");
    command.usage = QStringLiteral(
        "Usage: vygis layer-name SOURCE NAME\n\n"
        "Prints the name a layer called NAME gets when it is added to a map of the layers\n"
        "of the data source SOURCE: NAME itself when no layer is called so (ignoring\n"
        "case), otherwise NAME-n with n one above the highest number in use (roads,\n"
        "roads-1, roads-2, ...). Exit status 1 when SOURCE cannot be opened.");
    command.run = runInLayerModule(command.name);
    return command;
}

Command demoCommand()
{
    Command command;
    command.name = QStringLiteral("demo");
    command.summary = QStringLiteral("run the library's jobs on the bundled sample data");
    command.usage = QStringLiteral(
        "Usage: vygis demo [OUTPUT_FOLDER] [--samples FOLDER]\n\n"
        "Runs the library on the sample data bundled with the project and writes every\n"
        "result into OUTPUT_FOLDER (default: vygis-demo-output in the current folder),\n"
        "then prints what each file holds. OUTPUT_FOLDER must be new, empty or made by an\n"
        "earlier demo: the demo never writes among other files.");
    command.run = runInLayerModule(command.name);
    return command;
}
