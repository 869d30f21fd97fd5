#pragma once

// Reading a row's values by field name, fast enough for layers of millions of cells.

#include "tsfield.h"
#include "tstable.h"

#include <cstddef>
#include <utility>
#include <vector>

namespace vygis {

// A row finds a value by name by comparing the name, ignoring case, with each of its
// fields in turn: for a large layer that costs more than writing the cell. The rows of
// one layer share one field collection, so the names are matched once per collection
// and the values then read by position. The result is the very value that
// TsRow::GetValue(name, value) gives, also for a provider whose rows differ in fields.
class ValuesByName
{
public:
    explicit ValuesByName(std::vector<VyObjects::TsString> names) : m_names(std::move(names)) {}

    // Call once per row before reading its values.
    void startRow(const VyObjects::TsRow& row)
    {
        VyObjects::TsRefPtr<VyObjects::TsFields> fields = row.GetFields();
        if (fields == m_fields && !m_positions.empty())
            return;
        m_fields = std::move(fields);
        m_positions.assign(m_names.size(), -1);
        if (!m_fields)
            return;
        for (std::size_t k = 0; k < m_names.size(); ++k)
            m_positions[k] = m_fields->FindFieldIndex(m_names[k]);
    }

    // The value of the k-th name in row (the row startRow was last given); empty when
    // the row has no field of that name.
    void read(const VyObjects::TsRow& row, std::size_t k, VyObjects::TsVariant& value) const
    {
        row.GetValue(m_positions[k], value);
    }

private:
    std::vector<VyObjects::TsString> m_names;
    std::vector<int> m_positions;
    VyObjects::TsRefPtr<VyObjects::TsFields> m_fields;   // the one m_positions belong to
};

} // namespace vygis
