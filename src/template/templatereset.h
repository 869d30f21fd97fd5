#pragma once

// The reset that comes before every template rewrite, made safe to fail.

#include "xlsxdocument.h"

#include <QByteArray>
#include <QString>

namespace vygis {

// Empties the template file at path with VyExcelUtil::clearExcel, keeping the bytes it
// held until the rewrite is saved. The reset deletes the user's file before the new
// content exists on disk; should that save fail, the old bytes are put back, so the
// only way a rewrite loses a template is the one its caller asks for (no content).
class TemplateReset
{
public:
    explicit TemplateReset(const QString& path);
    TemplateReset(const TemplateReset&) = delete;
    TemplateReset& operator=(const TemplateReset&) = delete;

    // Saves the rewritten document under its own path; if that fails after the reset
    // had deleted the file, writes the old bytes back. Returns the result of the save.
    bool saveOrRestore(const QXlsx::Document& document) const;

private:
    QString m_path;
    QByteArray m_original;
    bool m_haveOriginal = false;
    bool m_deleted = false;
};

} // namespace vygis
