#pragma once

// vygisutil: the spreadsheet work of the GIS application (exporting layer attributes to
// styled workbooks, writing check reports, joining workbook columns into layers, reading
// and rewriting field template workbooks) and three layer utilities.
//
// Every function is a self-contained static operation: it checks its arguments, opens or
// creates one workbook (or file), does its work and lets it go before returning. Nothing
// is kept between calls, no function logs, and no exception reaches the caller on bad
// input: functions answer with false, an empty result or an unchanged output argument.
// Calls are made from the application's GUI thread.

#include "vygisutil_export.h"

#include "tsmap.h"
#include "tsraster.h"
#include "tssde.h"
#include "tstopology.h"

#include <QIcon>
#include <QMap>
#include <QSet>
#include <QString>
#include <QStringList>
#include <QVector>

#include <vector>

class QAbstractItemModel;
class QTableWidget;

class VYGISUTIL_EXPORT VyExcelUtil
{
public:
    VyExcelUtil() = delete;

    // --- Creating and resetting workbooks -------------------------------------------

    // Saves a blank workbook (one empty worksheet "Sheet1") at path, but only where no
    // file exists yet: an existing file, whatever it holds, is left alone. The path is
    // used as given (no extension is added); a folder that does not exist simply makes
    // the save fail, which the caller is not told.
    static void createExcel(QString path);

    // Replaces the file at path by a blank workbook. Returns true when a file existed
    // and was removed; the blank workbook is then saved in its place (if that save
    // fails, no file is left and the result is still true). Returns false, creating
    // nothing, when no file exists; and false, leaving the file as it was, when it
    // cannot be removed.
    static bool clearExcel(QString path);

    // --- Reading a whole sheet -------------------------------------------------------

    // Appends the current (active) worksheet of the workbook at path to rows, one
    // QStringList per sheet row and one entry per column, as texts (numbers as
    // QVariant::toString gives them, nothing trimmed or formatted). Empty cells give
    // empty strings.
    //
    // Rows and columns are read from A1 to the last used cell, so that entry j of every
    // list is column j + 1 and the k-th appended row is sheet row k, also for a sheet
    // whose content starts further down or to the right (its leading empty rows and
    // columns come as empty strings). Rows already in the vector stay in front.
    //
    // A missing file, a file that is not a workbook, a chart sheet or an empty sheet
    // append nothing; so does a sheet whose used range spans more than 50,000,000 cells
    // (a few stray cells far from the data would otherwise ask for gigabytes of empty
    // strings).
    static void getExcelData(QString path, std::vector<QStringList>& rows);

    // --- Exporting attributes ---------------------------------------------------------
    //
    // Each export writes a new workbook with one worksheet ("Sheet1") and saves it at
    // path, replacing whatever file stood there. The path must not be empty; it is used
    // as given. The data rows are written under the application's progress dialog
    // ("Exporting..."), which cannot cancel them. Every value is written as text, except
    // in the item model export, which writes the model's values as they come. Results:
    // false for rejected input (nothing is saved and a file at path stays as it was);
    // otherwise the result of the save, which is atomic, so false also means that a file
    // at path stays as it was.
    //
    // Rows 1 and 2 of the item model, feature layer and table exports: a title in A1,
    // merged across the exported columns, centred, with a thin border, row 1 30 points
    // high; then one header cell per exported column, centred, bordered, on a light grey
    // (#cccccc) fill. Data rows follow from row 3, centred and bordered. Exported columns
    // are packed: the k-th exported column is column k of the sheet.
    //
    // A sheet holds 1,048,576 rows and 16,384 columns and an export never adds a sheet.
    // Decided: a source with more records than fit below the header rows, or more
    // exported columns than a sheet has, gives false and saves nothing, rather than a
    // workbook that silently lacks records. A model's size is known up front, so such a
    // model is refused at once; a layer or table cursor is read only until the first
    // record that does not fit.

