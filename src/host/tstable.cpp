#include "tstable.h"

namespace VyObjects {

TsRow::TsRow(int id, const TsRefPtr<TsFields>& fields, std::vector<TsVariant> values)
    : m_id(id), m_fields(fields), m_values(std::move(values))
{
}

bool TsRow::GetValue(int index, TsVariant& value) const
{
    value = TsVariant();
    if (!m_fields || index < 0 || index >= m_fields->GetFieldCount())
        return false;
    if (static_cast<std::size_t>(index) < m_values.size())
        value = m_values[static_cast<std::size_t>(index)];
    return true;
}

bool TsRow::GetValue(const TsString& field, TsVariant& value) const
{
    return GetValue(m_fields ? m_fields->FindFieldIndex(field) : -1, value);
}

TsRowCursor::~TsRowCursor() = default;
TsTable::~TsTable() = default;

} // namespace VyObjects
