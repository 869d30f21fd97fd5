#include "test_import_support.h"

#include "vygisutil.h"

#include "tsmemorylayer.h"

#include <QTableWidget>

namespace {

using namespace VyObjects;
using importtest::MessageBoxCloser;

// Workbooks as other programs write them: openpyxl stores formulas without results,
// LibreOffice saves them with the results it calculated.
using ImportInterop = ImportTest;

TEST_F(ImportInterop, ATableWidgetGetsFormulaResultsAndDatesFromLibreOffice)
{
    const QString written = path("formulas.xlsx");
    python("import datetime\n"
           "wb = openpyxl.Workbook()\n"
           "ws = wb.active\n"
           "ws.append(['Key', 'When', 'Product', 'Time'])\n"
           "ws.append(['=\"K\"&1', datetime.datetime(2023, 7, 1, 9, 45), '=6*7', 'x'])\n"
           "ws['B2'].number_format = 'dd.mm.yyyy hh:mm'\n"
           "ws.append(['K2', 'b', 'c', datetime.time(10, 30)])\n"
           "ws.append(['K3', datetime.date(2020, 2, 29), '=B4+1', None])\n"
           "ws['C4'].number_format = 'yyyy-mm-dd'\n"
           "wb.save(sys.argv[1])\n", written);
    const QString resaved = resavedByOffice(written);
    SKIP_IF_TOOL_FAILED();

    QTableWidget table(0, 4);
    QMap<QString, int> keys{{"K1", 0}, {"K2", 0}, {"K3", 0}};
    EXPECT_TRUE(VyExcelUtil::importExcelToTableWidget(resaved, keys, &table));

    ASSERT_EQ(table.rowCount(), 3);
    EXPECT_EQ(table.item(0, 0)->text(), "K1");
    EXPECT_EQ(table.item(0, 1)->text(), "2023/07/01 09:45");
    EXPECT_EQ(table.item(0, 2)->text(), "42");
    EXPECT_EQ(table.item(1, 2)->text(), "c");
    EXPECT_EQ(table.item(1, 3), nullptr); // a time of day alone is refused
    EXPECT_EQ(table.item(2, 1)->text(), "2020/02/29 00:00");
    EXPECT_EQ(table.item(2, 2)->text(), "2020/03/01 00:00");
}

TEST_F(ImportInterop, JoinsAnOpenpyxlWorkbookWithATitleAndANumericKey)
{
    const QString file = path("parcels.xlsx");
    python("wb = openpyxl.Workbook()\n"
           "ws = wb.active\n"
           "ws['A1'] = 'Parcels'\n"
           "ws.merge_cells('A1:C1')\n"
           "ws.append([' Lot(number) ', 'Owner', 'Area'])\n"
           "ws.append([1001, 'Smith', 250.75])\n"
           "ws.append([1002, None, 10])\n"
           "wb.save(sys.argv[1])\n", file);
    SKIP_IF_TOOL_FAILED();

    auto layer = TsRefPtr<TsMemoryFeatureLayer>::create("parcels", TsLayer::PolygonLayer);
    layer->AddField("LOT", TsField::IntegerField);
    layer->AddField("OWNER", TsField::StringField);
    layer->AddField("AREA", TsField::DoubleField, TsString(), 2);
    const int first = layer->AddFeature({std::int32_t(1001), "old", 1.0});
    const int second = layer->AddFeature({std::int32_t(1002), "old", 1.0});
    MessageBoxCloser closer;

    EXPECT_TRUE(VyExcelUtil::assocationFromExcel(file, "lot", layer.get(), {}));

    const auto text = [&](int id, const char* field) {
        TsVariant value;
        layer->GetFeature(id)->GetValue(field, value);
        return value.ToString().toUtf8();
    };
    EXPECT_EQ(text(first, "OWNER"), "Smith");
    EXPECT_EQ(text(first, "AREA"), "250.75");
    EXPECT_EQ(text(second, "OWNER"), "");
    EXPECT_EQ(text(second, "AREA"), "10");
    EXPECT_EQ(layer->OperationsCommitted(), 1);
    EXPECT_TRUE(closer.shown().isEmpty());
}

TEST_F(ImportInterop, ReadsFormulaResultsOfARuleSheetFromLibreOffice)
{
    const QString written = path("mixed.xlsx");
    python("wb = openpyxl.Workbook()\n"
           "rules = wb.active\n"
           "rules.append(['Related layer', 'Field', 'Rule', 'Value', 'Note'])\n"
           "rules.append(['Ebene', 'Feld', 'Regel', 'Wert', 'Notiz'])\n"
           "rules.append(['roads', 'WIDTH', '>', '=1+1.5', None])\n"
           "wb.save(sys.argv[1])\n", written);
    const QString resaved = resavedByOffice(written);
    SKIP_IF_TOOL_FAILED();

    QVector<QStringList> rules;
    EXPECT_TRUE(VyExcelUtil::readAttributeCheckRuleFromExcel(resaved, rules));
    EXPECT_EQ(rules, (QVector<QStringList>{{"roads", "WIDTH", ">", "2.5", ""}}));
}

TEST_F(ImportInterop, CoordinatesTypedBelowAHeaderFromOpenpyxl)
{
    const QString file = path("coordinates.xlsx");
    python("wb = openpyxl.Workbook()\n"
           "ws = wb.active\n"
           "ws['B3'], ws['C3'], ws['D3'] = 1, 500000.5, 3400000.25\n"
           "ws['B4'], ws['C4'], ws['D4'] = 2, 500010, 3400010\n"
           "wb.save(sys.argv[1])\n", file);
    SKIP_IF_TOOL_FAILED();
    EXPECT_EQ(VyExcelUtil::readCoordinateFile2(file),
              (QStringList{"500000.5", "3400000.25", "500010", "3400010"}));
}

// A worksheet that every reader would read, behind an active chart sheet.
TEST_F(ImportInterop, AChartSheetAsActiveSheetIsNotRead)
{
    const QString file = path("chart.xlsx");
    python("from openpyxl.chart import BarChart, Reference\n"
           "wb = openpyxl.Workbook()\n"
           "ws = wb.active\n"
           "ws.append(['TableName', 'FieldsName', 'FieldsType', 'FieldsLenth', 'Precision'])\n"
           "ws.append(['K1', 'Alder', 'Integer', 10, 0])\n"
           "chart = BarChart()\n"
           "chart.add_data(Reference(ws, min_col=4, min_row=1, max_row=2))\n"
           "wb.create_chartsheet('Chart').add_chart(chart)\n"
           "wb.active = 1\n"
           "wb.save(sys.argv[1])\n", file);
    SKIP_IF_TOOL_FAILED();

    QTableWidget table(0, 4);
    QMap<QString, int> keys{{"K1", 0}, {"", 0}};
    EXPECT_TRUE(VyExcelUtil::importExcelToTableWidget(file, keys, &table));
    EXPECT_EQ(table.rowCount(), 0);
    EXPECT_TRUE(VyExcelUtil::readCoordinateFile2(file).isEmpty());
    EXPECT_TRUE(VyExcelUtil::readCoordinateFile(file).empty());
    EXPECT_TRUE(VyExcelUtil::readFieldsTemplateTableName(file).isEmpty());
    EXPECT_TRUE(VyExcelUtil::getImportTemplateTable(file).isEmpty());
    EXPECT_TRUE(VyExcelUtil::getImportTemplateTableName(file).isEmpty());
    EXPECT_TRUE(VyExcelUtil::readFieldsTemplateTableContent1("K1", file).isEmpty());

    auto layer = TsRefPtr<TsMemoryFeatureLayer>::create("parcels", TsLayer::PolygonLayer);
    layer->AddField("TABLENAME", TsField::StringField);
    MessageBoxCloser closer;
    EXPECT_FALSE(VyExcelUtil::assocationFromExcel(file, "tablename", layer.get(), {}));
    EXPECT_EQ(closer.shown().size(), 1);
    EXPECT_EQ(layer->OperationsStarted(), 0);
}

} // namespace
