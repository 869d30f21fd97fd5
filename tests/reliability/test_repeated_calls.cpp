// Every function of the library, called many times in one process on good and bad
// input: the host objects and references it takes are all given back. Under the
// sanitizer build, LeakSanitizer also checks at exit that no memory is left behind.

#include "test_reference_balance.h"

#include "vygisutil.h"

#include "tsgeo.h"
#include "tsmemorylayer.h"
#include "tsmemoryraster.h"
#include "tsmemorytable.h"
#include "tsmemorytopology.h"

#include <QFile>
#include <QStandardItemModel>
#include <QTableWidget>
#include <QTemporaryDir>

using namespace VyObjects;

namespace {

constexpr int Rounds = 20;

class RepeatedCalls : public ReferenceBalanceTest
{
protected:
    QString path(const QString& name) const { return m_dir.filePath(name); }
    // A path where nothing stands, one holding bytes that are no workbook, and a
    // workbook of the shape the readers look for: a field template.
    QStringList inputs() const { return {path("missing.xlsx"), m_garbage, m_template}; }

    void SetUp() override
    {
        ReferenceBalanceTest::SetUp();
        m_garbage = path("garbage.xlsx");
        QFile garbage(m_garbage);
        ASSERT_TRUE(garbage.open(QIODevice::WriteOnly));
        garbage.write("PK\x03\x04 no workbook");
        m_template = path("template.xlsx");
        VyExcelUtil::createExcel(m_template);
        VyExcelUtil::updateFieldsTemplateTableContent({"roads", "NAME", "text", "50", "0"}, m_template);
    }

    QTemporaryDir m_dir;
    QString m_garbage;
    QString m_template;
};

TsRefPtr<TsMemoryFeatureLayer> pointLayer()
{
    auto layer = TsRefPtr<TsMemoryFeatureLayer>::create("wells", TsLayer::PointLayer);
    layer->AddField("TableName", TsField::StringField, "name");
    layer->AddField("DEPTH", TsField::DoubleField);
    layer->AddFeature({"roads", 12.5}, TsRefPtr<TsGeometry>(new TsGeoPoint(1.0, 2.0)));
    layer->AddFeature({"rivers", 3.0});
    return layer;
}

TEST_F(RepeatedCalls, ExportsAndReportsGiveBackWhatTheyTake)
{
    QStandardItemModel model(2, 2);
    model.setItem(0, 0, new QStandardItem("a"));
    QTableWidget widget(1, 4);
    widget.setItem(0, 0, new QTableWidgetItem("ticked"));
    widget.item(0, 0)->setCheckState(Qt::Checked);
    const auto table = TsRefPtr<TsMemoryTable>::create("parcels");
    table->AddField("CODE", TsField::IntegerField);
    table->AddRow({std::int32_t(1)});
    const auto topology = TsRefPtr<TsMemoryTopology>::create(true);
    topology->AddError(TsTopoError());
    const auto dem = TsRefPtr<TsMemoryRaster>::create(TsRect(0, 10, 0, 10), 2, 2);
    dem->SetValues({1, 2, 3, 4});

    for (int round = 0; round < Rounds; ++round) {
        const QString out = path(QStringLiteral("out%1.xlsx").arg(round % 3));
        VyExcelUtil::export2Excel("title", out, &model, {1});
        VyExcelUtil::export2Excel(out, pointLayer().get(), true, {});
        VyExcelUtil::export2ExcelHasXYZ(out, pointLayer().get(), {"X", "Y", "Z", "DEPTH"}, true, {});
        VyExcelUtil::export2Excel(out, TsRefPtr<TsTable>(table));
        VyExcelUtil::export2Excel(out, TsRefPtr<TsTable>());
        VyExcelUtil::exportErrorTable({"type", "1", "roads"}, out);
        VyExcelUtil::exportExcelByTsTopology(out, topology.get());
        VyExcelUtil::exportExcelByTableWidget(out, &widget);
        VyExcelUtil::saveQueryElevationOutputFile(out, {"1", "1", "20", "20"}, TsRefPtr<TsRasterProps>(dem));
        VyExcelUtil::saveQueryElevationOutputFile(out, {"1", "1"}, TsRefPtr<TsRasterProps>());
        for (const QString& input : inputs())
            VyExcelUtil::exportErrorTable({"type", "1", "roads"}, input + ".copy");
    }
}

TEST_F(RepeatedCalls, ReadersAndImportsGiveBackWhatTheyTake)
{
    QTableWidget widget(0, 4);
    for (int round = 0; round < Rounds; ++round) {
        for (const QString& input : inputs()) {
            std::vector<QStringList> rows;
            VyExcelUtil::getExcelData(input, rows);
            QMap<QString, int> keys{{"roads", 0}};
            VyExcelUtil::importExcelToTableWidget(input, keys, &widget);
            if (input == m_template)   // elsewhere the missing key column asks the user
                VyExcelUtil::assocationFromExcel(input, "TableName", pointLayer().get(), {});
            QVector<QStringList> rules;
            VyExcelUtil::readAttributeCheckRuleFromExcel(input, rules);
            VyExcelUtil::readCoordinateFile(input);
            VyExcelUtil::readCoordinateFile2(input);
            QMap<QString, QString> pairs;
            VyExcelUtil::readTransactionTemplateFile(input, pairs);
            VyExcelUtil::readFieldsTemplateTableName(input);
            VyExcelUtil::readFieldsTemplateTableContent("roads", input);
            VyExcelUtil::readFieldsTemplateTableContent1("roads", input);
            VyExcelUtil::getImportTemplateTable(input);
            VyExcelUtil::getImportTemplateTableName(input);
        }
    }
    EXPECT_EQ(widget.rowCount(), Rounds);
}

TEST_F(RepeatedCalls, WritersAndLayerUtilitiesGiveBackWhatTheyTake)
{
    const auto map = TsRefPtr<TsMap>::create();
    for (int round = 0; round < Rounds; ++round) {
        const QString book = path(QStringLiteral("book%1.xlsx").arg(round));
        VyExcelUtil::createExcel(book);
        VyExcelUtil::updateFieldsTemplateTableContent({"t", "f", "text", "1", "0"}, book);
        VyExcelUtil::updateTemplateName(book, {"t", "u"});
        VyExcelUtil::clearExcel(book);
        const auto layer = TsRefPtr<TsLayer>::create("roads", TsLayer::LineLayer);
        VyUniversalFunction::setLayerName(map.get(), layer);
        map->AddLayer(layer);
        VyUniversalFunction::setLayerName(nullptr, layer);
        VyUniversalFunction::layertypeToIcon(TsLayer::LayerType(round % 7));
        const QString drawing = path("drawing.dxf");
        QFile dxf(drawing);
        ASSERT_TRUE(dxf.open(QIODevice::WriteOnly));
        dxf.write("  9\n$DWGCODEPAGE\n  3\nANSI_1252\n");
        dxf.close();
        VyUniversalFunction::replaceDxfCodepage(TsString(drawing.toStdWString()));
    }
}

} // namespace
