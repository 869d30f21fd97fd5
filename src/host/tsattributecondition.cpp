#include "tsattributecondition.h"

#include "tsqtext.h"
#include "tstable.h"

#include <QRegularExpression>

namespace VyObjects {

namespace {

// field (bare or in double quotes), operator, rest of the clause.
const QRegularExpression& comparisonPattern()
{
    static const QRegularExpression pattern(
        QLatin1String(R"re(^\s*(?:"([^"]+)"|([^\s=<>!"']+))\s*(<=|>=|<>|!=|==|=|<|>)\s*(.*?)\s*$)re"));
    return pattern;
}

const QRegularExpression& nullTestPattern()
{
    static const QRegularExpression pattern(
        QLatin1String(R"re(^\s*(?:"([^"]+)"|([^\s=<>!"']+))\s+IS\s+(NOT\s+)?NULL\s*$)re"),
        QRegularExpression::CaseInsensitiveOption);
    return pattern;
}

TsAttributeCondition::Operator operatorFor(const QString& symbol)
{
    if (symbol == QLatin1String("<>") || symbol == QLatin1String("!="))
        return TsAttributeCondition::NotEqual;
    if (symbol == QLatin1String("<"))
        return TsAttributeCondition::Less;
    if (symbol == QLatin1String("<="))
        return TsAttributeCondition::LessOrEqual;
    if (symbol == QLatin1String(">"))
        return TsAttributeCondition::Greater;
    if (symbol == QLatin1String(">="))
        return TsAttributeCondition::GreaterOrEqual;
    return TsAttributeCondition::Equal;
}

// 'it''s' reads as it's; anything after the closing quote spoils the literal.
bool readQuotedText(const QString& literal, QString& text)
{
    if (literal.size() < 2 || !literal.startsWith(QLatin1Char('\'')) || !literal.endsWith(QLatin1Char('\'')))
        return false;
    const QString inner = literal.mid(1, literal.size() - 2);
    if (inner.count(QLatin1Char('\'')) != 2 * inner.count(QLatin1String("''")))
        return false;
    text = QString(inner).replace(QLatin1String("''"), QLatin1String("'"));
    return true;
}

} // namespace

bool TsAttributeCondition::Parse(const TsString& clause)
{
    const QString text = toQString(clause);
    const QRegularExpressionMatch nullTest = nullTestPattern().match(text);
    if (nullTest.hasMatch()) {
        m_field = toTsString(nullTest.captured(1) + nullTest.captured(2));
        m_operator = nullTest.captured(3).isEmpty() ? IsNull : IsNotNull;
        return true;
    }
    const QRegularExpressionMatch comparison = comparisonPattern().match(text);
    if (!comparison.hasMatch())
        return false;
    m_field = toTsString(comparison.captured(1) + comparison.captured(2));
    m_operator = operatorFor(comparison.captured(3));
    const QString literal = comparison.captured(4);
    QString quoted;
    if (readQuotedText(literal, quoted)) {
        m_numeric = false;
        m_text = toTsString(quoted);
        return true;
    }
    m_number = literal.toDouble(&m_numeric);
    return m_numeric;
}

bool TsAttributeCondition::Admits(const TsRow& row) const
{
    TsVariant value;
    row.GetValue(m_field, value);
    return AdmitsValue(value);
}

bool TsAttributeCondition::AdmitsValue(const TsVariant& value) const
{
    const bool missing = value.IsEmpty() || value.IsNull();
    if (m_operator == IsNull || m_operator == IsNotNull)
        return missing == (m_operator == IsNull);
    if (missing)
        return false;
    if (!m_numeric)
        return holds(value.ToString().Compare(m_text));
    bool readable = value.IsNumeric();
    if (!readable)
        toQString(value.ToString()).trimmed().toDouble(&readable);
    if (!readable)
        return false;
    const double number = value.GetDouble();
    return holds(number < m_number ? -1 : (number > m_number ? 1 : 0));
}

bool TsAttributeCondition::holds(int comparison) const
{
    switch (m_operator) {
    case Equal: return comparison == 0;
    case NotEqual: return comparison != 0;
    case Less: return comparison < 0;
    case LessOrEqual: return comparison <= 0;
    case Greater: return comparison > 0;
    case GreaterOrEqual: return comparison >= 0;
    default: return false;
    }
}

} // namespace VyObjects
