#ifndef VYGIS_TSMEMORYTABLE_H
#define VYGIS_TSMEMORYTABLE_H

#include "tstable.h"
#include "vygishost_export.h"

#include <memory>
#include <vector>

namespace VyObjects {

class TsMemoryRecords;

// An attribute table held in memory. Rows get the ids 1, 2, 3, ... and row
// cursors hand them out in that order, as they were when the cursor opened.
class VYGIS_HOST_EXPORT TsMemoryTable : public TsTable
{
public:
    explicit TsMemoryTable(const TsString& name);

    TsRefPtr<TsField> AddField(const TsString& name, TsField::FieldType type,
                               const TsString& aliasName = TsString(), unsigned precision = 0);
    // As TsMemoryFeatureLayer::AddFeature, without shape.
    int AddRow(const std::vector<TsVariant>& values);
    int RowCount() const;
    // Makes GetFields answer null.
    void SetFieldsAvailable(bool available);

    TsString GetTableName() const override { return m_name; }
    TsRefPtr<TsFields> GetFields() const override;
    TsRefPtr<TsRowCursor> GetRowCursor(const TsQueryFilter& filter) override;

protected:
    ~TsMemoryTable() override;

private:
    TsString m_name;
    std::shared_ptr<TsMemoryRecords> m_records;
    bool m_fieldsAvailable = true;
};

} // namespace VyObjects

#endif // VYGIS_TSMEMORYTABLE_H
