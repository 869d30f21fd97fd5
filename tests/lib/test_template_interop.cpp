#include "test_template_fixtures.h"

namespace {

// Templates as other programs save them.
using TemplateInterop = TemplateFiles;

TEST_F(TemplateInterop, ReadsTheActiveSheetOfAnOpenpyxlTemplate)
{
    const QString file = path();
    python("from openpyxl.styles import Font\n"
           "ws['A1'] = 'TableName'\n" // a first sheet that is not the active one
           "ws = wb.create_sheet('Fields')\n"
           "ws.append(['TableName', 'FieldsName', 'FieldsType', 'FieldsLenth', 'Precision'])\n"
           "ws.append(['roads', 'id', 'Integer', 10, 0])\n"
           "ws.append(['roads', 'width', 'Double', 8.5, 2])\n"
           "ws.append([None, 'n4', 't4', 'l4', 'p4'])\n"
           "ws['A4'].font = Font(bold=True)\n" // stored, but without a value
           "ws.append(['rivers', 'name', 'Text', 50, 0])\n"
           "wb.active = 1\n", file);
    SKIP_IF_TOOL_FAILED();
    EXPECT_EQ(VyExcelUtil::readFieldsTemplateTableName(file), (QStringList{"roads", "roads", "", "rivers"}));
    EXPECT_EQ(VyExcelUtil::getImportTemplateTableName(file), (QStringList{"roads", "", "rivers"}));
    EXPECT_EQ(VyExcelUtil::readFieldsTemplateTableContent1("roads", file),
              (QStringList{"roads", "id", "Integer", "10", "0", "roads", "width", "Double", "8.5", "2"}));
    EXPECT_EQ(VyExcelUtil::readFieldsTemplateTableContent("", file), (QStringList{"n4", "t4", "l4", "p4"}));
}

TEST_F(TemplateInterop, ReadsATemplateLibreOfficeConvertedFromCsv)
{
    const QString file = resavedByOffice(fileWith("TableName,FieldsName,FieldsType,FieldsLenth,Precision\n"
                                                  "roads,id,Integer,10,0\nroads,width,Double,8.5,2\n"
                                                  "rivers,name,Text,50,0\n", "fields.csv"));
    SKIP_IF_TOOL_FAILED();
    EXPECT_EQ(VyExcelUtil::getImportTemplateTableName(file), (QStringList{"roads", "rivers"}));
    EXPECT_EQ(VyExcelUtil::getImportTemplateTable(file),
              (QStringList{"roads", "id", "Integer", "10", "0", "roads", "width", "Double", "8.5", "2",
                           "rivers", "name", "Text", "50", "0"}));
}

} // namespace
