#include "tsqueryfilter.h"

namespace VyObjects {

TsQueryFilter::TsQueryFilter(const TsString& whereClause)
    : m_whereClause(whereClause)
{
}

} // namespace VyObjects
