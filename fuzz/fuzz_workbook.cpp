// Opens a workbook from bytes and reads everything a user of the engine can ask for:
// every stored cell of every sheet with its value, text, date and format, the merges,
// the row heights and column widths.

#include "model/workbookdata.h"
#include "read/packagereader.h"
#include "xlsxdocument.h"

#include <QBuffer>
#include <QByteArray>

#include <cstddef>
#include <cstdint>

namespace {

volatile quint64 g_seen = 0;

// Folds what was read into one number so that no read can be optimised away.
struct Sink
{
    quint64 sum = 0;
    void add(quint64 value) { sum = sum * 31 + value; }
    void add(const QString& text) { add(quint64(qHash(text))); }
    void add(double value) { add(quint64(qint64(value * 1000.0 + 0.5))); }
};

void readFormat(const QXlsx::Format& format, Sink& sink)
{
    sink.add(format.fontSize());
    sink.add(format.fontName());
    sink.add(quint64(format.fontBold() + 2 * format.fontItalic() + 4 * format.fontStrikeOut()));
    sink.add(quint64(format.fontUnderline()));
    sink.add(quint64(format.fontColor().rgba()));
    sink.add(quint64(format.horizontalAlignment() * 16 + format.verticalAlignment()));
    sink.add(quint64(format.rotation() * 64 + format.indent() + format.textWrap() + format.shrinkToFit()));
    sink.add(quint64(format.leftBorderStyle() + format.rightBorderStyle() + format.topBorderStyle()
                     + format.bottomBorderStyle()));
    sink.add(quint64(format.leftBorderColor().rgba() ^ format.rightBorderColor().rgba()
                     ^ format.topBorderColor().rgba() ^ format.bottomBorderColor().rgba()));
    sink.add(quint64(format.fillPattern()));
    sink.add(quint64(format.patternForegroundColor().rgba() ^ format.patternBackgroundColor().rgba()));
    sink.add(format.numberFormat());
    sink.add(quint64(format.numberFormatIndex()));
    sink.add(quint64(format.isDateTimeFormat() + format.locked() + format.hidden() + format.isEmpty()));
}

void readCell(const QXlsx::Worksheet& sheet, int row, int column, Sink& sink)
{
    const QXlsx::Cell* cell = sheet.cellAt(row, column);
    if (!cell)
        __builtin_trap();   // the model listed a cell the API cannot find
    sink.add(sheet.read(row, column).toString());
    sink.add(cell->value().toString());
    sink.add(quint64(cell->cellType()));
    sink.add(cell->formula());
    if (cell->isDateTime())
        sink.add(cell->dateTime().toString());
    readFormat(cell->format(), sink);
}

// The stored rows, columns and cells come from the model, which lists them; the values
// come through the public API, which is what the library reads.
void readSheet(const QXlsx::detail::SheetData& data, const QXlsx::Worksheet& sheet, Sink& sink)
{
    for (const auto& row : data.rows) {
        sink.add(sheet.rowHeight(row.row));
        for (const QXlsx::Cell& cell : row.cells)
            readCell(sheet, row.row, cell.column(), sink);
    }
    for (const auto& column : data.columns) {
        sink.add(sheet.columnWidth(column.first));
        sink.add(sheet.columnWidth(column.last));
    }
    for (const QXlsx::CellRange& merge : sheet.mergedCells())
        sink.add(merge.toString());
    sink.add(sheet.dimension().toString());
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    const QByteArray bytes = QByteArray::fromRawData(reinterpret_cast<const char*>(data), int(size));

    QXlsx::detail::WorkbookData model;
    {
        QBuffer buffer;
        buffer.setData(bytes);
        buffer.open(QIODevice::ReadOnly);
        QXlsx::detail::readPackage(buffer, model, nullptr);
    }

    QBuffer buffer;
    buffer.setData(bytes);
    buffer.open(QIODevice::ReadOnly);
    QXlsx::Document document(&buffer);
    Sink sink;
    const QStringList names = document.sheetNames();
    for (int i = 0; i < names.size(); ++i) {
        if (!document.selectSheet(names[i]))
            __builtin_trap();   // a listed sheet must be selectable
        sink.add(quint64(document.currentSheet()->sheetType()));
        const QXlsx::Worksheet* sheet = document.currentWorksheet();
        if (sheet && size_t(i) < model.sheets.size())
            readSheet(*model.sheets[size_t(i)], *sheet, sink);
    }
    g_seen = sink.sum;
    return 0;
}