    // The top-level rows of model below title and the model's horizontal headers, as
    // the display role gives them (numbers stay numbers; an empty value is a formatted
    // blank cell). excludedColumns holds 0-based model columns to leave out; indexes the
    // model does not have change nothing, except that the title merge spans the column
    // count less the number of entries in the set. Excluding every column still saves
    // the title alone. Returns false without saving for a null model or a model with no
    // rows or no columns. Child rows of tree models are not exported.
    static bool export2Excel(const QString& title, const QString& path,
                             QAbstractItemModel* model, const QSet<int>& excludedColumns);

    // The features that the layer's own query filter admits, one row each in cursor
    // order, below the title "<layer name>_attribute table" (the last part translated).
    // The header of a field is its name, or with withAlias its name followed by its alias
    // in brackets, "ROADCLASS(Road class)" ("ROADCLASS()" for an empty alias).
    // excludedColumns holds 0-based field indexes to leave out; indexes beyond the last
    // field change nothing. Floating values are written with at most 8 decimals, other
    // values as their own text. Returns false without saving when the layer is null,
    // cannot describe its fields, or no field is left to export. A layer that cannot
    // hand out its features is saved with the title and header rows only.
    static bool export2Excel(const QString& path, VyObjects::TsFeatureLayer* layer,
                             bool withAlias, const QSet<int>& excludedColumns);

    // The features of a point layer that its own query filter admits, on a plain sheet
    // (no title, styling or merge): row 1 holds the headers, each feature a row from
    // row 2. Column k shows fieldNames[k - 1]: the names "X", "Y" and "Z" (exactly so,
    // upper case) give the point's coordinates with at most 8 decimals (Z is 0 for a
    // point without height); any other name gives the value of the field of that name,
    // written as in the feature layer export. Repeated names give repeated columns.
    // Returns false without saving when the layer is null or cannot describe its fields,
    // or when no column is left to export.
    //
    // Decided:
    // - withAlias: a column naming a field of the layer (names ignore case, as the
    //   layer's do) is headed "NAME(alias)" with that field's alias, "NAME()" for an
    //   empty one, as in the feature layer export; coordinate columns and names the
    //   layer has no field for have no alias and are headed by the name alone.
    // - excludedColumns filters fieldNames by position (0-based), as the feature layer
    //   export filters fields; the remaining columns are packed.
    // - A feature whose geometry is missing or not a point is still exported: its
    //   coordinate cells stay empty and its field columns are filled. A row of the
    //   workbook is never dropped for its shape.
    // - A name that is neither a coordinate nor a field of the layer is not an error:
    //   its cells hold the empty text.
    static bool export2ExcelHasXYZ(const QString& path, VyObjects::TsFeatureLayer* layer,
                                   std::vector<QString> fieldNames, bool withAlias,
                                   const QSet<int>& excludedColumns);

    // Every row of table, with every field headed by its name, below the title
    // "<table name>_attribute table" (the last part translated). Values are written as
    // their own text, unformatted; no filter applies. The function gives back the
    // reference it is handed before returning, on every path. Returns false without
    // saving for a null table or one that cannot hand out its rows. A table without
    // fields is saved with its title alone.
    //
    // Decided: a table that cannot describe its fields gives false without saving, as
    // a layer in that state does, since no header or value could be placed.
    static bool export2Excel(const QString& path, VyObjects::TsRefPtr<VyObjects::TsTable> table);

    // --- Check and analysis reports ---------------------------------------------------

    // Writes check errors, flattened into consecutive (error type, layer count, layer
    // name) triples, below the header "Error Type", "Layer Count", "Layer Name" (centred
    // and bordered) in columns A to C of the workbook at path: triple k goes to row
    // k + 2 as plain text cells. The workbook is opened first, so its other sheets,
    // cells and formats are saved back with the list; a path without a workbook (no
    // file, or a file that is not a workbook) starts a new one there. Returns the result
    // of the save, which leaves the file as it was when it fails.
    //
    // Returns false, touching no file, when the list is empty, its length is not a
    // multiple of 3, or it holds more triples than a sheet has rows below the header
    // (1,048,575); and when the workbook's active sheet is a chart sheet, which has no
    // cells to receive the list.
    static bool exportErrorTable(QStringList errors, QString path);

