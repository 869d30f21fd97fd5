// Opens a workbook from bytes and saves it again, as the library's report writers do
// with a workbook they are given, then opens what was saved: it must read back with the
// same sheets and, on every worksheet, the same used range and the same cell texts.

#include "model/workbookdata.h"
#include "read/packagereader.h"
#include "xlsxdocument.h"

#include <QBuffer>
#include <QByteArray>

#include <cstddef>
#include <cstdint>
#include <cstdio>

namespace {

void fail(const char* what, const QString& where)
{
    std::fprintf(stderr, "resave: %s at %s\n", what, qPrintable(where));
    __builtin_trap();
}

// The cells the model of the first reading lists, as the public API shows them again.
void compareSheet(const QXlsx::detail::SheetData& data, QXlsx::Document& first, QXlsx::Document& second)
{
    if (first.dimension() != second.dimension())
        fail("a different used range", data.name);
    for (const auto& row : data.rows) {
        for (const QXlsx::Cell& cell : row.cells) {
            const QVariant before = first.read(row.row, cell.column());
            const QVariant after = second.read(row.row, cell.column());
            if (before.toString() != after.toString() || before.userType() != after.userType())
                fail("a different cell", QXlsx::CellReference(row.row, cell.column()).toString());
        }
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    const QByteArray bytes = QByteArray::fromRawData(reinterpret_cast<const char*>(data), int(size));
    QXlsx::detail::WorkbookData model;
    QBuffer input;
    input.setData(bytes);
    input.open(QIODevice::ReadOnly);
    if (!QXlsx::detail::readPackage(input, model, nullptr))
        return 0;
    input.seek(0);
    QXlsx::Document first(&input);

    QBuffer saved;
    saved.open(QIODevice::WriteOnly);
    if (!first.saveAs(&saved))
        return 0;
    saved.close();
    saved.open(QIODevice::ReadOnly);
    QXlsx::Document second(&saved);

    const QStringList names = first.sheetNames();
    if (second.sheetNames() != names)
        fail("different sheets", names.join(QLatin1Char(',')));
    for (int i = 0; i < names.size(); ++i) {
        first.selectSheet(names[i]);
        second.selectSheet(names[i]);
        if (first.currentSheet()->sheetType() != second.currentSheet()->sheetType())
            fail("a different sheet type", names[i]);
        if (first.currentWorksheet() && size_t(i) < model.sheets.size())
            compareSheet(*model.sheets[size_t(i)], first, second);
    }
    return 0;
}
