#include "test_export_support.h"

#include "tsmemorytable.h"

#include <QStandardItemModel>

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

// Columns Name, Count, Note; row r holds "name r", r * 10 (a number) and "note r".
std::unique_ptr<QStandardItemModel> survey(int rows)
{
    auto model = std::make_unique<QStandardItemModel>(rows, 3);
    model->setHorizontalHeaderLabels({"Name", "Count", "Note"});
    for (int r = 0; r < rows; ++r) {
        model->setData(model->index(r, 0), QStringLiteral("name %1").arg(r));
        model->setData(model->index(r, 1), r * 10);
        model->setData(model->index(r, 2), QStringLiteral("note %1").arg(r));
    }
    return model;
}

// Two million rows, made up on demand.
class TallModel : public QAbstractTableModel
{
    int rowCount(const QModelIndex&) const override { return 2000000; }
    int columnCount(const QModelIndex&) const override { return 1; }
    QVariant data(const QModelIndex& index, int) const override { return index.row(); }
};

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
    ASSERT_TRUE(VyExcelUtil::export2Excel(path(), noFields));
    EXPECT_EQ(SavedSheet(path()).extent(), "A1");
    EXPECT_EQ(SavedSheet(path()).text(1, 1), "Bare_attribute table");
}

// The export gives back the reference it is handed on every path: the count is read as
// soon as it returns, before the argument of the call is destroyed.
TEST_F(TableExport, RefusesWhatItCannotExportWithoutTouchingFilesOrKeepingAReference)
{
    const QString kept = existingFile();
    const auto table = landUse();
    const auto schemaless = landUse();
    schemaless->SetFieldsAvailable(false);
    const auto cursorless = TsRefPtr<CursorlessTable>::create();
    EXPECT_FALSE(VyExcelUtil::export2Excel(QString(), TsRefPtr<TsTable>(table)) || table->RefCount() != 1);
    EXPECT_FALSE(VyExcelUtil::export2Excel(kept, TsRefPtr<TsTable>()));
    EXPECT_FALSE(VyExcelUtil::export2Excel(kept, TsRefPtr<TsTable>(cursorless)) || cursorless->RefCount() != 1);
    EXPECT_FALSE(VyExcelUtil::export2Excel(kept, schemaless));
    EXPECT_TRUE(keptIntact(kept));
    EXPECT_TRUE(VyExcelUtil::export2Excel(path(), TsRefPtr<TsTable>(table)) && table->RefCount() == 1);
}

using ItemModelExport = ExportTest;

TEST_F(ItemModelExport, WritesStyledTitleHeaderAndRowsKeepingValueTypes)
{
    const auto model = survey(2);
    model->setData(model->index(0, 2), QVariant());
    ASSERT_TRUE(VyExcelUtil::export2Excel("Survey", path(), model.get(), {}));
    SavedSheet sheet(path());
    expectTitledTable(sheet, "Survey", {"Name", "Count", "Note"});
    EXPECT_EQ(sheet.rowTexts(4, 3), QStringList({"name 1", "10", "note 1"}));
    EXPECT_EQ(sheet.value(4, 2).userType(), QMetaType::Double);
    expectStyled(sheet.format(4, 2), false);
    // An empty value is a blank cell that keeps the style.
    EXPECT_TRUE(sheet.hasCell(3, 3) && sheet.value(3, 3).isNull());
    expectStyled(sheet.format(3, 3), false);
    EXPECT_EQ(sheet.extent(), "A1:C4");
    EXPECT_EQ(expectOpenpyxlReadsAsTheEngine(path()), 10);
}

TEST_F(ItemModelExport, PacksColumnsLeftAndSpansTheTitleOverColumnsLessExclusions)
{
    const auto model = survey(1);
    // An index the model lacks excludes nothing, yet still narrows the title.
    const struct { QSet<int> excluded; int row; QStringList texts; const char* merge; } cases[] = {
        {{1}, 3, {"name 0", "note 0", ""}, "A1:B1"}, {{7}, 2, {"Name", "Count", "Note"}, "A1:B1"}};
    for (const auto& c : cases) {
        ASSERT_TRUE(VyExcelUtil::export2Excel("T", path(), model.get(), c.excluded));
        EXPECT_EQ(SavedSheet(path()).merges(), QStringList{c.merge});
        EXPECT_EQ(SavedSheet(path()).rowTexts(c.row, 3), c.texts);
    }
    ASSERT_TRUE(VyExcelUtil::export2Excel("T", path(), model.get(), {0, 1, 2}));
    EXPECT_EQ(SavedSheet(path()).extent(), "A1");
}

TEST_F(ItemModelExport, RefusesWhatItCannotExportWithoutTouchingFiles)
{
    const auto model = survey(1);
    const QString kept = existingFile();
    QStandardItemModel noRows(0, 3), noColumns(4, 0);
    TallModel tall;
    EXPECT_FALSE(VyExcelUtil::export2Excel("T", QString(), model.get(), {}));
    for (QAbstractItemModel* refused : std::initializer_list<QAbstractItemModel*>{nullptr, &noRows, &noColumns, &tall})
        EXPECT_FALSE(VyExcelUtil::export2Excel("T", kept, refused, {}));
    EXPECT_TRUE(keptIntact(kept));
}

} // namespace
