#include "test_export_support.h"

#include "vygisutil.h"

#include "tsmemorytable.h"

using namespace VyObjects;

namespace {

// Fields CODE, LABEL (alias "Label", which the export does not use) and VALUE (double).
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
public:
    TsString GetTableName() const override { return "Broken"; }
    TsRefPtr<TsFields> GetFields() const override { return TsRefPtr<TsFields>::create(); }
    TsRefPtr<TsRowCursor> GetRowCursor(const TsQueryFilter&) override { return nullptr; }
};

using TableExport = ExportTest;

TEST_F(TableExport, WritesStyledTitleHeaderAndEveryRow)
{
    ASSERT_TRUE(VyExcelUtil::export2Excel(path(), landUse()));

    SavedSheet sheet(path());
    EXPECT_EQ(sheet.text(1, 1), "LandUse_attribute table");
    expectCentredCell(sheet.format(1, 1));
    EXPECT_EQ(sheet.merges(), QStringList{"A1:C1"});
    EXPECT_DOUBLE_EQ(sheet.rowHeight(1), 30.0);
    EXPECT_EQ(sheet.rowTexts(2, 3), QStringList({"CODE", "LABEL", "VALUE"}));
    expectGreyHeaderCell(sheet.format(2, 3));
    EXPECT_EQ(sheet.rowTexts(4, 3), QStringList({"12", "Meadow", "1234.5"}));
    expectCentredCell(sheet.format(3, 1));
    EXPECT_EQ(sheet.extent().toString(), "A1:C4");
}

TEST_F(TableExport, WritesNumbersAsTheirOwnUnroundedText)
{
    ASSERT_TRUE(VyExcelUtil::export2Excel(path(), landUse()));
    EXPECT_EQ(SavedSheet(path()).value(3, 3), QVariant(QStringLiteral("0.30000000000000004")));
}

TEST_F(TableExport, TableWithoutRowsOrFieldsIsStillSaved)
{
    auto noRows = TsRefPtr<TsMemoryTable>::create("Empty");
    noRows->AddField("CODE", TsField::IntegerField);
    ASSERT_TRUE(VyExcelUtil::export2Excel(path("norows.xlsx"), noRows));
    EXPECT_EQ(SavedSheet(path("norows.xlsx")).extent().toString(), "A1:A2");

    auto noFields = TsRefPtr<TsMemoryTable>::create("Bare");
    noFields->AddRow({});
    ASSERT_TRUE(VyExcelUtil::export2Excel(path("nofields.xlsx"), noFields));
    SavedSheet sheet(path("nofields.xlsx"));
    EXPECT_EQ(sheet.extent().toString(), "A1");
    EXPECT_EQ(sheet.text(1, 1), "Bare_attribute table");
    EXPECT_TRUE(sheet.merges().isEmpty());
}

TEST_F(TableExport, RejectsBadInputWithoutTouchingFiles)
{
    const QString kept = existingFile();
    const auto schemaless = landUse();
    schemaless->SetFieldsAvailable(false);

    EXPECT_FALSE(VyExcelUtil::export2Excel(QString(), landUse()));
    EXPECT_FALSE(VyExcelUtil::export2Excel(kept, TsRefPtr<TsTable>()));
    EXPECT_FALSE(VyExcelUtil::export2Excel(kept, TsRefPtr<TsTable>(new CursorlessTable)));
    EXPECT_FALSE(VyExcelUtil::export2Excel(kept, schemaless));
    EXPECT_EQ(contentOf(kept), "earlier content");
}

// The count of table's references right after an export handed its own reference
// returns, before the argument of the call is destroyed: the export must have given
// that reference back itself.
template <class Table>
int referencesRightAfterExport(const QString& path, const TsRefPtr<Table>& table)
{
    return (static_cast<void>(VyExcelUtil::export2Excel(path, TsRefPtr<TsTable>(table))),
            table->RefCount());
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
