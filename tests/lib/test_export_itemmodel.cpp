#include "test_export_support.h"

#include "vygisutil.h"

#include <QStandardItemModel>

namespace {

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
    ASSERT_TRUE(VyExcelUtil::export2Excel("T", path("a.xlsx"), model.get(), {1}));
    SavedSheet packed(path("a.xlsx"));
    EXPECT_EQ(packed.merges(), QStringList{"A1:B1"});
    EXPECT_EQ(packed.rowTexts(3, 3), QStringList({"name 0", "note 0", ""}));

    // An index the model lacks excludes nothing, yet still narrows the title.
    ASSERT_TRUE(VyExcelUtil::export2Excel("T", path("b.xlsx"), model.get(), {7}));
    SavedSheet stray(path("b.xlsx"));
    EXPECT_EQ(stray.merges(), QStringList{"A1:B1"});
    EXPECT_EQ(stray.rowTexts(2, 3), QStringList({"Name", "Count", "Note"}));

    ASSERT_TRUE(VyExcelUtil::export2Excel("T", path("c.xlsx"), model.get(), {0, 1, 2}));
    EXPECT_EQ(SavedSheet(path("c.xlsx")).extent(), "A1");
}

TEST_F(ItemModelExport, RefusesWhatItCannotExportWithoutTouchingFiles)
{
    const auto model = survey(1);
    const QString kept = existingFile();
    QStandardItemModel noRows(0, 3), noColumns(4, 0);
    TallModel tall;

    EXPECT_FALSE(VyExcelUtil::export2Excel("T", QString(), model.get(), {}));
    EXPECT_FALSE(VyExcelUtil::export2Excel("T", kept, nullptr, {}));
    EXPECT_FALSE(VyExcelUtil::export2Excel("T", kept, &noRows, {}));
    EXPECT_FALSE(VyExcelUtil::export2Excel("T", kept, &noColumns, {}));
    EXPECT_FALSE(VyExcelUtil::export2Excel("T", kept, &tall, {}));
    EXPECT_TRUE(keptIntact(kept));
}

} // namespace
