#include "test_template_fixtures.h"

#include <functional>

namespace {

using TableNames = TemplateFiles;
using FieldContent = TemplateFiles;
using ImportTemplate = TemplateFiles;

TEST_F(TableNames, GivesColumnAFromRow2InRowOrderBelowExactlyTableNameInA1)
{
    const QString names = save({{"TableName"}, {"roads"}, {Unstored}, {"roads"}, {Unstored, "B5"}});
    EXPECT_EQ(VyExcelUtil::readFieldsTemplateTableName(names), (QStringList{"roads", "", "roads", ""}));
    // A field template gives one name per field row; the other columns, even a sixth, are not read.
    const QString fields = saveTemplate({field("a", "id") << "extra", field("a", "x"), field("b", "y")});
    EXPECT_EQ(VyExcelUtil::readFieldsTemplateTableName(fields), (QStringList{"a", "a", "b"}));
    // Only with exactly "TableName" in A1 and a row below.
    for (const char* a1 : {"tablename", " TableName", "Table Name", "TableName "})
        EXPECT_TRUE(VyExcelUtil::readFieldsTemplateTableName(save({{a1}, {"roads"}})).isEmpty()) << a1;
    EXPECT_TRUE(VyExcelUtil::readFieldsTemplateTableName(save({{Unstored, "TableName"}, {"roads"}})).isEmpty());
    EXPECT_TRUE(VyExcelUtil::readFieldsTemplateTableName(save({{"TableName"}})).isEmpty());
    EXPECT_TRUE(VyExcelUtil::readFieldsTemplateTableName(path("missing.xlsx")).isEmpty());
    EXPECT_FALSE(QFile::exists(path("missing.xlsx")));
}

TEST_F(FieldContent, GivesEveryRowOfOneTableWithAndWithoutItsName)
{
    const QString file = saveTemplate({field("a", "1"), field("a", "2"), field("b", "3"),
                                       field("b", "4"), field("a", "5")});
    EXPECT_EQ(VyExcelUtil::readFieldsTemplateTableContent1("b", file), concat({field("b", "3"), field("b", "4")}));
    EXPECT_EQ(VyExcelUtil::readFieldsTemplateTableContent("b", file),
              concat({field("b", "3").mid(1), field("b", "4").mid(1)}));
    EXPECT_EQ(VyExcelUtil::readFieldsTemplateTableContent1("a", file),
              concat({field("a", "1"), field("a", "2"), field("a", "5")}));
    for (const char* name : {"A", "a ", " a"})
        EXPECT_TRUE(VyExcelUtil::readFieldsTemplateTableContent1(name, file).isEmpty()) << name;
    // An empty name selects the rows without a name, and groups keep their size.
    const QString unnamed = saveTemplate({{Unstored, "n1", "t1", Unstored, "p1"}, field("a", "2"),
                                          {"", "n3", "t3", "l3", Unstored}});
    EXPECT_EQ(VyExcelUtil::readFieldsTemplateTableContent1("", unnamed),
              (QStringList{"", "n1", "t1", "", "p1", "", "n3", "t3", "l3", ""}));
    EXPECT_EQ(VyExcelUtil::readFieldsTemplateTableContent("", unnamed),
              (QStringList{"n1", "t1", "", "p1", "n3", "t3", "l3", ""}));
}

TEST_F(ImportTemplate, ListsOneNamePerRunAndEveryRow)
{
    // A leading empty name equals the name before any row; one after a named run counts.
    const std::vector<QStringList> rows{field("", "1"), field("A", "2"), field("A", "3"), field("B", "4"),
                                        field("b", "5"), field("", "6"), field("A", "7")};
    const QString file = saveTemplate(rows);
    EXPECT_EQ(VyExcelUtil::getImportTemplateTableName(file), (QStringList{"A", "B", "b", "", "A"}));
    EXPECT_EQ(VyExcelUtil::getImportTemplateTable(file), concat(rows));
}

TEST_F(ImportTemplate, NamesStopAtTheFirstRowWithoutANameCellButRowsGoOn)
{
    std::vector<QStringList> rows{field("A", "2"), field("B", "3"), field("B", "4"),
                                  {Unstored, "n5", "t5", "l5", "p5"}, {}, field("C", "7")};
    const QString file = saveTemplate(rows);
    EXPECT_EQ(VyExcelUtil::getImportTemplateTableName(file), (QStringList{"A", "B"}));
    rows[3][0] = "";
    rows[4] = QStringList{"", "", "", "", ""};
    EXPECT_EQ(VyExcelUtil::getImportTemplateTable(file), concat(rows));
}

// The header check shared by the four readers of field rows.
TEST_F(ImportTemplate, EveryCheckedReaderRefusesASheetThatIsNoTemplate)
{
    const std::vector<std::function<QStringList(const QString&)>> readers{
        [](const QString& f) { return VyExcelUtil::getImportTemplateTable(f); },
        [](const QString& f) { return VyExcelUtil::getImportTemplateTableName(f); },
        [](const QString& f) { return VyExcelUtil::readFieldsTemplateTableContent("a", f); },
        [](const QString& f) { return VyExcelUtil::readFieldsTemplateTableContent1("a", f); }};
    QStringList misspelt = header();
    misspelt[3] = "FieldsLength";
    const std::vector<QString> files{
        saveTemplate({field("a", "1") << StoredBlank}),   // a stored cell without a value widens the sheet
        fileWith("TableName,FieldsName,FieldsType,FieldsLenth,Precision\na,1,t,l,p\n"),
        saveTemplate({}),                                   // header only
        save({misspelt, field("a", "1")}),
        save({header().mid(0, 4), field("a", "1").mid(0, 4)}), // four columns
        saveTemplate({field("a", "1") << "sixth"}),
        save({{"TableName", "FieldsName", "FieldsType", Unstored, "Precision"}, field("a", "1")}),
        path("missing.xlsx")};
    for (size_t f = 0; f < files.size(); ++f) {
        for (const auto& read : readers)
            EXPECT_TRUE(read(files[f]).isEmpty()) << "file " << f;
    }
    EXPECT_FALSE(QFile::exists(path("missing.xlsx")));
}

} // namespace
