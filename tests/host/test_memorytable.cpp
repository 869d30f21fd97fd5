#include "hosttesting.h"

#include "tsmemorytable.h"

using namespace VyObjects;

namespace {

class MemoryTableTest : public ReferenceBalanceTest
{
protected:
    void SetUp() override
    {
        ReferenceBalanceTest::SetUp();
        table = TsRefPtr<TsMemoryTable>::create("codes");
        table->AddField("CODE", TsField::IntegerField);
        table->AddField("LABEL", TsField::StringField);
        table->AddRow({std::int32_t{1}, "road"});
        table->AddRow({std::int32_t{2}, "river"});
        table->AddRow({std::int32_t{3}});
    }

    void TearDown() override
    {
        table.reset();
        ReferenceBalanceTest::TearDown();
    }

    std::vector<TsString> labels(const TsQueryFilter& filter)
    {
        std::vector<TsString> texts;
        const TsRefPtr<TsRowCursor> cursor = table->GetRowCursor(filter);
        while (const TsRefPtr<TsRow> row = cursor->NextRow()) {
            TsVariant value;
            row->GetValue(1, value);
            texts.push_back(value.ToString());
        }
        return texts;
    }

    TsRefPtr<TsMemoryTable> table;
};

} // namespace

TEST_F(MemoryTableTest, CursorHandsOutRowsInOrderThenNull)
{
    EXPECT_EQ(labels(TsQueryFilter()), (std::vector<TsString>{"road", "river", ""}));
}

TEST_F(MemoryTableTest, FilterSelectsRows)
{
    EXPECT_EQ(labels(TsQueryFilter("CODE >= 2")), (std::vector<TsString>{"river", ""}));
}

TEST_F(MemoryTableTest, UnreadableFilterGivesNoCursor)
{
    EXPECT_TRUE(table->GetRowCursor(TsQueryFilter("LABEL LIKE 'r%'")).isNull());
}

TEST_F(MemoryTableTest, RowsReadByIndexWithinTheFieldsOnly)
{
    const TsRefPtr<TsRow> row = table->GetRowCursor(TsQueryFilter())->NextRow();
    TsVariant value;
    EXPECT_TRUE(row->GetValue(0, value));
    EXPECT_EQ(value, TsVariant(std::int32_t{1}));
    EXPECT_FALSE(row->GetValue(2, value));
    EXPECT_FALSE(row->GetValue(-1, value));
}

TEST_F(MemoryTableTest, NameAndFieldsDescribeTheTable)
{
    EXPECT_EQ(table->GetTableName(), TsString("codes"));
    EXPECT_EQ(table->GetFields()->GetFieldCount(), 2);
    EXPECT_EQ(table->RowCount(), 3);
    table->SetFieldsAvailable(false);
    EXPECT_TRUE(table->GetFields().isNull());
}
