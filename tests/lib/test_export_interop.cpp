// openpyxl reads each kind of export with the values and styles that the engine reads.

#include "test_export_support.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

namespace {

// The style of a cell as openpyxl_dump.py gives it, in the words of styleOf().
QStringList openpyxlStyle(const QJsonObject& cell)
{
    QStringList style{cell.value("horizontal").toString(), cell.value("vertical").toString(),
                      cell.value("fill").toString() == "solid" ? cell.value("fillColor").toString().toUpper() : QString()};
    for (const QJsonValue& side : cell.value("border").toArray())
        style.append(side.toString());
    return style;
}

} // namespace

int expectOpenpyxlReadsAsTheEngine(const QString& file)
{
    QProcess python;
    python.start(VYGIS_PYTHON3, {VYGIS_TEST_SOURCE_DIR "/../xlsx/interop/openpyxl_dump.py", file});
    EXPECT_TRUE(python.waitForFinished(60000) && python.exitCode() == 0)
        << python.readAllStandardError().toStdString();
    const QJsonObject view = QJsonDocument::fromJson(python.readAllStandardOutput()).object()
                                 .value("sheets").toArray().at(0).toObject();
    SavedSheet sheet(file);
    EXPECT_EQ(view.value("title").toString(), "Sheet1");
    QStringList merges;
    for (const QJsonValue& range : view.value("merges").toArray())
        merges.append(range.toString());
    EXPECT_EQ(merges, sheet.merges());
    EXPECT_DOUBLE_EQ(view.value("rowHeights").toObject().value("1").toDouble(sheet.rowHeight(1)), sheet.rowHeight(1));
    const QJsonObject cells = view.value("cells").toObject();
    for (auto item = cells.begin(); item != cells.end(); ++item) {
        const QJsonObject cell = item.value().toObject();
        const QXlsx::CellReference at(item.key());
        SCOPED_TRACE(item.key().toStdString());
        const QVariant value = sheet.value(at.row(), at.column());
        EXPECT_EQ(cell.value("value").toVariant().toString(), value.toString());
        EXPECT_EQ(cell.value("type").toString() == "s", value.userType() == QMetaType::QString);
        EXPECT_EQ(openpyxlStyle(cell), styleOf(sheet.format(at.row(), at.column())));
    }
    return cells.size();
}
