// Theme icons: a folder the application may choose, then the built-in set.

#include "vyapplication.h"

#include <QDir>
#include <QFileInfo>
#include <QMutex>
#include <QMutexLocker>

// Outside any namespace: the resource's registration function lives in the
// global one.
static void registerBuiltInTheme()
{
    Q_INIT_RESOURCE(vygishost);
}

namespace {

QMutex themeMutex;
QString themeFolderPath;

QString currentThemeFolder()
{
    QMutexLocker lock(&themeMutex);
    return themeFolderPath;
}

// The built-in set is compiled into this library; registering it by hand
// keeps it available however the library is linked.
void ensureBuiltInTheme()
{
    static const bool registered = (registerBuiltInTheme(), true);
    Q_UNUSED(registered)
}

} // namespace

QIcon VyApplication::getThemeIcon(const QString& name)
{
    if (name.isEmpty() || QFileInfo(name).fileName() != name)
        return QIcon();
    const QString folder = currentThemeFolder();
    if (!folder.isEmpty()) {
        const QString themed = QDir(folder).filePath(name);
        if (QFileInfo(themed).isFile())
            return QIcon(themed);
    }
    ensureBuiltInTheme();
    const QString builtIn = QStringLiteral(":/vygis/theme/") + name;
    if (QFileInfo(builtIn).isFile())
        return QIcon(builtIn);
    return QIcon();
}

void VyApplication::setThemeFolder(const QString& folder)
{
    QMutexLocker lock(&themeMutex);
    themeFolderPath = folder;
}

QString VyApplication::themeFolder()
{
    return currentThemeFolder();
}
