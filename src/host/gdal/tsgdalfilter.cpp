// Host where clauses (one comparison of a field with a literal) as OGR
// attribute filters. OGR compares a text field with a text or a numeric field
// with a number as the host does; every other pairing (a number against a
// text field, anything against a date) follows the host's rules here, after
// the feature is read.

#include "tsgdal_p.h"

#include <cmath>

namespace VyObjects {

namespace {

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
    const QString clause = toQString(filter.GetWhereClause());
    if (clause.trimmed().isEmpty())
        return true;
    if (!m_condition.Parse(filter.GetWhereClause())) {
        setError(error, QStringLiteral("the filter \"%1\" is not a comparison of a field with a value")
                            .arg(clause));
        return false;
    }
    m_fieldIndex = fields.FindFieldIndex(m_condition.FieldName());
    if (m_fieldIndex < 0) {
        setError(error, QStringLiteral("the filter \"%1\" names no field of the layer").arg(clause));
        return false;
    }
    const TsRefPtr<TsField> field = fields.GetField(m_fieldIndex);
    const OGRFieldDefn* ogrField = definition.GetFieldDefn(m_fieldIndex);
    if (ogrField && canTranslate(field->GetFieldType(), ogrField->GetType(), texts))
        m_ogrClause = translate(gdalText(ogrField->GetNameRef()));
    // Equal texts ignoring case include the equal ones: OGR narrows the
    // features down and the comparison here decides.
    m_hasCondition = m_ogrClause.isEmpty()
        || (texts == TextIgnoringCase && !m_condition.IsNumeric()
            && m_condition.GetOperator() == TsAttributeCondition::Equal);
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
        if (!m_condition.AdmitsValue(value))
            return false;
    }
    return !m_predicate || m_predicate(row);
}

// Empty and null values satisfy no comparison, nor do they in SQL; blobs read
// as empty for the host but not for OGR, so their null tests stay here. Times
// of day and lists read as text for the host but are no texts to OGR. Where
// OGR ignores case, only its equality helps.
bool TsGdalFilter::canTranslate(TsField::FieldType type, OGRFieldType ogrType,
                                TextComparison texts) const
{
    const TsAttributeCondition::Operator op = m_condition.GetOperator();
    if (op == TsAttributeCondition::IsNull || op == TsAttributeCondition::IsNotNull)
        return type != TsField::BlobField && type != TsField::GeometryField;
    if (m_condition.IsNumeric())
        return isNumericField(type) && std::isfinite(m_condition.Number());
    return ogrType == OFTString && (texts == ExactText || op == TsAttributeCondition::Equal);
}

QByteArray TsGdalFilter::translate(const QString& fieldName) const
{
    const QByteArray field = quoted(fieldName, QLatin1Char('"'));
    const TsAttributeCondition::Operator op = m_condition.GetOperator();
    if (op == TsAttributeCondition::IsNull)
        return field + " IS NULL";
    if (op == TsAttributeCondition::IsNotNull)
        return field + " IS NOT NULL";
    const QByteArray literal = m_condition.IsNumeric()
        ? QByteArray::number(m_condition.Number(), 'g', 17)
        : quoted(toQString(m_condition.Text()), QLatin1Char('\''));
    return field + ' ' + sqlOperator(op) + ' ' + literal;
}

} // namespace VyObjects
