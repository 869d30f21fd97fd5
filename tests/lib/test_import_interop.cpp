#include "test_import_support.h"

#include "tsmemorylayer.h"


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
           "ws.append(['Key', 'When', 'Product', 'Time'])\n"
           "ws.append(['=\"K\"&1', datetime.datetime(2023, 7, 1, 9, 45), '=6*7', 'x'])\n"
           "ws['B2'].number_format = 'dd.mm.yyyy hh:mm'\n"
           "ws.append(['K2', 'b', 'c', datetime.time(10, 30)])\n"
           "ws.append(['K3', datetime.date(2020, 2, 29), '=B4+1', None])\n"
           "ws['C4'].number_format = 'yyyy-mm-dd'\n", written);
    const QString resaved = resavedByOffice(written);
    SKIP_IF_TOOL_FAILED();
    QTableWidget table(0, 4);
    QMap<QString, int> keys{{"K1", 0}, {"K2", 0}, {"K3", 0}};
    EXPECT_TRUE(VyExcelUtil::importExcelToTableWidget(resaved, keys, &table));
    // A time of day alone is refused.
    EXPECT_EQ(importtest::shownRows(table), (importtest::Shown{{"K1", "2023/07/01 09:45", "42", "x"}, {"K2", "b", "c", "-"},
                                                              {"K3", "2020/02/29 00:00", "2020/03/01 00:00", "-"}}));
}

TEST_F(ImportInterop, JoinsAnOpenpyxlWorkbookWithATitleAndANumericKey)
{
    python("ws['A1'] = 'Parcels'\n"
           "ws.merge_cells('A1:C1')\n"
           "ws.append([' Lot(number) ', 'Owner', 'Area'])\n"
           "ws.append([1001, 'Smith', 250.75])\n"
           "ws.append([1002, None, 10])\n", path());
    SKIP_IF_TOOL_FAILED();
    auto layer = TsRefPtr<TsMemoryFeatureLayer>::create("parcels", TsLayer::PolygonLayer);
    layer->AddField("LOT", TsField::IntegerField);
    layer->AddField("OWNER", TsField::StringField);
    layer->AddField("AREA", TsField::DoubleField, TsString(), 2);
    layer->AddFeature({std::int32_t(1001), "old", 1.0});
    layer->AddFeature({std::int32_t(1002), "old", 1.0});
    MessageBoxCloser closer;
    EXPECT_TRUE(VyExcelUtil::assocationFromExcel(path(), "lot", layer.get(), {}));
    std::vector<std::string> joined;
    for (int id : {1, 2}) {
        for (const char* field : {"OWNER", "AREA"}) {
            TsVariant value;
            layer->GetFeature(id)->GetValue(field, value);
            joined.push_back(value.ToString().toUtf8());
        }
    }
    EXPECT_EQ(joined, (std::vector<std::string>{"Smith", "250.75", "", "10"}));
    EXPECT_EQ(layer->OperationsCommitted(), 1);
    EXPECT_TRUE(closer.shown().isEmpty());
}

TEST_F(ImportInterop, ReadsFormulaResultsOfARuleSheetFromLibreOffice)
{
    const QString written = path("mixed.xlsx");
    python("ws.append(['Related layer', 'Field', 'Rule', 'Value', 'Note'])\n"
           "ws.append(['Ebene', 'Feld', 'Regel', 'Wert', 'Notiz'])\n"
           "ws.append(['roads', 'WIDTH', '>', '=1+1.5', None])\n", written);
    const QString resaved = resavedByOffice(written);
    SKIP_IF_TOOL_FAILED();
    QVector<QStringList> rules;
    EXPECT_TRUE(VyExcelUtil::readAttributeCheckRuleFromExcel(resaved, rules));
    EXPECT_EQ(rules, (QVector<QStringList>{{"roads", "WIDTH", ">", "2.5", ""}}));
}

TEST_F(ImportInterop, CoordinatesTypedBelowAHeaderFromOpenpyxl)
{
    python("ws['B3'], ws['C3'], ws['D3'] = 1, 500000.5, 3400000.25\n"
           "ws['B4'], ws['C4'], ws['D4'] = 2, 500010, 3400010\n", path());
    SKIP_IF_TOOL_FAILED();
    EXPECT_EQ(VyExcelUtil::readCoordinateFile2(path()), (QStringList{"500000.5", "3400000.25", "500010", "3400010"}));
}

// A worksheet that every reader would read, behind an active chart sheet.
TEST_F(ImportInterop, AChartSheetAsActiveSheetIsNotRead)
{
    const QString file = path();
    python("from openpyxl.chart import BarChart, Reference\n"
           "ws.append(['TableName', 'FieldsName', 'FieldsType', 'FieldsLenth', 'Precision'])\n"
           "ws.append(['K1', 'Alder', 'Integer', 10, 0])\n"
           "chart = BarChart()\n"
           "chart.add_data(Reference(ws, min_col=4, min_row=1, max_row=2))\n"
           "wb.create_chartsheet('Chart').add_chart(chart)\n"
           "wb.active = 1\n", file);
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
