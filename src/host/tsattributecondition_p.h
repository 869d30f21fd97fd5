#ifndef VYGIS_TSATTRIBUTECONDITION_P_H
#define VYGIS_TSATTRIBUTECONDITION_P_H

// Internal: the one-comparison where clauses that the memory providers read.

#include "tsbase.h"

namespace VyObjects {

class TsRow;

class TsAttributeCondition
{
public:
    enum Operator { Equal, NotEqual, Less, LessOrEqual, Greater, GreaterOrEqual, IsNull, IsNotNull };

    // False when clause is not a comparison of the supported forms.
    bool Parse(const TsString& clause);

    TsString FieldName() const { return m_field; }
    bool Admits(const TsRow& row) const;

private:
    bool admitsValue(const TsVariant& value) const;
    bool holds(int comparison) const;

    TsString m_field;
    Operator m_operator = Equal;
    bool m_numeric = false;
    double m_number = 0.0;
    TsString m_text;
};

} // namespace VyObjects

#endif // VYGIS_TSATTRIBUTECONDITION_P_H
