#include "topologyjson.h"

#include "tsqtext.h"

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <cmath>
#include <functional>

using namespace VyObjects;

namespace {

// Reads the members of one error; the first problem goes to problem.
class ErrorReader
{
public:
    explicit ErrorReader(const QJsonObject& object) : m_object(object) {}

    bool read(TsTopoError& error, bool& unreadable, QString& problem);

private:
    bool integer(const QString& key, int& value);
    bool text(const QString& key, TsString& value);
    bool flag(const QString& key, bool& value);

    const QJsonObject& m_object;
    QString m_problem;
};

bool ErrorReader::integer(const QString& key, int& value)
{
    const QJsonValue member = m_object.value(key);
    if (member.isUndefined())
        return true;
    const double number = member.toDouble(0.5);
    if (!member.isDouble() || number != std::floor(number) || std::fabs(number) > 2147483647.0) {
        m_problem = QStringLiteral("\"%1\" must be a whole number").arg(key);
        return false;
    }
    value = static_cast<int>(number);
    return true;
}

bool ErrorReader::text(const QString& key, TsString& value)
{
    const QJsonValue member = m_object.value(key);
    if (member.isUndefined())
        return true;
    if (!member.isString()) {
        m_problem = QStringLiteral("\"%1\" must be a text").arg(key);
        return false;
    }
    value = toTsString(member.toString());
    return true;
}

bool ErrorReader::flag(const QString& key, bool& value)
{
    const QJsonValue member = m_object.value(key);
    if (member.isUndefined())
        return true;
    if (!member.isBool()) {
        m_problem = QStringLiteral("\"%1\" must be true or false").arg(key);
        return false;
    }
    value = member.toBool();
    return true;
}

bool ErrorReader::read(TsTopoError& error, bool& unreadable, QString& problem)
{
    static const QStringList known{
        QStringLiteral("number"), QStringLiteral("ruleId"), QStringLiteral("featureId"),
        QStringLiteral("relatedFeatureId"), QStringLiteral("layerId"), QStringLiteral("relatedLayerId"),
        QStringLiteral("layerName"), QStringLiteral("relatedLayerName"), QStringLiteral("coordinate"),
        QStringLiteral("ruleDescription"), QStringLiteral("errorType"), QStringLiteral("isException"),
        QStringLiteral("unreadable")};
    for (const QString& key : m_object.keys()) {
        if (!known.contains(key)) {
            problem = QStringLiteral("unknown member \"%1\"").arg(key);
            return false;
        }
    }
    const bool ok = integer(QStringLiteral("number"), error.number)
        && integer(QStringLiteral("ruleId"), error.ruleId)
        && integer(QStringLiteral("featureId"), error.featureId)
        && integer(QStringLiteral("relatedFeatureId"), error.relatedFeatureId)
        && integer(QStringLiteral("layerId"), error.layerId)
        && integer(QStringLiteral("relatedLayerId"), error.relatedLayerId)
        && text(QStringLiteral("layerName"), error.layerName)
        && text(QStringLiteral("relatedLayerName"), error.relatedLayerName)
        && text(QStringLiteral("coordinate"), error.coordinate)
        && text(QStringLiteral("ruleDescription"), error.ruleDescription)
        && text(QStringLiteral("errorType"), error.errorType)
        && flag(QStringLiteral("isException"), error.isException)
        && flag(QStringLiteral("unreadable"), unreadable);
    problem = m_problem;
    return ok;
}

bool readDocument(const QString& path, QJsonObject& root, QString* error)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        *error = QStringLiteral("%1: cannot be read (%2)").arg(path, file.errorString());
        return false;
    }
    QJsonParseError parseError;
    const QJsonDocument document = QJsonDocument::fromJson(file.readAll(), &parseError);
    if (parseError.error != QJsonParseError::NoError) {
        *error = QStringLiteral("%1: not JSON: %2 at byte %3")
                     .arg(path, parseError.errorString()).arg(parseError.offset);
        return false;
    }
    if (!document.isObject() || !document.object().value(QStringLiteral("errors")).isArray()) {
        *error = QStringLiteral("%1: expected an object with an \"errors\" array").arg(path);
        return false;
    }
    root = document.object();
    return true;
}

} // namespace

TsRefPtr<TsMemoryTopology> readTopologyJson(const QString& path, QString* error)
{
    QJsonObject root;
    if (!readDocument(path, root, error))
        return {};
    const QJsonValue attributeCheck = root.value(QStringLiteral("attributeCheck"));
    const QJsonValue reportedCount = root.value(QStringLiteral("reportedCount"));
    if (!attributeCheck.isUndefined() && !attributeCheck.isBool()) {
        *error = QStringLiteral("%1: \"attributeCheck\" must be true or false").arg(path);
        return {};
    }
    if (!reportedCount.isUndefined() && !reportedCount.isDouble()) {
        *error = QStringLiteral("%1: \"reportedCount\" must be a number").arg(path);
        return {};
    }
    const auto topology = TsRefPtr<TsMemoryTopology>::create(attributeCheck.toBool());
    const QJsonArray errors = root.value(QStringLiteral("errors")).toArray();
    for (int i = 0; i < errors.size(); ++i) {
        TsTopoError finding;
        bool unreadable = false;
        QString problem = QStringLiteral("must be an object");
        if (!errors[i].isObject() || !ErrorReader(errors[i].toObject()).read(finding, unreadable, problem)) {
            *error = QStringLiteral("%1: errors[%2]: %3").arg(path).arg(i).arg(problem);
            return {};
        }
        topology->AddError(finding);
        if (unreadable)
            topology->MarkUnreadable(i);
    }
    if (!reportedCount.isUndefined())
        topology->SetReportedErrorCount(reportedCount.toInt());
    return topology;
}
