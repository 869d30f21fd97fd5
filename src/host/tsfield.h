#ifndef VYGIS_TSFIELD_H
#define VYGIS_TSFIELD_H

#include "tsbase.h"
#include "vygishost_export.h"

#include <vector>

namespace VyObjects {

// One attribute column of a layer or table.
class VYGIS_HOST_EXPORT TsField : public TsRefBase
{
public:
    // The two floating types are 2 and 3; their values are read as doubles
    // and shown with the field's precision (decimals).
    enum FieldType {
        SmallIntegerField = 0,   // 16-bit, values of variant code 3
        IntegerField = 1,        // 32-bit, code 4
        SingleField = 2,         // float, code 9
        DoubleField = 3,         // double, code 8
        StringField = 4,         // code 7
        DateField = 5,           // code 6
        BigIntegerField = 6,     // 64-bit, code 5
        BlobField = 7,           // holds no variant value
        GeometryField = 8        // holds no variant value
    };

    TsField(const TsString& name, FieldType type, const TsString& aliasName = TsString(),
            unsigned precision = 0);

    TsString GetName() const { return m_name; }
    TsString GetAliasName() const { return m_aliasName; }
    FieldType GetFieldType() const { return m_type; }
    unsigned GetPrecision() const { return m_precision; }

    // Turns value into this field's type: numbers and texts that read as
    // numbers go into numeric fields (floating values rounded for integer
    // fields), everything into text fields, ISO dates and date variants into
    // date fields. Empty, null and blank-text values become null, except in a
    // text field, which keeps the text. Returns false, leaving converted
    // null, for a value that does not fit.
    bool ConvertValue(const TsVariant& value, TsVariant& converted) const;

private:
    TsString m_name;
    TsString m_aliasName;
    FieldType m_type;
    unsigned m_precision;
};

// The ordered fields of a layer or table.
class VYGIS_HOST_EXPORT TsFields : public TsRefBase
{
public:
    TsFields() = default;

    int GetFieldCount() const { return static_cast<int>(m_fields.size()); }
    // Null for an index outside 0 .. GetFieldCount() - 1.
    TsRefPtr<TsField> GetField(int index) const;
    // Field names compare without regard to case; -1 when there is none.
    int FindFieldIndex(const TsString& name) const;
    void AddField(const TsRefPtr<TsField>& field);

private:
    std::vector<TsRefPtr<TsField>> m_fields;
};

} // namespace VyObjects

#endif // VYGIS_TSFIELD_H