    // Writes the errors of a finished topology or attribute check to a new workbook at
    // path (replacing any file there): the translated header "Error type", "Status",
    // "Number", "Layer", "Notes", "Feature 1", "Feature 2", "coordinate", "Related
    // layer" in row 1 and error n in row n + 2, every cell centred and bordered, columns
    // A to I 40 wide. Numbers are text cells. Column A holds the error type only for an
    // attribute check; "Status" is left without cells for the user; "Notes" is empty;
    // "Feature 1" shows the feature id when above 0; "Feature 2" the related feature id
    // when above 0 and not the same feature on the same layer.
    //
    // Returns true whatever the save gives, and false, writing nothing, for a null
    // topology. A record that cannot be read repeats the values of the record before it
    // (zeros and empty texts for the first). Of the record, the rule id, the rule
    // description and the exception flag are read but not reported. A count above the
    // sheet's capacity is cut at its last row, 1,048,576.
    static bool exportExcelByTsTopology(const QString& path, VyObjects::TsTopology* topology);

    // Writes the rows of table whose column-0 check box is ticked (checked or partially
    // checked) to a new workbook at path (replacing any file there): the translated
    // header "Standard description", "Related field", "Related parameter", "Error
    // description" in A1 to D1, then the displayed texts of columns 0 to 3 of each ticked
    // row, one workbook row each from row 2 without gaps; every cell centred and
    // bordered, columns A to I 40 wide. Only column 0's check box counts.
    //
    // Returns true whatever the save gives, and false, writing nothing, for a null
    // table. A row without an item in column 0 has no check box and counts as unticked;
    // a missing item in columns 1 to 3 of a ticked row is written as an empty (bordered)
    // text, as the widget shows it. Ticked rows beyond the sheet's last row are dropped.
    static bool exportExcelByTableWidget(const QString& path, QTableWidget* table);

    // Looks up the elevations of points in an elevation model and writes them to a new
    // workbook at path (replacing any file there). points holds (x, y) pairs of decimal
    // texts in the raster's coordinate system; a pair with an empty member is a heading,
    // written as its joined texts in column A, that restarts the point numbering at 1.
    // Each point gets a row: its number in its group (A), "x,y" with four decimals (B),
    // and its elevation with four decimals (C), or the translated "Not within the range
    // of Dem data!" when it lies outside the raster's extent (edges count as inside).
    // B1 and C1 hold the translated "XYCoordinate" and "Elevation info"; A1 stays empty.
    // Every cell is a centred, bordered text cell. Columns B and C get the width of
    // their longest figure text plus 10, counting points inside the extent only. A text
    // that is not a number reads as 0. Returns the result of the save.
    //
    // Returns false, writing nothing, for a null raster and for more pairs than a sheet
    // has rows below the header (1,048,575). The raster's reference is released before
    // the function returns.
    // - An unpaired last entry of an odd-length list is a heading whose partner is
    //   missing: its text is written, never dropped.
    // - Negative elevations, no-data values below 0 and NaN are written as 0.0000.
    // - A point on the maximum-x or minimum-y edge reads the last column or row (the
    //   cell that edge closes), not the no-data cell one past it; a raster without a
    //   cell size reads its first cell.
    // - The pixel block comes counted: one block is asked for at the first point inside
    //   the extent, refilled for every point, and freed by its last release when the
    //   function returns. A raster that gives no block makes its points read as outside
    //   the range.
    static bool saveQueryElevationOutputFile(const QString& path, QStringList points,
                                             VyObjects::TsRefPtr<VyObjects::TsRasterProps> raster);

    // --- Reading workbooks and files back --------------------------------------------
    //
    // These read the workbook's current (active) sheet and never save it. A path without
    // a workbook behind it reads as an empty workbook. No message is shown, except by
    // assocationFromExcel when it cannot find the key column.

