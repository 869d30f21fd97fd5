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

// What openpyxl makes of the active sheet (see interop/dump_cells.py); empty when it
// could not be run.
QJsonObject openpyxlView(const QString& file)
{
    QProcess python;
    python.start(QStringLiteral(VYGIS_PYTHON3),
                 {QStringLiteral(VYGIS_TEST_SOURCE_DIR "/interop/dump_cells.py"), file});
    if (!python.waitForFinished(60000) || python.exitCode() != 0) {
        ADD_FAILURE() << python.readAllStandardError().toStdString();
        return {};
    }
    return QJsonDocument::fromJson(python.readAllStandardOutput()).object();
}

QString horizontalName(const QXlsx::Format& format)
{
    return format.horizontalAlignment() == QXlsx::Format::AlignHCenter ? "center" : QString();
}

QString verticalName(const QXlsx::Format& format)
{
    return format.verticalAlignment() == QXlsx::Format::AlignVCenter ? "center" : QString();
}

QString fillColour(const QXlsx::Format& format)
{
    if (format.fillPattern() != QXlsx::Format::PatternSolid)
        return QString();
    return "FF" + format.patternForegroundColor().name().mid(1).toUpper();
}

QStringList borderNames(const QXlsx::Format& format)
{
    const auto name = [](QXlsx::Format::BorderStyle style) {
        return style == QXlsx::Format::BorderThin ? QStringLiteral("thin") : QString();
    };
    return {name(format.leftBorderStyle()), name(format.rightBorderStyle()),
            name(format.topBorderStyle()), name(format.bottomBorderStyle())};
}

QStringList toStrings(const QJsonArray& array)
{
    QStringList list;
    for (const QJsonValue& item : array)
        list.append(item.toString());
    return list;
}

// Every cell openpyxl reports holds the engine's value and shows the engine's styles, and
// the two agree on the merges and the height of row 1. Returns the number of cells.
int expectOpenpyxlReadsWhatTheEngineReads(const QString& file)
{
    const QJsonObject view = openpyxlView(file);
    SavedSheet sheet(file);
    EXPECT_EQ(view.value("sheet").toString(), "Sheet1");
    EXPECT_EQ(toStrings(view.value("merges").toArray()), sheet.merges());
    const QJsonValue height = view.value("row1Height");
    if (!height.isNull()) {
        EXPECT_DOUBLE_EQ(height.toDouble(), sheet.rowHeight(1));
    }

    const QJsonArray cells = view.value("cells").toArray();
    for (const QJsonValue& item : cells) {
        const QJsonObject cell = item.toObject();
        const QXlsx::CellReference ref(cell.value("ref").toString());
        SCOPED_TRACE(ref.toString().toStdString());
        const QXlsx::Format format = sheet.format(ref.row(), ref.column());
        EXPECT_EQ(cell.value("value").toVariant().toString(), sheet.text(ref.row(), ref.column()));
        const bool engineText = sheet.value(ref.row(), ref.column()).userType() == QMetaType::QString;
        if (!cell.value("value").isNull()) {
            EXPECT_EQ(cell.value("type").toString() == "s", engineText);
        }
        EXPECT_EQ(cell.value("horizontal").toString(), horizontalName(format));
        EXPECT_EQ(cell.value("vertical").toString(), verticalName(format));
        EXPECT_EQ(cell.value("fillColour").toString(), fillColour(format));
        EXPECT_EQ(toStrings(cell.value("borders").toArray()), borderNames(format));
    }
    return cells.size();
}

class OpenpyxlReadsExports : public ExportTest
{
protected:
    void SetUp() override
    {
        ExportTest::SetUp();
        if (QStringLiteral(VYGIS_PYTHON3).isEmpty())
            GTEST_SKIP() << "no python3 with openpyxl";
    }
};

TEST_F(OpenpyxlReadsExports, ItemModelExport)
{
    QStandardItemModel model(2, 2);
    model.setHorizontalHeaderLabels({"Name", "Count"});
    model.setData(model.index(0, 0), "first");
    model.setData(model.index(0, 1), 12.5);
    model.setData(model.index(1, 0), "second");
    ASSERT_TRUE(VyExcelUtil::export2Excel("Counts", path(), &model, {}));
    EXPECT_GE(expectOpenpyxlReadsWhatTheEngineReads(path()), 7);
}

TEST_F(OpenpyxlReadsExports, FeatureLayerExport)
{
    auto layer = TsRefPtr<TsMemoryFeatureLayer>::create("Roads", TsLayer::LineLayer);
    layer->AddField("NAME", TsField::StringField, "Road name");
    layer->AddField("LENGTH", TsField::DoubleField);
    layer->AddFeature({"Main St", 125.25});
    layer->AddFeature({"Mill Rd", 3.0});
    ASSERT_TRUE(VyExcelUtil::export2Excel(path(), layer.get(), true, {}));
    EXPECT_GE(expectOpenpyxlReadsWhatTheEngineReads(path()), 7);
}

TEST_F(OpenpyxlReadsExports, CoordinateExport)
{
    auto layer = TsRefPtr<TsMemoryFeatureLayer>::create("Wells", TsLayer::PointLayer);
    layer->AddField("NAME", TsField::StringField);
    layer->AddFeature({"W1"}, TsRefPtr<TsGeometry>(new TsGeoPoint(10.5, 20.25, 3.0)));
    ASSERT_TRUE(VyExcelUtil::export2ExcelHasXYZ(path(), layer.get(), {"X", "Y", "Z", "NAME"},
                                                false, {}));
    EXPECT_EQ(expectOpenpyxlReadsWhatTheEngineReads(path()), 8);
}

TEST_F(OpenpyxlReadsExports, TableExport)
{
    auto table = TsRefPtr<TsMemoryTable>::create("LandUse");
    table->AddField("CODE", TsField::IntegerField);
    table->AddField("LABEL", TsField::StringField);
    table->AddRow({std::int32_t(11), "Forest"});
    ASSERT_TRUE(VyExcelUtil::export2Excel(path(), table));
    EXPECT_GE(expectOpenpyxlReadsWhatTheEngineReads(path()), 5);
}

} // namespace
