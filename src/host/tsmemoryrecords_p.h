#ifndef VYGIS_TSMEMORYRECORDS_P_H
#define VYGIS_TSMEMORYRECORDS_P_H

// Internal: the records behind the memory table and the memory feature layer.
// Ids count from 1 in insertion order and are never reused.

#include "tsfeaturelayer.h"

#include <memory>
#include <vector>

namespace VyObjects {

class TsMemoryRecords
{
public:
    TsMemoryRecords();

    const TsRefPtr<TsFields>& Fields() const { return m_fields; }
    TsRefPtr<TsField> AddField(const TsString& name, TsField::FieldType type,
                               const TsString& aliasName, unsigned precision);

    // -1 when there are more values than fields.
    int AddRecord(const std::vector<TsVariant>& values, const TsRefPtr<TsGeometry>& geometry);
    bool Contains(int id) const;
    int Count() const { return static_cast<int>(m_records.size()); }

    // The ids of the records filter admits now; false when the where clause
    // cannot be read or names an unknown field.
    bool Select(const TsQueryFilter& filter, std::vector<int>& ids) const;
    TsRefPtr<TsFeature> Read(int id) const;

    TsVariant Value(int id, int fieldIndex) const;
    void SetValue(int id, int fieldIndex, const TsVariant& value);

private:
    struct Record
    {
        std::vector<TsVariant> values;
        TsRefPtr<TsGeometry> geometry;
    };

    const Record* find(int id) const;

    TsRefPtr<TsFields> m_fields;
    std::vector<Record> m_records;
};

// Hands out the features (or rows) selected when it was opened, each read as
// it is asked for: opening a cursor on a large layer copies ids, not features.
// The cursor shares the records, so it stays valid after its layer is gone.
class TsMemoryCursor : public TsFeatureCursor
{
public:
    TsMemoryCursor(std::shared_ptr<const TsMemoryRecords> records, std::vector<int> ids);
    TsRefPtr<TsFeature> NextFeature() override;

private:
    std::shared_ptr<const TsMemoryRecords> m_records;
    std::vector<int> m_ids;
    std::size_t m_next = 0;
};

class TsMemoryRowCursor : public TsRowCursor
{
public:
    TsMemoryRowCursor(std::shared_ptr<const TsMemoryRecords> records, std::vector<int> ids);
    TsRefPtr<TsRow> NextRow() override;

private:
    TsRefPtr<TsMemoryCursor> m_features;
};

} // namespace VyObjects

#endif // VYGIS_TSMEMORYRECORDS_P_H