    // Appends to table the sheet rows from row 2 whose column A text is a key of keys
    // (exact, case-sensitive; the map is only searched and its values are not read),
    // one widget row per sheet row, in sheet order, below the rows the widget holds.
    // Columns A to D fill widget columns 0 to 3; further columns are ignored and a
    // missing cell leaves its widget cell without an item. Row 1 is a header and is
    // never compared. A date or time cell shows as "yyyy/MM/dd hh:mm"; a cell whose
    // date falls in 1899 (under the 1900 date system every time of day without a date)
    // is refused: in column A the row is not imported, in columns B to D the rest of
    // the row stays empty. Other cells show their value's text (the number 12 as "12").
    // Always returns true.
    //
    // Decided:
    // - A widget with fewer than four columns gets items only for the columns it has;
    //   the cells for the others are not read and no item is created for them. Rows are
    //   appended all the same, also to a widget without columns.
    // - A chart sheet as current sheet, like a null widget, imports nothing.
    // - A widget that sorts its rows is filled with sorting switched off and sorted once
    //   afterwards, so that each imported row keeps its four cells together; sorting is
    //   on again when the call returns.
    static bool importExcelToTableWidget(const QString& path, QMap<QString, int>& keys,
                                         QTableWidget* table);

    // Joins the workbook at path into the attributes of layer on keyField. The key
    // column is the one headed by keyField in upper case (not trimmed), found in row 1,
    // or else in row 2 when the workbook starts with a title; data follow the header
    // row. Headers are compared trimmed, in upper case and cut before the first "(",
    // so "Code(text)" heads the column CODE; "Code (text)" heads "CODE " and does not.
    //
    // Every feature that the layer's query filter admits is matched by the text of its
    // keyField value (floating fields as the application shows them at the field's
    // precision) against the texts of the key column; of two rows with the same key the
    // lower one counts. A matched feature gets the text of every other cell of its row
    // (an empty text for a blank cell) in the layer field named by the column's
    // normalised header, or by fieldNames[header] where the map has it: map keys are
    // compared with the normalised header, so {"OWNER", "OWNER_NAME"} redirects a column
    // headed "Owner" and {"Owner", ...} redirects nothing. Columns with the same header
    // all take the last one's values; columns whose field the layer lacks are skipped.
    // The layer converts the texts to its field types.
    //
    // All changes of a call are made in one edit operation of the layer, started and
    // committed also when nothing matches. Returns true when that operation ran; false,
    // without changing anything, for a null layer or a layer without keyField (silently)
    // and for a workbook without the key column in rows 1 and 2, which also shows the
    // modal warning "The assocation field is not consistent with the excel key field!".
    // The workbook is read once into indexes, so each feature costs one lookup.
    //
    // Decided:
    // - A feature that the layer cannot return for an id it listed is skipped.
    // - A layer that cannot list its features (its filter cannot be applied) or cannot
    //   open an edit operation (read-only, or an operation of the caller already open)
    //   gives false, changing nothing; an operation that gives no edit buffer is aborted
    //   and gives false.
    static bool assocationFromExcel(const QString& path, const QString& keyField,
                                    VyObjects::TsFeatureLayer* layer,
                                    const QMap<QString, QString>& fieldNames);

    // Replaces rules by the rule rows of the workbook at path: one list per sheet row
    // from row 2, or from row 3 when A1 (trimmed) reads "Related layer" (two title
    // rows), to the last used row, empty rows included. Each list holds the texts of
    // columns A to the last used column, unchanged, "" for an empty cell. Returns true
    // when the used range ends in column D or E (rules may then still be empty); false,
    // with rules empty, for an empty path, a missing or empty workbook and any other
    // width.
    //
    // Decided: the title test also accepts the application's translation of "Related
    // layer", so that rule sheets titled in the user's language skip their titles too.
    static bool readAttributeCheckRuleFromExcel(const QString& path, QVector<QStringList>& rules);

    // The cells of the used range of the workbook at path, read row by row, left to
    // right, as consecutive (x, y) pairs, closed by repeating the first point at the end.
    // A missing cell inside the range counts as 0; a stored cell without text (a
    // formatted blank) is passed over; a text that is not a number (a header, "12,5")
    // reads as 0. Empty when the texts do not pair up (an odd count) or there are none.
    //
    // Decided: a used range of more than 50,000,000 cells (stray cells far from the
    // data) gives an empty result rather than billions of zero points.
    static std::vector<VyObjects::TsPoint> readCoordinateFile(const QString& path);

