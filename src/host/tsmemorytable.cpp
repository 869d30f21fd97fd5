#include "tsmemorytable.h"

#include "tsmemoryrecords_p.h"

namespace VyObjects {

TsMemoryTable::TsMemoryTable(const TsString& name)
    : m_name(name), m_records(std::make_shared<TsMemoryRecords>())
{
}

TsMemoryTable::~TsMemoryTable() = default;

TsRefPtr<TsField> TsMemoryTable::AddField(const TsString& name, TsField::FieldType type,
                                          const TsString& aliasName, unsigned precision)
{
    return m_records->AddField(name, type, aliasName, precision);
}

int TsMemoryTable::AddRow(const std::vector<TsVariant>& values)
{
    return m_records->AddRecord(values, TsRefPtr<TsGeometry>());
}

int TsMemoryTable::RowCount() const
{
    return m_records->Count();
}

void TsMemoryTable::SetFieldsAvailable(bool available)
{
    m_fieldsAvailable = available;
}

TsRefPtr<TsFields> TsMemoryTable::GetFields() const
{
    return m_fieldsAvailable ? m_records->Fields() : nullptr;
}

TsRefPtr<TsRowCursor> TsMemoryTable::GetRowCursor(const TsQueryFilter& filter)
{
    std::vector<int> ids;
    if (!m_records->Select(filter, ids))
        return nullptr;
    return TsRefPtr<TsRowCursor>(new TsMemoryRowCursor(m_records, std::move(ids)));
}

} // namespace VyObjects
