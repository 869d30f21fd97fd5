#include "tsmemoryrecords_p.h"

#include "tsattributecondition.h"

namespace VyObjects {

TsMemoryRecords::TsMemoryRecords()
    : m_fields(TsRefPtr<TsFields>::create())
{
}

TsRefPtr<TsField> TsMemoryRecords::AddField(const TsString& name, TsField::FieldType type,
                                            const TsString& aliasName, unsigned precision)
{
    const auto field = TsRefPtr<TsField>::create(name, type, aliasName, precision);
    m_fields->AddField(field);
    return field;
}

int TsMemoryRecords::AddRecord(const std::vector<TsVariant>& values, const TsRefPtr<TsGeometry>& geometry)
{
    if (values.size() > static_cast<std::size_t>(m_fields->GetFieldCount()))
        return -1;
    Record record;
    record.geometry = geometry;
    for (std::size_t i = 0; i < values.size(); ++i) {
        TsVariant converted;
        m_fields->GetField(static_cast<int>(i))->ConvertValue(values[i], converted);
        record.values.push_back(converted);
    }
    m_records.push_back(std::move(record));
    return static_cast<int>(m_records.size());
}

bool TsMemoryRecords::Contains(int id) const
{
    return find(id) != nullptr;
}

bool TsMemoryRecords::Select(const TsQueryFilter& filter, std::vector<int>& ids) const
{
    ids.clear();
    TsAttributeCondition condition;
    const bool hasClause = !filter.GetWhereClause().IsEmpty();
    if (hasClause && (!condition.Parse(filter.GetWhereClause())
                      || m_fields->FindFieldIndex(condition.FieldName()) < 0))
        return false;
    const bool filtered = hasClause || filter.GetPredicate();
    ids.reserve(m_records.size());
    for (int id = 1; id <= static_cast<int>(m_records.size()); ++id) {
        if (filtered) {
            const TsRefPtr<TsFeature> feature = Read(id);
            if (hasClause && !condition.Admits(*feature))
                continue;
            if (filter.GetPredicate() && !filter.GetPredicate()(*feature))
                continue;
        }
        ids.push_back(id);
    }
    return true;
}

TsRefPtr<TsFeature> TsMemoryRecords::Read(int id) const
{
    const Record* record = find(id);
    if (!record)
        return nullptr;
    return TsRefPtr<TsFeature>::create(id, m_fields, record->values, record->geometry);
}

TsVariant TsMemoryRecords::Value(int id, int fieldIndex) const
{
    const Record* record = find(id);
    if (!record || fieldIndex < 0 || static_cast<std::size_t>(fieldIndex) >= record->values.size())
        return TsVariant();
    return record->values[static_cast<std::size_t>(fieldIndex)];
}

void TsMemoryRecords::SetValue(int id, int fieldIndex, const TsVariant& value)
{
    if (!find(id) || fieldIndex < 0 || fieldIndex >= m_fields->GetFieldCount())
        return;
    std::vector<TsVariant>& values = m_records[static_cast<std::size_t>(id - 1)].values;
    if (values.size() <= static_cast<std::size_t>(fieldIndex))
        values.resize(static_cast<std::size_t>(fieldIndex) + 1);
    values[static_cast<std::size_t>(fieldIndex)] = value;
}

const TsMemoryRecords::Record* TsMemoryRecords::find(int id) const
{
    if (id < 1 || id > static_cast<int>(m_records.size()))
        return nullptr;
    return &m_records[static_cast<std::size_t>(id - 1)];
}

TsMemoryCursor::TsMemoryCursor(std::shared_ptr<const TsMemoryRecords> records, std::vector<int> ids)
    : m_records(std::move(records)), m_ids(std::move(ids))
{
}

TsRefPtr<TsFeature> TsMemoryCursor::NextFeature()
{
    if (m_next >= m_ids.size())
        return nullptr;
    return m_records->Read(m_ids[m_next++]);
}

TsMemoryRowCursor::TsMemoryRowCursor(std::shared_ptr<const TsMemoryRecords> records, std::vector<int> ids)
    : m_features(TsRefPtr<TsMemoryCursor>::create(std::move(records), std::move(ids)))
{
}

TsRefPtr<TsRow> TsMemoryRowCursor::NextRow()
{
    return m_features->NextFeature();
}

} // namespace VyObjects