    // The texts of the cells of the used range of the workbook at path, row by row, left
    // to right, "" for a missing cell, so positions can be counted. A range three columns
    // wide (number, X, Y) leaves its first column out. Empty when no file exists at path
    // (the object library's test), for a chart sheet and for an empty sheet.
    //
    // Decided: the used range itself is read, wherever it starts; a table typed from B3
    // is read from B3, not from A1, so its width test and its columns agree. The limit
    // of readCoordinateFile applies.
    static QStringList readCoordinateFile2(const QString& path);

    // Replaces pairs by the rows of the workbook at path: column A's text, trimmed and
    // upper case, maps to column B's, treated alike ("Parcel " -> "owner" gives
    // PARCEL -> OWNER). Every row from row 1 counts, a title row included, and rows above
    // the used range give the empty key; a lower row replaces an earlier one's value.
    // Returns false, with pairs empty, for an empty path, a missing or empty workbook or
    // a used range that does not end in column B.
    static bool readTransactionTemplateFile(const QString& path, QMap<QString, QString>& pairs);

    // --- Field template workbooks -----------------------------------------------------
    //
    // A field template workbook describes the tables of a data template, one field per
    // row below the header "TableName", "FieldsName", "FieldsType", "FieldsLenth" (so
    // spelled), "Precision" in columns A to E. A table name workbook lists table names
    // below "TableName" in column A. Both are read from the workbook's current (active)
    // sheet. Field rows pass through a QStringList flattened, five entries per row in
    // column order. Every cell is text here: values are taken as the cell gives them
    // (a number as its QVariant text), never trimmed, converted or compared ignoring
    // case; a cell that is not stored reads as the empty text.
    //
    // The readers that check the template header accept a sheet only when A1 to E1 hold
    // exactly the five header texts, exactly five columns are in use (a cell stored in
    // column F, even an empty one, fails the check) and at least one row follows the
    // header. Readers never save. Every reader returns the empty list for a path without
    // a file (creating nothing), a file that is not a workbook, or a workbook whose
    // current sheet is a chart sheet (decided: a chart sheet holds no template, so it
    // reads like the other failures).

    // The texts of column A from row 2 to the last used row, one per row in row order,
    // empty ones and repeats included (a field template workbook gives one name per
    // field row). Only A1 is checked: it must be stored and hold exactly "TableName".
    static QStringList readFieldsTemplateTableName(QString path);

    // The field rows of tableName (exact, case-sensitive match of column A), in row
    // order wherever they stand in the sheet, four entries per row: columns B to E.
    // An empty tableName selects the rows without a name. Empty list when the header
    // check fails or no row matches.
    static QStringList readFieldsTemplateTableContent(QString tableName, QString path);

    // As readFieldsTemplateTableContent, but five entries per row, column A included:
    // the shape updateFieldsTemplateTableContent writes back.
    static QStringList readFieldsTemplateTableContent1(QString tableName, QString path);

    // Every field row, five entries each, from row 2 to the last used row; a row
    // without cells gives five empty entries. Empty list when the header check fails.
    static QStringList getImportTemplateTable(QString path);

    // The table names in column A, one per run of consecutive equal names, in row order
    // (a table whose rows stand in two runs is listed twice; names differing in case are
    // two tables). The scan stops at the first row without a stored A cell. A leading
    // run of empty names is not listed; an empty run after a named one is. Empty list
    // when the header check fails.
    static QStringList getImportTemplateTableName(QString path);

    // Replaces the field template workbook at path by the header row and content,
    // flattened five entries per row from row 2, as plain text cells (default format).
    // A trailing group of fewer than five entries is dropped. The file is first reset
    // with clearExcel, so the workbook is left with the single worksheet "Sheet1".
    //
    // Returns false, touching nothing, when no file exists at path (none is created);
    // false for an empty content, after the reset: the file is then an empty workbook
    // without a header (the caller asked for no fields). Otherwise true, whether or not
    // the save succeeded.
    //
    // Nothing else loses the template: the save is atomic, and if it fails after the
    // reset had deleted the file, the file's earlier bytes are written back (where they
    // could be read; files above 256 MiB, which are no templates, are not kept for
    // this). When the reset cannot delete the file (another program holds it open), the
    // header and rows are written over the existing current worksheet, whose other
    // cells stay, and saved if the file allows it. Decided: if in that case the current
    // sheet is a chart sheet, there is no worksheet to write to; the file is left
    // untouched and the result is false.
    static bool updateFieldsTemplateTableContent(QStringList content, QString path);

