#include "hosttesting.h"

#include "tsmemorytable.h"

using namespace VyObjects;

namespace {

class MemoryTableTest : public ReferenceBalanceTest
{
protected:
    MemoryTableTest()
    {
        table->AddField("CODE", TsField::IntegerField);
        table->AddField("LABEL", TsField::StringField);
        table->AddRow({std::int32_t{1}, "road"});
        table->AddRow({std::int32_t{2}, "river"});
        table->AddRow({std::int32_t{3}});
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

    const TsRefPtr<TsMemoryTable> table = TsRefPtr<TsMemoryTable>::create("codes");
};

} // namespace

TEST_F(MemoryTableTest, CursorHandsOutTheRowsItsFilterAdmitsInOrderThenNullAndRowsReadByIndex)
{
    EXPECT_EQ(labels(TsQueryFilter()), (std::vector<TsString>{"road", "river", ""}));
    EXPECT_EQ(labels(TsQueryFilter("CODE >= 2")), (std::vector<TsString>{"river", ""}));
    EXPECT_TRUE(table->GetRowCursor(TsQueryFilter("LABEL LIKE 'r%'")).isNull()) << "an unreadable filter";
    // Rows read by index within the fields only.
    const TsRefPtr<TsRow> row = table->GetRowCursor(TsQueryFilter())->NextRow();
    TsVariant value;
    EXPECT_TRUE(row->GetValue(0, value) && value == TsVariant(std::int32_t{1}));
    EXPECT_FALSE(row->GetValue(2, value) || row->GetValue(-1, value));
}
