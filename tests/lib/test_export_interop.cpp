// openpyxl reads each kind of export with the values and styles that the engine reads.

#include "test_export_support.h"

#include "vygisutil.h"

#include "tsmemorylayer.h"
#include "tsmemorytable.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QStandardItemModel>

using namespace VyObjects;

namespace {

QStringList texts(const QJsonArray& array)
{
    QStringList list;
    for (const QJsonValue& item : array)
        list.append(item.toString());
    return list;
}

// The style of a cell in openpyxl's words (see interop/dump_cells.py).
QStringList openpyxlStyle(const QXlsx::Format& format)
{
    const auto centre = [](bool centred) { return centred ? QStringLiteral("center") : QString(); };
    const auto thin = [](QXlsx::Format::BorderStyle style) {
        return style == QXlsx::Format::BorderThin ? QStringLiteral("thin") : QString();
    };
    const bool solid = format.fillPattern() == QXlsx::Format::PatternSolid;
    return {centre(format.horizontalAlignment() == QXlsx::Format::AlignHCenter),
            centre(format.verticalAlignment() == QXlsx::Format::AlignVCenter),
            solid ? "FF" + format.patternForegroundColor().name().mid(1).toUpper() : QString(),
            thin(format.leftBorderStyle()), thin(format.rightBorderStyle()),
            thin(format.topBorderStyle()), thin(format.bottomBorderStyle())};
}

// Every cell openpyxl finds holds the value and shows the style the engine reads there,
// and both agree on the sheet, the merges and the height of row 1. Returns the cell count.
int expectOpenpyxlReadsAsTheEngine(const QString& file)
{
    QProcess python;
    python.start(VYGIS_PYTHON3, {VYGIS_TEST_SOURCE_DIR "/interop/dump_cells.py", file});
    EXPECT_TRUE(python.waitForFinished(60000) && python.exitCode() == 0)
        << python.readAllStandardError().toStdString();
    const QJsonObject view = QJsonDocument::fromJson(python.readAllStandardOutput()).object();

    SavedSheet sheet(file);
    EXPECT_EQ(view.value("sheet").toString(), "Sheet1");
    EXPECT_EQ(texts(view.value("merges").toArray()), sheet.merges());
    EXPECT_DOUBLE_EQ(view.value("row1Height").toDouble(sheet.rowHeight(1)), sheet.rowHeight(1));
    const QJsonArray cells = view.value("cells").toArray();
    for (const QJsonValue& item : cells) {
        const QJsonObject cell = item.toObject();
        const QXlsx::CellReference at(cell.value("ref").toString());
        SCOPED_TRACE(at.toString().toStdString());
        const QVariant value = sheet.value(at.row(), at.column());
        EXPECT_EQ(cell.value("value").toVariant().toString(), value.toString());
        EXPECT_EQ(cell.value("type").toString() == "s", value.userType() == QMetaType::QString);
        const QStringList style = texts(cell.value("style").toArray());
        EXPECT_EQ(style, openpyxlStyle(sheet.format(at.row(), at.column())));
    }
    return cells.size();
}

using OpenpyxlReadsExports = ExportTest;

TEST_F(OpenpyxlReadsExports, ItemModelExport)
{
    QStandardItemModel model(2, 2);
    model.setHorizontalHeaderLabels({"Name", "Count"});
    model.setData(model.index(0, 0), "first");
    model.setData(model.index(0, 1), 12.5);
    model.setData(model.index(1, 0), "second");
    model.setData(model.index(1, 1), 7);
    ASSERT_TRUE(VyExcelUtil::export2Excel("Counts", path(), &model, {}));
    EXPECT_EQ(expectOpenpyxlReadsAsTheEngine(path()), 7);
}

TEST_F(OpenpyxlReadsExports, FeatureLayerExport)
{
    auto layer = TsRefPtr<TsMemoryFeatureLayer>::create("Roads", TsLayer::LineLayer);
    layer->AddField("NAME", TsField::StringField, "Road name");
    layer->AddField("LENGTH", TsField::DoubleField);
    layer->AddFeature({"Main St", 125.25});
    layer->AddFeature({"Mill Rd", 3.0});
    ASSERT_TRUE(VyExcelUtil::export2Excel(path(), layer.get(), true, {}));
    EXPECT_EQ(expectOpenpyxlReadsAsTheEngine(path()), 7);
}

TEST_F(OpenpyxlReadsExports, CoordinateExport)
{
    auto layer = TsRefPtr<TsMemoryFeatureLayer>::create("Wells", TsLayer::PointLayer);
    layer->AddField("NAME", TsField::StringField);
    layer->AddFeature({"W1"}, TsRefPtr<TsGeometry>(new TsGeoPoint(10.5, 20.25, 3.0)));
    ASSERT_TRUE(VyExcelUtil::export2ExcelHasXYZ(path(), layer.get(), {"X", "Y", "Z", "NAME"},
                                                false, {}));
    EXPECT_EQ(expectOpenpyxlReadsAsTheEngine(path()), 8);
}

TEST_F(OpenpyxlReadsExports, TableExport)
{
    auto table = TsRefPtr<TsMemoryTable>::create("LandUse");
    table->AddField("CODE", TsField::IntegerField);
    table->AddField("LABEL", TsField::StringField);
    table->AddRow({std::int32_t(11), "Forest"});
    ASSERT_TRUE(VyExcelUtil::export2Excel(path(), table));
    EXPECT_EQ(expectOpenpyxlReadsAsTheEngine(path()), 5);
}

} // namespace
