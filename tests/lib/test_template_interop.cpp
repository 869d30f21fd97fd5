#include "test_template_fixtures.h"

#include "vygisutil.h"

#include <QProcess>

#include <functional>

namespace {

// Templates as other programs save them, and ours as another program reads it.
class TemplateInterop : public TemplateFiles
{
protected:
    // Runs program with arguments; the test is skipped where the program is missing.
    QString run(const QString& program, const QStringList& arguments)
    {
        if (program.isEmpty()) {
            m_skip = QStringLiteral("no such program here");
            return {};
        }
        QProcess process;
        process.start(program, arguments);
        if (!process.waitForFinished(180000) || process.exitCode() != 0) {
            m_skip = program + ": " + QString::fromLocal8Bit(process.readAllStandardError());
            return {};
        }
        return QString::fromUtf8(process.readAllStandardOutput()).trimmed();
    }
    QString python(const QString& script, const QString& file)
    {
        return run(QStringLiteral(VYGIS_PYTHON3), {"-c", "import sys, openpyxl\n" + script, file});
    }
    QString m_skip;
};

#define SKIP_IF_TOOL_FAILED() \
    if (!m_skip.isEmpty()) GTEST_SKIP() << m_skip.toStdString()

TEST_F(TemplateInterop, ReadsTheActiveSheetOfAnOpenpyxlTemplate)
{
    const QString file = path("openpyxl.xlsx");
    python("from openpyxl.styles import Font\n"
           "wb = openpyxl.Workbook()\n"
           "wb.active['A1'] = 'TableName'\n" // a first sheet that is not the active one
           "ws = wb.create_sheet('Fields')\n"
           "ws.append(['TableName', 'FieldsName', 'FieldsType', 'FieldsLenth', 'Precision'])\n"
           "ws.append(['roads', 'id', 'Integer', 10, 0])\n"
           "ws.append(['roads', 'width', 'Double', 8.5, 2])\n"
           "ws.append([None, 'n4', 't4', 'l4', 'p4'])\n"
           "ws['A4'].font = Font(bold=True)\n" // stored, but without a value
           "ws.append(['rivers', 'name', 'Text', 50, 0])\n"
           "wb.active = 1\n"
           "wb.save(sys.argv[1])\n", file);
    SKIP_IF_TOOL_FAILED();
    EXPECT_EQ(VyExcelUtil::readFieldsTemplateTableName(file), (QStringList{"roads", "roads", "", "rivers"}));
    EXPECT_EQ(VyExcelUtil::getImportTemplateTableName(file), (QStringList{"roads", "", "rivers"}));
    EXPECT_EQ(VyExcelUtil::readFieldsTemplateTableContent1("roads", file),
              (QStringList{"roads", "id", "Integer", "10", "0", "roads", "width", "Double", "8.5", "2"}));
    EXPECT_EQ(VyExcelUtil::readFieldsTemplateTableContent("", file), (QStringList{"n4", "t4", "l4", "p4"}));
}

TEST_F(TemplateInterop, AChartSheetAsActiveSheetHoldsNoTemplate)
{
    const QString file = path("chart.xlsx");
    python("from openpyxl.chart import BarChart, Reference\n"
           "wb = openpyxl.Workbook()\n"
           "ws = wb.active\n"
           "ws.append(['TableName', 'FieldsName', 'FieldsType', 'FieldsLenth', 'Precision'])\n"
           "ws.append(['roads', 'id', 'Integer', 10, 0])\n"
           "chart = BarChart()\n"
           "chart.add_data(Reference(ws, min_col=4, min_row=1, max_row=2), titles_from_data=True)\n"
           "wb.create_chartsheet('Chart').add_chart(chart)\n"
           "wb.active = 1\n"
           "wb.save(sys.argv[1])\n", file);
    SKIP_IF_TOOL_FAILED();
    EXPECT_TRUE(VyExcelUtil::readFieldsTemplateTableName(file).isEmpty());
    EXPECT_TRUE(VyExcelUtil::getImportTemplateTable(file).isEmpty());
    EXPECT_TRUE(VyExcelUtil::getImportTemplateTableName(file).isEmpty());
    EXPECT_TRUE(VyExcelUtil::readFieldsTemplateTableContent1("roads", file).isEmpty());
}

TEST_F(TemplateInterop, ReadsATemplateLibreOfficeConvertedFromCsv)
{
    QFile csv(path("fields.csv"));
    ASSERT_TRUE(csv.open(QIODevice::WriteOnly));
    csv.write("TableName,FieldsName,FieldsType,FieldsLenth,Precision\n"
              "roads,id,Integer,10,0\nroads,width,Double,8.5,2\nrivers,name,Text,50,0\n");
    csv.close();
    run(QStringLiteral(VYGIS_SOFFICE),
        {"-env:UserInstallation=file://" + path("profile"), "--headless", "--convert-to", "xlsx",
         "--outdir", m_dir.path(), csv.fileName()});
    SKIP_IF_TOOL_FAILED();
    const QString file = path("fields.xlsx");
    EXPECT_EQ(VyExcelUtil::getImportTemplateTableName(file), (QStringList{"roads", "rivers"}));
    EXPECT_EQ(VyExcelUtil::getImportTemplateTable(file),
              (QStringList{"roads", "id", "Integer", "10", "0", "roads", "width", "Double", "8.5", "2",
                           "rivers", "name", "Text", "50", "0"}));
}

} // namespace
