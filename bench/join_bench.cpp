// Times the attribute join of a large workbook into a feature layer of the same size:
// the time to open the workbook and read every cell on its own, and the whole join
// (opening, indexing, matching every feature and writing its attributes in one edit
// operation). The difference is what the join itself costs. Each round prints a "read"
// and a "join" phase.
//
//     bench_join [rows] [rounds]      defaults: 100000 rows and features, 3 rounds

#include "vygisutil.h"

#include "benchclock.h"

#include "tsmemorylayer.h"
#include "xlsxdocument.h"

#include <QApplication>
#include <QTemporaryDir>

#include <algorithm>
#include <cstdio>
#include <cstdlib>

using namespace VyObjects;

namespace {

constexpr int kColumnCount = 6;   // the key and five data columns

QString codeOf(int i)
{
    return QStringLiteral("P-%1").arg(i, 7, 10, QLatin1Char('0'));
}

// The rows stand in the reverse order of the features, so every match goes through the
// index rather than following the sheet.
bool writeWorkbook(int rowCount, const QString& path)
{
    QXlsx::Document document;
    const char* headers[kColumnCount] = {"Code", "Owner", "Area(m2)", "Class", "Note", "Surveyed"};
    for (int c = 0; c < kColumnCount; ++c)
        document.write(1, c + 1, QString::fromLatin1(headers[c]));
    for (int r = 0; r < rowCount; ++r) {
        const int i = rowCount - 1 - r;
        const int row = r + 2;
        document.write(row, 1, codeOf(i));
        document.write(row, 2, QStringLiteral("Owner %1").arg(i % 5000));
        document.write(row, 3, 1000.0 + i * 0.37);
        document.write(row, 4, i % 12);
        document.write(row, 5, i % 3 == 0 ? QStringLiteral("checked") : QString());
        document.write(row, 6, QDate(2000, 1, 1).addDays(i % 7000));
    }
    return document.saveAs(path);
}

TsRefPtr<TsMemoryFeatureLayer> parcels(int featureCount)
{
    auto layer = TsRefPtr<TsMemoryFeatureLayer>::create("Parcels", TsLayer::PolygonLayer);
    layer->AddField("CODE", TsField::StringField);
    layer->AddField("OWNER", TsField::StringField);
    layer->AddField("AREA", TsField::DoubleField, TsString(), 2);
    layer->AddField("CLASS", TsField::IntegerField);
    layer->AddField("NOTE", TsField::StringField);
    layer->AddField("SURVEYED", TsField::StringField);
    for (int i = 0; i < featureCount; ++i)
        layer->AddFeature({TsString(codeOf(i).toStdWString())});
    return layer;
}

// What the join has to read, without the join: every cell of the sheet.
qint64 readEveryCell(const QString& path)
{
    const QXlsx::Document document(path);
    const QXlsx::CellRange used = document.dimension();
    qint64 characters = 0;
    for (int row = used.firstRow(); row <= used.lastRow(); ++row) {
        for (int column = used.firstColumn(); column <= used.lastColumn(); ++column)
            characters += document.read(row, column).toString().size();
    }
    return characters;
}

} // namespace

int main(int argc, char** argv)
{
    QApplication application(argc, argv);   // the join may show a message box
    const int rowCount = argc > 1 ? std::max(1, std::atoi(argv[1])) : 100000;
    const int rounds = argc > 2 ? std::max(1, std::atoi(argv[2])) : 3;
    QTemporaryDir dir;
    const QString path = dir.filePath("join.xlsx");
    bench::Stopwatch clock;
    if (!writeWorkbook(rowCount, path))
        return std::fprintf(stderr, "could not write the workbook\n"), 1;
    clock.report("make-workbook");

    for (int round = 0; round < rounds; ++round) {
        const TsRefPtr<TsMemoryFeatureLayer> layer = parcels(rowCount);
        clock.restart();
        if (readEveryCell(path) == 0)
            return std::fprintf(stderr, "the workbook reads empty\n"), 1;
        clock.report("read");
        if (!VyExcelUtil::assocationFromExcel(path, "code", layer.get(), {{"AREA", "AREA"}}))
            return std::fprintf(stderr, "join failed\n"), 1;
        clock.report("join");
        if (layer->AttributeChanges() != rowCount * (kColumnCount - 1))
            return std::fprintf(stderr, "join changed %d attributes\n", layer->AttributeChanges()), 1;
    }
    bench::reportFigure("rows", rowCount);
    return 0;
}
