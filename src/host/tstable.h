#ifndef VYGIS_TSTABLE_H
#define VYGIS_TSTABLE_H

#include "tsbase.h"
#include "tsfield.h"
#include "tsqueryfilter.h"
#include "vygishost_export.h"

#include <vector>

namespace VyObjects {

// One record as it was read: later edits of its table do not change it.
class VYGIS_HOST_EXPORT TsRow : public TsRefBase
{
public:
    // values[i] belongs to field i; missing trailing values read as empty.
    TsRow(int id, const TsRefPtr<TsFields>& fields, std::vector<TsVariant> values);

    int GetID() const { return m_id; }
    TsRefPtr<TsFields> GetFields() const { return m_fields; }
    // Both give false and an empty value for a field the row does not have.
    bool GetValue(int index, TsVariant& value) const;
    bool GetValue(const TsString& field, TsVariant& value) const;

private:
    int m_id;
    TsRefPtr<TsFields> m_fields;
    std::vector<TsVariant> m_values;
};

class VYGIS_HOST_EXPORT TsRowCursor : public TsRefBase
{
public:
    // Null once every admitted row has been handed out.
    virtual TsRefPtr<TsRow> NextRow() = 0;

protected:
    ~TsRowCursor() override;
};

// An attribute table without geometry.
class VYGIS_HOST_EXPORT TsTable : public TsRefBase
{
public:
    virtual TsString GetTableName() const = 0;
    // Null when the table cannot describe its fields.
    virtual TsRefPtr<TsFields> GetFields() const = 0;
    // Null when the filter cannot be applied to this table.
    virtual TsRefPtr<TsRowCursor> GetRowCursor(const TsQueryFilter& filter) = 0;

protected:
    ~TsTable() override;
};

} // namespace VyObjects

#endif // VYGIS_TSTABLE_H
