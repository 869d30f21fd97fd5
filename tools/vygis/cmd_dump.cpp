#include "command.h"
#include "csv.h"
#include "filesafety.h"
#include "terminalprogress.h"
#include "xlsxdocument.h"
#include "xlsxworksheet.h"

#include <QFileInfo>

#include <cmath>

namespace {

// As in VyExcelUtil::getExcelData, which reads no sheet of more cells than this counted
// from A1 (the rows it would hand out would not fit in memory).
constexpr qint64 MaxCellsRead = qint64(1) << 27;

// Appends the text QVariant::toString() gives for a whole number d, and true, where
// that text is its plain digits: 0 < |d| < 2^53 with at most four zeros at its end
// (with six and more Qt writes "1e+06"; zero may be "-0"). False for any other number.
// Most numbers of a sheet are whole, and QString::number costs more than printing the row.
bool appendWholeNumber(QString& line, double d)
{
    const double limit = 9007199254740992.0;   // 2^53
    if (!(d > -limit && d < limit) || d == 0 || d != std::trunc(d))
        return false;
    quint64 n = static_cast<quint64>(std::fabs(d));
    if (n % 100000 == 0)
        return false;
    char digits[24];
    char* end = digits + sizeof digits;
    char* p = end;
    do {
        *--p = char('0' + n % 10);
        n /= 10;
    } while (n != 0);
    if (d < 0)
        *--p = '-';
    line += QLatin1String(p, int(end - p));
    return true;
}

// Appends the CSV field of the text VyExcelUtil::getExcelData gives for a cell.
void appendCellText(QString& line, const QXlsx::Worksheet& sheet, int row, int column)
{
    const QXlsx::Cell* cell = sheet.cellAt(row, column);
    if (!cell)
        return;
    const QVariant value = cell->value();
    if (value.userType() == QMetaType::Double && appendWholeNumber(line, value.toDouble()))
        return;
    appendCsvField(line, value.toString());
}

// Lines of CSV gathered into one text and written to standard output as UTF-8 a few
// thousand at a time: a write per line would cost more than the line.
class CsvOutput
{
public:
    CsvOutput() { m_text.reserve(ChunkSize + 4096); }
    ~CsvOutput() { flush(); }

    QString& line() { return m_text; }
    // Ends the line, and writes what has gathered once it is a chunk.
    void endLine()
    {
        m_text += QLatin1Char('\n');
        if (m_text.size() >= ChunkSize)
            flush();
    }
    void flush()
    {
        if (m_text.isEmpty())
            return;
        // Whole lines only, so that no surrogate pair is cut in two.
        standardOutput().device()->write(m_text.toUtf8());
        m_text.clear();
    }

private:
    static constexpr int ChunkSize = 1 << 16;
    QString m_text;
};

// Prints rows 1 to rowCount, columns 1 to columnCount of sheet as CSV, cell by cell as
// the sheet is read, with the texts getExcelData gives.
void printSheet(const QXlsx::Worksheet& sheet, int rowCount, int columnCount, TerminalProgress& progress)
{
    // Lines printed on the terminal itself show how far the dump got.
    const bool counted = !outputIsTerminal();
    standardOutput().flush();
    {
        CsvOutput out;
        for (int row = 1; row <= rowCount; ++row) {
            for (int column = 1; column <= columnCount; ++column) {
                if (column > 1)
                    out.line() += QLatin1Char(',');
                appendCellText(out.line(), sheet, row, column);
            }
            out.endLine();
            if (counted)
                progress.count(row, rowCount, QStringLiteral("rows"));
        }
    }
    progress.finish();
}

int runDump(const QStringList& arguments)
{
    if (arguments.size() != 1) {
        printError(QStringLiteral("vygis dump: expected one workbook; see 'vygis dump --help'"));
        return ExitUsage;
    }
    const QString path = arguments.first();
    if (!QFileInfo(path).isFile()) {
        printError(QStringLiteral("vygis dump: %1: no such file").arg(path));
        return ExitFailure;
    }
    TerminalProgress progress(QStringLiteral("vygis dump: "));
    progress.step(QStringLiteral("reading %1").arg(path));
    const QXlsx::Document document(path);
    const QXlsx::Worksheet* sheet = document.currentWorksheet();
    const QXlsx::CellRange used = sheet ? sheet->dimension() : QXlsx::CellRange();
    // From A1, as getExcelData reads.
    const int rowCount = used.isValid() ? used.lastRow() : 0;
    const int columnCount = used.isValid() ? used.lastColumn() : 0;
    if (rowCount == 0 || qint64(rowCount) * columnCount > MaxCellsRead) {
        progress.finish();
        const QString unreadable = workbookInputRefusal(path);
        printError(QStringLiteral("vygis dump: %1").arg(
            unreadable.isEmpty() ? QStringLiteral("%1: no sheet data (the active sheet is empty or "
                                                  "a chart sheet)").arg(path)
                                 : unreadable));
        return ExitFailure;
    }
    printSheet(*sheet, rowCount, columnCount, progress);
    return ExitSuccess;
}

} // namespace

Command dumpCommand()
{
    Command command;
    command.name = QStringLiteral("dump");
    command.summary = QStringLiteral("print the active sheet of a workbook as CSV");
    command.usage = QStringLiteral(
        "Usage: vygis dump WORKBOOK\n\n"
        "Prints the active worksheet of WORKBOOK as CSV on standard output, one line per\n"
        "sheet row from row 1, one field per column from column A. Exit status 1 when the\n"
        "file is missing or holds no sheet data.");
    command.run = runDump;
    return command;
}
