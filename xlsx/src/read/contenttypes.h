#pragma once

#include <QByteArray>
#include <QHash>
#include <QString>

#include <utility>
#include <vector>

namespace QXlsx::detail {

// The content types of the package's parts: by extension, overridden by part name.
class ContentTypes
{
public:
    void read(const QByteArray& xml);

    // The content type of a part ("xl/theme/theme1.xml"), or an empty text.
    QString of(const QString& partName) const;
    const std::vector<std::pair<QString, QString>>& defaults() const { return m_defaults; }

private:
    std::vector<std::pair<QString, QString>> m_defaults;   // extension -> type, in file order
    QHash<QString, QString> m_byExtension;                  // folded extension -> type
    QHash<QString, QString> m_overrides;                    // folded part name -> type
};

} // namespace QXlsx::detail
