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
#include <QSet>
#include <QVariant>
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
        // One letter per call, so that a round that answers differently shows which call.
        std::string answers;
        const auto note = [&answers](bool ok) { answers += ok ? 'y' : 'n'; };
        note(VyExcelUtil::export2Excel("title", out, &model, {1}));
        note(VyExcelUtil::export2Excel(out, pointLayer().get(), true, {}));
        note(VyExcelUtil::export2ExcelHasXYZ(out, pointLayer().get(), {"X", "Y", "Z", "DEPTH"}, true, {}));
        note(VyExcelUtil::export2Excel(out, TsRefPtr<TsTable>(table)));
        note(VyExcelUtil::export2Excel(out, TsRefPtr<TsTable>()));
        note(VyExcelUtil::exportErrorTable({"type", "1", "roads"}, out));
        note(VyExcelUtil::exportExcelByTsTopology(out, topology.get()));
        note(VyExcelUtil::exportExcelByTableWidget(out, &widget));
        note(VyExcelUtil::saveQueryElevationOutputFile(out, {"1", "1", "20", "20"}, TsRefPtr<TsRasterProps>(dem)));
        note(VyExcelUtil::saveQueryElevationOutputFile(out, {"1", "1"}, TsRefPtr<TsRasterProps>()));
        for (const QString& input : inputs())
            note(VyExcelUtil::exportErrorTable({"type", "1", "roads"}, input + ".copy"));
        ASSERT_EQ(answers, "yyyynyyyynyyy") << "round " << round;
    }
}

TEST_F(RepeatedCalls, ReadersAndImportsGiveBackWhatTheyTake)
{
    QTableWidget widget(0, 4);
    QStringList firstAnswers;
    for (int round = 0; round < Rounds; ++round) {
        // What every reader gave, in one list per round: nothing is kept between calls,
        // so every round must read the same.
        QStringList answers;
        const auto note = [&answers](auto&&... parts) {
            QStringList line;
            (line << ... << QVariant::fromValue(parts).toString());
            answers << line.join(QLatin1Char('|'));
        };
        for (const QString& input : inputs()) {
            std::vector<QStringList> rows;
            VyExcelUtil::getExcelData(input, rows);
            note(int(rows.size()), rows.empty() ? QString() : rows.front().join(','));
            QMap<QString, int> keys{{"roads", 0}};
            note(VyExcelUtil::importExcelToTableWidget(input, keys, &widget));
            if (input == m_template)   // elsewhere the missing key column asks the user
                note(VyExcelUtil::assocationFromExcel(input, "TableName", pointLayer().get(), {}));
            QVector<QStringList> rules;
            note(VyExcelUtil::readAttributeCheckRuleFromExcel(input, rules), rules.size());
            note(int(VyExcelUtil::readCoordinateFile(input).size()));
            note(VyExcelUtil::readCoordinateFile2(input).join(','));
            QMap<QString, QString> pairs;
            note(VyExcelUtil::readTransactionTemplateFile(input, pairs), pairs.size());
            note(VyExcelUtil::readFieldsTemplateTableName(input).join(','));
            note(VyExcelUtil::readFieldsTemplateTableContent("roads", input).join(','));
            note(VyExcelUtil::readFieldsTemplateTableContent1("roads", input).join(','));
            note(VyExcelUtil::getImportTemplateTable(input).join(','));
            note(VyExcelUtil::getImportTemplateTableName(input).join(','));
        }
        if (round == 0)
            firstAnswers = answers;
        ASSERT_EQ(answers, firstAnswers) << "round " << round;
    }
    // The template is read as one: its table name and field row come back.
    EXPECT_TRUE(firstAnswers.join('\n').contains("roads"));
    EXPECT_TRUE(firstAnswers.join('\n').contains("NAME"));
    EXPECT_EQ(widget.rowCount(), Rounds);
}

TEST_F(RepeatedCalls, WritersAndLayerUtilitiesGiveBackWhatTheyTake)
{
    const auto map = TsRefPtr<TsMap>::create();
    QSet<QString> names;
    for (int round = 0; round < Rounds; ++round) {
        const QString book = path(QStringLiteral("book%1.xlsx").arg(round));
        VyExcelUtil::createExcel(book);
        EXPECT_TRUE(VyExcelUtil::updateFieldsTemplateTableContent({"t", "f", "text", "1", "0"}, book));
        VyExcelUtil::updateTemplateName(book, {"t", "u"});
        EXPECT_EQ(VyExcelUtil::readFieldsTemplateTableName(book), QStringList({"t", "u"}));
        EXPECT_TRUE(VyExcelUtil::clearExcel(book));
        const auto layer = TsRefPtr<TsLayer>::create("roads", TsLayer::LineLayer);
        VyUniversalFunction::setLayerName(map.get(), layer);
        map->AddLayer(layer);
        VyUniversalFunction::setLayerName(nullptr, layer);
        names.insert(QString::fromStdU16String(layer->GetLayerName().utf16()));
        EXPECT_FALSE(VyUniversalFunction::layertypeToIcon(TsLayer::LayerType(round % 7)).isNull());
        const QString drawing = path("drawing.dxf");
        QFile dxf(drawing);
        ASSERT_TRUE(dxf.open(QIODevice::WriteOnly));
        dxf.write("  9\n$DWGCODEPAGE\n  3\nANSI_1252\n");
        dxf.close();
        VyUniversalFunction::replaceDxfCodepage(TsString(drawing.toStdWString()));
        ASSERT_TRUE(dxf.open(QIODevice::ReadOnly));
        EXPECT_TRUE(dxf.readAll().contains("ANSI_936"));
    }
    // Every layer added to the map got a name of its own.
    EXPECT_EQ(names.size(), Rounds);
}

} // namespace
