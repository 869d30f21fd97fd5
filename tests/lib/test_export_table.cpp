#include "test_export_support.h"

#include "vygisutil.h"

#include "tsmemorytable.h"

using namespace VyObjects;

namespace {

// Fields CODE, LABEL and VALUE (double); two rows.
TsRefPtr<TsMemoryTable> landUse()
{
    auto table = TsRefPtr<TsMemoryTable>::create("LandUse");
    table->AddField("CODE", TsField::IntegerField);
    table->AddField("LABEL", TsField::StringField, "Label");
    table->AddField("VALUE", TsField::DoubleField);
    table->AddRow({std::int32_t(11), "Forest", 0.1 + 0.2});
    table->AddRow({std::int32_t(12), "Meadow", 1234.5});
    return table;
}

// A table whose provider cannot open a row cursor.
class CursorlessTable : public TsTable
{
    TsString GetTableName() const override { return "Broken"; }
    TsRefPtr<TsFields> GetFields() const override { return TsRefPtr<TsFields>::create(); }
    TsRefPtr<TsRowCursor> GetRowCursor(const TsQueryFilter&) override { return nullptr; }
};

// table's reference count as soon as an export handed a reference of its own returns,
// before the argument of the call is destroyed: the export must give it back itself.
template <class Table>
int referencesRightAfterExport(const QString& path, const TsRefPtr<Table>& table)
{
    return (static_cast<void>(VyExcelUtil::export2Excel(path, TsRefPtr<TsTable>(table))),
            table->RefCount());
}

using TableExport = ExportTest;

TEST_F(TableExport, WritesStyledTitleHeaderAndRowsAsTheirOwnText)
{
    ASSERT_TRUE(VyExcelUtil::export2Excel(path(), landUse()));

    SavedSheet sheet(path());
    expectTitledTable(sheet, "LandUse_attribute table", {"CODE", "LABEL", "VALUE"});
    // Unlike the layer exports, numbers are not rounded.
    EXPECT_EQ(sheet.rowTexts(3, 3), QStringList({"11", "Forest", "0.30000000000000004"}));
    EXPECT_EQ(sheet.value(4, 1), QVariant(QStringLiteral("12")));
    expectStyled(sheet.format(4, 1), false);
    EXPECT_EQ(sheet.extent(), "A1:C4");
    EXPECT_EQ(expectOpenpyxlReadsAsTheEngine(path()), 10);
}

TEST_F(TableExport, TableWithoutRowsOrFieldsIsStillSaved)
{
    auto noRows = TsRefPtr<TsMemoryTable>::create("Empty");
    noRows->AddField("CODE", TsField::IntegerField);
    ASSERT_TRUE(VyExcelUtil::export2Excel(path("norows.xlsx"), noRows));
    EXPECT_EQ(SavedSheet(path("norows.xlsx")).extent(), "A1:A2");

    auto noFields = TsRefPtr<TsMemoryTable>::create("Bare");
    noFields->AddRow({});
    ASSERT_TRUE(VyExcelUtil::export2Excel(path("nofields.xlsx"), noFields));
    SavedSheet sheet(path("nofields.xlsx"));
    EXPECT_EQ(sheet.extent(), "A1");
    EXPECT_EQ(sheet.text(1, 1), "Bare_attribute table");
}

TEST_F(TableExport, RefusesWhatItCannotExportWithoutTouchingFiles)
{
    const QString kept = existingFile();
    const auto schemaless = landUse();
    schemaless->SetFieldsAvailable(false);

    EXPECT_FALSE(VyExcelUtil::export2Excel(QString(), landUse()));
    EXPECT_FALSE(VyExcelUtil::export2Excel(kept, TsRefPtr<TsTable>()));
    EXPECT_FALSE(VyExcelUtil::export2Excel(kept, TsRefPtr<TsTable>(new CursorlessTable)));
    EXPECT_FALSE(VyExcelUtil::export2Excel(kept, schemaless));
    EXPECT_TRUE(keptIntact(kept));
}

TEST_F(TableExport, GivesBackTheReferenceItIsHandedOnEveryPath)
{
    const auto table = landUse();
    const auto cursorless = TsRefPtr<CursorlessTable>::create();
    EXPECT_EQ(referencesRightAfterExport(QString(), table), 1);
    EXPECT_EQ(referencesRightAfterExport(path(), table), 1);
    EXPECT_EQ(referencesRightAfterExport(path(), cursorless), 1);
}

} // namespace
