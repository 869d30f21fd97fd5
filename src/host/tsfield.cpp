#include "tsfield.h"

namespace VyObjects {

TsField::TsField(const TsString& name, FieldType type, const TsString& aliasName, unsigned precision)
    : m_name(name), m_aliasName(aliasName), m_type(type), m_precision(precision)
{
}

TsRefPtr<TsField> TsFields::GetField(int index) const
{
    if (index < 0 || index >= GetFieldCount())
        return nullptr;
    return m_fields[static_cast<std::size_t>(index)];
}

int TsFields::FindFieldIndex(const TsString& name) const
{
    for (int i = 0; i < GetFieldCount(); ++i) {
        if (m_fields[static_cast<std::size_t>(i)]->GetName().CompareNoCase(name) == 0)
            return i;
    }
    return -1;
}

void TsFields::AddField(const TsRefPtr<TsField>& field)
{
    if (field)
        m_fields.push_back(field);
}

} // namespace VyObjects
