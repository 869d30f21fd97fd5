#include "template/templatereset.h"

#include "vygisutil.h"

#include <QFile>
#include <QSaveFile>

namespace vygis {

namespace {

// Templates are a few kilobytes. A file far larger than any template is not one, and
// holding it in memory could exhaust the application, so it is reset without a copy.
constexpr qint64 MaxKeptBytes = qint64(256) << 20;

} // namespace

TemplateReset::TemplateReset(const QString& path)
    : m_path(path)
{
    QFile file(path);
    if (file.open(QIODevice::ReadOnly) && file.size() <= MaxKeptBytes) {
        m_original = file.readAll();
        m_haveOriginal = file.error() == QFileDevice::NoError;
    }
    file.close();
    m_deleted = VyExcelUtil::clearExcel(path);
}

bool TemplateReset::saveOrRestore(const QXlsx::Document& document) const
{
    if (document.save())
        return true;
    // When the reset could not delete the file, the failed save (atomic) left it as it
    // was: there is nothing to put back.
    if (m_deleted && m_haveOriginal) {
        QSaveFile file(m_path);
        // A failed final flush must not let commit() rename a cut copy into place.
        if (file.open(QIODevice::WriteOnly) && file.write(m_original) == m_original.size()
            && file.flush() && file.error() == QFileDevice::NoError)
            file.commit();
    }
    return false;
}

} // namespace vygis
