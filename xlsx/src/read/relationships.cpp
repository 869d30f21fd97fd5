#include "read/relationships.h"

#include "read/xmlreader.h"

namespace QXlsx::detail {

QString relationshipsPartName(const QString& sourcePart)
{
    const int slash = sourcePart.lastIndexOf(QLatin1Char('/'));
    const QString folder = sourcePart.left(slash + 1);
    const QString file = sourcePart.mid(slash + 1);
    return folder + QLatin1String("_rels/") + file + QLatin1String(".rels");
}

QString resolveTarget(const QString& sourcePart, const QString& target)
{
    QString path = target;
    path.replace(QLatin1Char('\\'), QLatin1Char('/'));
    // A scheme ("http:", "file:") or a drive letter ("C:") leads out of the package.
    if (path.isEmpty() || path.contains(QLatin1Char(':')))
        return QString();
    if (!path.startsWith(QLatin1Char('/')))
        path = sourcePart.left(sourcePart.lastIndexOf(QLatin1Char('/')) + 1) + path;

    QStringList parts;
    for (const QString& segment : path.split(QLatin1Char('/'), Qt::SkipEmptyParts)) {
        if (segment == QLatin1String("."))
            continue;
        if (segment == QLatin1String("..")) {
            if (parts.isEmpty())
                return QString();
            parts.removeLast();
            continue;
        }
        parts.append(segment);
    }
    return parts.join(QLatin1Char('/'));
}

QString relationshipKind(const QString& type)
{
    return type.mid(type.lastIndexOf(QLatin1Char('/')) + 1);
}

namespace {

class RelationshipsHandler : public XmlHandler
{
public:
    std::vector<Relationship> relationships;

    void startElement(XmlReader&, std::string_view name, const XmlAttributes& attributes) override
    {
        if (name != "Relationship")
            return;
        const char* id = attributes.value("Id");
        const char* type = attributes.value("Type");
        const char* target = attributes.value("Target");
        if (!id || !type || !target)
            return;
        const char* mode = attributes.value("TargetMode");
        relationships.push_back({QString::fromUtf8(id), QString::fromUtf8(type), QString::fromUtf8(target),
                                 mode && std::string_view(mode) == "External"});
    }
    void endElement(XmlReader&, std::string_view) override {}
};

} // namespace

std::vector<Relationship> readRelationships(const QByteArray& xml)
{
    RelationshipsHandler handler;
    XmlReader reader(handler);
    reader.parse(xml);
    return std::move(handler.relationships);
}

} // namespace QXlsx::detail
