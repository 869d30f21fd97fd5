#ifndef VYGIS_TSQUERYFILTER_H
#define VYGIS_TSQUERYFILTER_H

#include "tsbase.h"
#include "vygishost_export.h"

#include <functional>

namespace VyObjects {

class TsRow;

// Which rows or features a search admits. A default filter has no condition
// and admits everything. Both parts of a filter must admit a row:
//
// - the where clause, one comparison of a field with a literal:
//       FIELD = 'text'     FIELD <> 12.5     "Field name" >= -3
//       FIELD IS NULL      FIELD IS NOT NULL
//   with the operators =, ==, <>, !=, <, <=, >, >=. A text literal compares
//   with the value's text, a number with its numeric value; empty and null
//   values satisfy no comparison. Field names ignore case. A provider that
//   cannot read a clause, or does not know its field, refuses the search;
// - the predicate, any test a caller writes in code.
class VYGIS_HOST_EXPORT TsQueryFilter
{
public:
    using Predicate = std::function<bool(const TsRow&)>;

    TsQueryFilter() = default;
    explicit TsQueryFilter(const TsString& whereClause);

    TsString GetWhereClause() const { return m_whereClause; }
    void SetWhereClause(const TsString& whereClause) { m_whereClause = whereClause; }
    const Predicate& GetPredicate() const { return m_predicate; }
    void SetPredicate(Predicate predicate) { m_predicate = std::move(predicate); }

    bool HasCondition() const { return !m_whereClause.IsEmpty() || static_cast<bool>(m_predicate); }

private:
    TsString m_whereClause;
    Predicate m_predicate;
};

} // namespace VyObjects

#endif // VYGIS_TSQUERYFILTER_H
