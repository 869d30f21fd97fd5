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
    // Every value read or changed by name comes through here. Case folding maps each code
    // unit to one code unit, so names of different lengths never match, and a name spelt
    // exactly alike needs no folding: together these settle nearly every comparison.
    for (int i = 0; i < GetFieldCount(); ++i) {
        const TsString& candidate = m_fields[static_cast<std::size_t>(i)]->GetName();
        if (candidate.GetLength() != name.GetLength())
            continue;
        if (candidate == name || candidate.CompareNoCase(name) == 0)
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
