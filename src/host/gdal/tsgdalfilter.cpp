// Host where clauses (one comparison of a field with a literal) as OGR
// attribute filters. OGR compares a text field with a text or a numeric field
// with a number as the host does; every other pairing (a number against a
// text field, anything against a date) follows the host's rules here, after
// the feature is read.

#include "tsgdal_p.h"

#include <QRegularExpression>

#include <cmath>

namespace VyObjects {

namespace {

const QRegularExpression& comparisonPattern()
{
    static const QRegularExpression pattern(
        QStringLiteral(R"re(^\s*(?:"([^"]+)"|([^\s=<>!"']+))\s*(<=|>=|<>|!=|==|=|<|>)\s*(.*?)\s*$)re"));
    return pattern;
}

const QRegularExpression& nullTestPattern()
{
    static const QRegularExpression pattern(
        QStringLiteral(R"re(^\s*(?:"([^"]+)"|([^\s=<>!"']+))\s+IS\s+(NOT\s+)?NULL\s*$)re"),
        QRegularExpression::CaseInsensitiveOption);
    return pattern;
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

bool isNumericField(TsField::FieldType type)
{
    return type == TsField::SmallIntegerField || type == TsField::IntegerField
        || type == TsField::BigIntegerField || type == TsField::SingleField
        || type == TsField::DoubleField;
}

QByteArray quoted(const QString& text, QChar quote)
{
    QString doubled = text;
    doubled.replace(quote, QString(2, quote));
    return (quote + doubled + quote).toUtf8();
}

const char* sqlOperator(int op)
{
    static const char* const symbols[] = {"=", "<>", "<", "<=", ">", ">="};
    return symbols[op];
}

} // namespace

TsGdalFilter::TextComparison TsGdalFilter::textComparisonOf(const TsGdalDataSource& source)
{
    const QString driver = source.driverName();
    return driver == QLatin1String("GPKG") || driver == QLatin1String("SQLite") ? ExactText
                                                                                 : TextIgnoringCase;
}

bool TsGdalFilter::prepare(const TsQueryFilter& filter, const TsFields& fields,
                           const OGRFeatureDefn& definition, TextComparison texts, QString* error)
{
    m_predicate = filter.GetPredicate();
    m_hasCondition = false;
    m_ogrClause.clear();
    const QString clause = qText(filter.GetWhereClause());
    if (clause.trimmed().isEmpty())
        return true;
    if (!parse(clause)) {
        setError(error, QStringLiteral("the filter \"%1\" is not a comparison of a field with a value")
                            .arg(clause));
        return false;
    }
    m_fieldIndex = fields.FindFieldIndex(tsText(m_fieldName));
    if (m_fieldIndex < 0) {
        setError(error, QStringLiteral("the filter \"%1\" names no field of the layer").arg(clause));
        return false;
    }
    const TsRefPtr<TsField> field = fields.GetField(m_fieldIndex);
    const OGRFieldDefn* ogrField = definition.GetFieldDefn(m_fieldIndex);
    if (ogrField && canTranslate(field->GetFieldType(), ogrField->GetType(), texts))
        m_ogrClause = translate(qText(ogrField->GetNameRef()));
    // Equal texts ignoring case include the equal ones: OGR narrows the
    // features down and the comparison here decides.
    m_hasCondition = m_ogrClause.isEmpty() || (texts == TextIgnoringCase && !m_numeric
                                               && m_operator == Equal);
    return true;
}

void TsGdalFilter::evaluateHere()
{
    if (m_ogrClause.isEmpty())
        return;
    m_ogrClause.clear();
    m_hasCondition = true;
}

bool TsGdalFilter::admits(const TsRow& row) const
{
    if (m_hasCondition) {
        TsVariant value;
        row.GetValue(m_fieldIndex, value);
        if (!admitsValue(value))
            return false;
    }
    return !m_predicate || m_predicate(row);
}

bool TsGdalFilter::parse(const QString& clause)
{
    const QRegularExpressionMatch nullTest = nullTestPattern().match(clause);
    if (nullTest.hasMatch()) {
        m_fieldName = nullTest.captured(1) + nullTest.captured(2);
        m_operator = nullTest.captured(3).isEmpty() ? IsNull : IsNotNull;
        return true;
    }
    const QRegularExpressionMatch comparison = comparisonPattern().match(clause);
    if (!comparison.hasMatch())
        return false;
    m_fieldName = comparison.captured(1) + comparison.captured(2);
    const QString symbol = comparison.captured(3);
    if (symbol == QLatin1String("<>") || symbol == QLatin1String("!="))
        m_operator = NotEqual;
    else if (symbol == QLatin1String("<"))
        m_operator = Less;
    else if (symbol == QLatin1String("<="))
        m_operator = LessOrEqual;
    else if (symbol == QLatin1String(">"))
        m_operator = Greater;
    else if (symbol == QLatin1String(">="))
        m_operator = GreaterOrEqual;
    else
        m_operator = Equal;
    QString text;
    if (readQuotedText(comparison.captured(4), text)) {
        m_numeric = false;
        m_text = tsText(text);
        return true;
    }
    m_number = comparison.captured(4).toDouble(&m_numeric);
    return m_numeric;
}

// Empty and null values satisfy no comparison, nor do they in SQL; blobs read
// as empty for the host but not for OGR, so their null tests stay here. Times
// of day and lists read as text for the host but are no texts to OGR. Where
// OGR ignores case, only its equality helps.
bool TsGdalFilter::canTranslate(TsField::FieldType type, OGRFieldType ogrType,
                                TextComparison texts) const
{
    if (m_operator == IsNull || m_operator == IsNotNull)
        return type != TsField::BlobField && type != TsField::GeometryField;
    if (m_numeric)
        return isNumericField(type) && std::isfinite(m_number);
    return ogrType == OFTString && (texts == ExactText || m_operator == Equal);
}

QByteArray TsGdalFilter::translate(const QString& fieldName) const
{
    const QByteArray field = quoted(fieldName, QLatin1Char('"'));
    if (m_operator == IsNull)
        return field + " IS NULL";
    if (m_operator == IsNotNull)
        return field + " IS NOT NULL";
    const QByteArray literal = m_numeric ? QByteArray::number(m_number, 'g', 17)
                                         : quoted(qText(m_text), QLatin1Char('\''));
    return field + ' ' + sqlOperator(m_operator) + ' ' + literal;
}

bool TsGdalFilter::admitsValue(const TsVariant& value) const
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
        qText(value.ToString()).trimmed().toDouble(&readable);
    if (!readable)
        return false;
    const double number = value.GetDouble();
    return holds(number < m_number ? -1 : (number > m_number ? 1 : 0));
}

bool TsGdalFilter::holds(int comparison) const
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
