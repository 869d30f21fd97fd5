#ifndef VYGIS_TSATTRIBUTECONDITION_H
#define VYGIS_TSATTRIBUTECONDITION_H

// The where clauses of query filters: one comparison of a field with a literal
// (NAME = 'Oslo', POP >= 1000, "Field 2" <> 'it''s') or a null test (CODE IS NULL).
// Every provider reads them here, so that a clause means the same on every kind of
// layer; a provider that filters elsewhere (in a database) hands the parts on and may
// still let Admits decide what the database cannot compare as the host does.

#include "tsbase.h"
#include "vygishost_export.h"

namespace VyObjects {

class TsRow;

class VYGIS_HOST_EXPORT TsAttributeCondition
{
public:
    enum Operator { Equal, NotEqual, Less, LessOrEqual, Greater, GreaterOrEqual, IsNull, IsNotNull };

    // False when clause is not a comparison of the supported forms.
    bool Parse(const TsString& clause);

    TsString FieldName() const { return m_field; }
    Operator GetOperator() const { return m_operator; }
    // Whether the literal is a number (Number) rather than a text (Text).
    bool IsNumeric() const { return m_numeric; }
    double Number() const { return m_number; }
    TsString Text() const { return m_text; }

    bool Admits(const TsRow& row) const;
    bool AdmitsValue(const TsVariant& value) const;

private:
    bool holds(int comparison) const;

    TsString m_field;
    Operator m_operator = Equal;
    bool m_numeric = false;
    double m_number = 0.0;
    TsString m_text;
};

} // namespace VyObjects

#endif // VYGIS_TSATTRIBUTECONDITION_H
