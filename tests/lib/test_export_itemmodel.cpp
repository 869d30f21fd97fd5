#include "test_export_support.h"

#include "vygisutil.h"

#include <QAbstractTableModel>
#include <QStandardItemModel>

namespace {

// Columns "Name", "Count", "Note"; row r holds "name r", r * 10 (a number) and "note r".
std::unique_ptr<QStandardItemModel> threeColumnModel(int rows)
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

// Two million rows of one column, computed on demand.
class TallModel : public QAbstractTableModel
{
public:
    int rowCount(const QModelIndex& = QModelIndex()) const override { return 2000000; }
    int columnCount(const QModelIndex& = QModelIndex()) const override { return 1; }
    QVariant data(const QModelIndex& index, int) const override { return index.row(); }
};

using ItemModelExport = ExportTest;

TEST_F(ItemModelExport, WritesStyledTitleHeaderAndRowsKeepingValueTypes)
{
    const auto model = threeColumnModel(2);
    ASSERT_TRUE(VyExcelUtil::export2Excel("Survey", path(), model.get(), {}));

    SavedSheet sheet(path());
    EXPECT_EQ(sheet.text(1, 1), "Survey");
    expectCentredCell(sheet.format(1, 1));
    EXPECT_EQ(sheet.merges(), QStringList{"A1:C1"});
    EXPECT_DOUBLE_EQ(sheet.rowHeight(1), 30.0);
    EXPECT_EQ(sheet.rowTexts(2, 3), QStringList({"Name", "Count", "Note"}));
    for (int column = 1; column <= 3; ++column)
        expectGreyHeaderCell(sheet.format(2, column));
    EXPECT_EQ(sheet.rowTexts(4, 3), QStringList({"name 1", "10", "note 1"}));
    EXPECT_EQ(sheet.value(4, 2).userType(), QMetaType::Double);
    expectCentredCell(sheet.format(3, 1));
    EXPECT_EQ(sheet.extent().toString(), "A1:C4");
}

TEST_F(ItemModelExport, PacksColumnsLeftAfterExclusion)
{
    const auto model = threeColumnModel(1);
    ASSERT_TRUE(VyExcelUtil::export2Excel("T", path(), model.get(), {1}));

    SavedSheet sheet(path());
    EXPECT_EQ(sheet.merges(), QStringList{"A1:B1"});
    EXPECT_EQ(sheet.rowTexts(2, 2), QStringList({"Name", "Note"}));
    EXPECT_EQ(sheet.rowTexts(3, 2), QStringList({"name 0", "note 0"}));
    EXPECT_EQ(sheet.extent().lastColumn(), 2);
}

TEST_F(ItemModelExport, IndexOutsideTheModelExcludesNothingButNarrowsTheTitle)
{
    const auto model = threeColumnModel(1);
    ASSERT_TRUE(VyExcelUtil::export2Excel("T", path(), model.get(), {7}));

    SavedSheet sheet(path());
    EXPECT_EQ(sheet.rowTexts(2, 3), QStringList({"Name", "Count", "Note"}));
    EXPECT_EQ(sheet.merges(), QStringList{"A1:B1"});
}

TEST_F(ItemModelExport, SingleColumnTitleIsNotMergedButStillStyled)
{
    const auto model = threeColumnModel(1);
    ASSERT_TRUE(VyExcelUtil::export2Excel("T", path(), model.get(), {0, 1}));

    SavedSheet sheet(path());
    EXPECT_TRUE(sheet.merges().isEmpty());
    EXPECT_DOUBLE_EQ(sheet.rowHeight(1), 30.0);
    expectCentredCell(sheet.format(1, 1));
    EXPECT_EQ(sheet.text(2, 1), "Note");
}

TEST_F(ItemModelExport, EmptyValueIsAFormattedBlankCell)
{
    const auto model = threeColumnModel(1);
    model->setData(model->index(0, 1), QVariant());
    ASSERT_TRUE(VyExcelUtil::export2Excel("T", path(), model.get(), {}));

    SavedSheet sheet(path());
    ASSERT_TRUE(sheet.hasCell(3, 2));
    EXPECT_TRUE(sheet.value(3, 2).isNull());
    expectCentredCell(sheet.format(3, 2));
}

TEST_F(ItemModelExport, ExcludingEveryColumnSavesTheTitleAlone)
{
    const auto model = threeColumnModel(2);
    ASSERT_TRUE(VyExcelUtil::export2Excel("Only", path(), model.get(), {0, 1, 2}));
    EXPECT_EQ(SavedSheet(path()).extent().toString(), "A1");
}

TEST_F(ItemModelExport, RejectsMissingPathModelRowsOrColumnsWithoutTouchingFiles)
{
    const auto model = threeColumnModel(1);
    const QString kept = existingFile();
    QStandardItemModel noRows(0, 3), noColumns(4, 0);

    EXPECT_FALSE(VyExcelUtil::export2Excel("T", QString(), model.get(), {}));
    EXPECT_FALSE(VyExcelUtil::export2Excel("T", kept, nullptr, {}));
    EXPECT_FALSE(VyExcelUtil::export2Excel("T", kept, &noRows, {}));
    EXPECT_FALSE(VyExcelUtil::export2Excel("T", kept, &noColumns, {}));
    EXPECT_EQ(contentOf(kept), "earlier content");
}

TEST_F(ItemModelExport, RefusesAModelTallerThanASheetWithoutTouchingFiles)
{
    TallModel model;
    const QString kept = existingFile();
    EXPECT_FALSE(VyExcelUtil::export2Excel("T", kept, &model, {}));
    EXPECT_EQ(contentOf(kept), "earlier content");
}

} // namespace
