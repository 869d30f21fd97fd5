// A process for the tests to kill part way through a write. Builds what it is asked to
// write, prints "writing" on its standard output, writes, and prints "written":
//   save_child workbook <path> <rows>   a workbook of rows x 8 cells, saved by the engine
//   save_child export <path> <rows>     the library's table export of that many rows
// It exits with 0 when the write succeeded.

#include "vygisutil.h"

#include "tsmemorytable.h"
#include "xlsxdocument.h"

#include <QApplication>

#include <cstdio>

namespace {

void announce(const char* line)
{
    std::fputs(line, stdout);
    std::fflush(stdout);
}

bool saveWorkbook(const QString& path, int rows)
{
    QXlsx::Document book;
    for (int row = 1; row <= rows; ++row) {
        for (int column = 1; column <= 4; ++column) {
            book.write(row, column, row * 8.25 + column);
            book.write(row, column + 4, QStringLiteral("r%1c%2").arg(row).arg(column));
        }
    }
    announce("writing\n");
    const bool saved = book.saveAs(path);
    announce("written\n");
    return saved;
}

bool exportTable(const QString& path, int rows)
{
    using namespace VyObjects;
    auto table = TsRefPtr<TsMemoryTable>::create("parcels");
    table->AddField("CODE", TsField::IntegerField);
    table->AddField("NAME", TsField::StringField);
    table->AddField("AREA", TsField::DoubleField);
    for (int row = 0; row < rows; ++row)
        table->AddRow({std::int32_t(row), TsString("parcel"), row * 0.5});
    announce("writing\n");
    const bool exported = VyExcelUtil::export2Excel(path, TsRefPtr<TsTable>(table));
    announce("written\n");
    return exported;
}

} // namespace

int main(int argc, char** argv)
{
    QApplication application(argc, argv);
    const QStringList args = application.arguments();
    if (args.size() != 4)
        return 2;
    const QString path = args[2];
    const int rows = args[3].toInt();
    if (args[1] == QLatin1String("workbook"))
        return saveWorkbook(path, rows) ? 0 : 1;
    if (args[1] == QLatin1String("export"))
        return exportTable(path, rows) ? 0 : 1;
    return 2;
}