    // Replaces the table name workbook at path by "TableName" in A1 and tableNames from
    // A2 down, as plain text cells; an empty list leaves the header alone. Nothing is
    // done when no file exists at path. The reset, the save and their failures are as
    // for updateFieldsTemplateTableContent; when the reset cannot delete the file, the
    // names go below the last used row of its current worksheet, and a chart sheet as
    // current sheet leaves the file untouched (decided, as there).
    static void updateTemplateName(QString path, QStringList tableNames);
};

class VYGISUTIL_EXPORT VyUniversalFunction
{
public:
    VyUniversalFunction() = delete;

    // --- Layer utilities -------------------------------------------------------------

    // The icon of a layer type, asked of the application's current theme by file name
    // (one lookup per call): "point.png" for types 1 and 2, "line.png" for 3,
    // "polygon.png" for 4, "annolayer.png" for 5 and "layer.png" for every other value.
    // Whatever the theme gives, a null icon included, is returned as it is.
    static QIcon layertypeToIcon(VyObjects::TsLayer::LayerType type);

    // Gives layer a name that does not clash with the layers of map (hidden ones
    // included). Names are compared ignoring case. Every layer named like layer counts as
    // a match, and so does every "name-x" whose text splits at "-" into exactly two
    // parts, the first being the name; x read as a number gives the highest number in
    // use. With no match the name stays; otherwise it becomes "name-n", where n is the
    // match count, or the highest number + 1 when that count is not above it:
    //     roads in a map with roads            -> roads-1
    //     roads in a map with ROADS, Roads-1   -> roads-2
    //     roads in a map with roads-5          -> roads-6
    //     roads in a map with roads-x-1        -> roads (three parts: no match)
    // layer itself counts when the map holds it already. A null map or null layer
    // changes nothing; SetLayerName is called at most once.
    //
    // Left to the implementer, decided: split and number reading are the object
    // library's own. A name ending in "-" splits into the name and an empty part, and
    // texts that are no decimal integer (empty ones included) read as 0, so "roads-"
    // and "roads-x" count as matches numbered 0. A variant numbered 2147483647 is
    // followed by "name-2147483648" rather than by an overflowed number.
    static void setLayerName(VyObjects::TsMap* map, VyObjects::TsRefPtr<VyObjects::TsLayer> layer);

    // Rewrites the DXF file at path in place so that it declares the code page
    // "ANSI_936": every line that holds "ANSI_" (case-sensitive, anywhere in the line)
    // becomes the line "ANSI_936"; the last line, the text after the last line end, is
    // kept as it stands. Other lines keep their bytes, empty ones included, and the file
    // ends with a line end exactly when it did before. Every line end written is the
    // platform's ("\r\n" on Windows, "\n" elsewhere), as in a text-mode write. Nothing
    // is reported to the caller.
    //
    // The file is read as bytes, block by block, so no text is recoded and files of any
    // size pass in about the time of a copy. Only "\r\n" and "\n" end a line; a lone
    // "\r" is kept as part of its line. The new text is written beside the file and
    // replaces it only when complete: a failure to read or write on the way leaves the
    // file as it was. A file in which no line changes is not written at all.
    //
    // Left to the implementer, decided: a file that exists but cannot be opened for
    // reading (a folder, a file without read permission, one locked by another program)
    // is left untouched, not emptied. Where no file exists, an empty file is created,
    // as the rewrite of an empty text gives. Also left alone: a binary DXF (one that
    // begins with "AutoCAD Binary DXF") and a text with a UTF-16 byte order mark, which
    // single-byte line handling would break, and a file whose folder does not allow a
    // new file to be written beside it.
    static void replaceDxfCodepage(const VyObjects::TsString& path);
};
