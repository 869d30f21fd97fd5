#include "read/contenttypes.h"

#include "read/xmlreader.h"

namespace QXlsx::detail {

namespace {

QString folded(QString name)
{
    if (name.startsWith(QLatin1Char('/')))
        name.remove(0, 1);
    return name.toCaseFolded();
}

class ContentTypesHandler : public XmlHandler
{
public:
    explicit ContentTypesHandler(std::vector<std::pair<QString, QString>>& defaults,
                                 QHash<QString, QString>& byExtension, QHash<QString, QString>& overrides)
        : m_defaults(defaults), m_byExtension(byExtension), m_overrides(overrides) {}

    void startElement(XmlReader&, std::string_view name, const XmlAttributes& attributes) override
    {
        const char* type = attributes.value("ContentType");
        if (!type)
            return;
        if (name == "Default") {
            if (const char* extension = attributes.value("Extension")) {
                m_defaults.emplace_back(QString::fromUtf8(extension), QString::fromUtf8(type));
                m_byExtension.insert(folded(QString::fromUtf8(extension)), QString::fromUtf8(type));
            }
        } else if (name == "Override") {
            if (const char* part = attributes.value("PartName"))
                m_overrides.insert(folded(QString::fromUtf8(part)), QString::fromUtf8(type));
        }
    }
    void endElement(XmlReader&, std::string_view) override {}

private:
    std::vector<std::pair<QString, QString>>& m_defaults;
    QHash<QString, QString>& m_byExtension;
    QHash<QString, QString>& m_overrides;
};

} // namespace

void ContentTypes::read(const QByteArray& xml)
{
    ContentTypesHandler handler(m_defaults, m_byExtension, m_overrides);
    XmlReader reader(handler);
    reader.parse(xml);
}

QString ContentTypes::of(const QString& partName) const
{
    const QString key = folded(partName);
    const auto override = m_overrides.constFind(key);
    if (override != m_overrides.constEnd())
        return *override;
    const int dot = key.lastIndexOf(QLatin1Char('.'));
    if (dot < 0 || key.indexOf(QLatin1Char('/'), dot) >= 0)
        return QString();
    return m_byExtension.value(key.mid(dot + 1));
}

} // namespace QXlsx::detail
