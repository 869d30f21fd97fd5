#include "layermodule.h"

#include "arguments.h"
#include "command.h"
#include "layerentry.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QLibrary>

namespace {

// The build places the module where an installed tree has it, VYGIS_LAYER_MODULE seen
// from the executable's folder, so that one path serves both and no search can pick up
// a module of another build.
QString layerModulePath()
{
    const QDir programFolder(QCoreApplication::applicationDirPath());
    return QDir::cleanPath(programFolder.absoluteFilePath(QStringLiteral(VYGIS_LAYER_MODULE)));
}

// QLibrary's message names the file again before the loader's own words, which are
// all that is left to say once the message has named the file.
QString loaderReason(const QLibrary& module)
{
    QString reason = module.errorString();
    const QString qtPrefix = QStringLiteral("Cannot load library %1: ").arg(module.fileName());
    if (reason.startsWith(qtPrefix))
        reason = reason.mid(qtPrefix.size());
    if (reason.startsWith(QLatin1Char('(')) && reason.endsWith(QLatin1Char(')')))
        reason = reason.mid(1, reason.size() - 2);
    const QString loaderPrefix = module.fileName() + QStringLiteral(": ");
    return reason.startsWith(loaderPrefix) ? reason.mid(loaderPrefix.size()) : reason;
}

// The module's entry point; null with the reason in error when the module cannot be
// loaded. The module stays loaded for the rest of the run: QLibrary unloads only when
// asked to.
LayerCommandEntry layerCommandEntry(QLibrary& module, QString* error)
{
    // Every symbol bound on loading: a module of another build that misses one of the
    // executable's functions fails here, with its name, rather than part way through.
    module.setLoadHints(QLibrary::ResolveAllSymbolsHint);
    // QLibrary would go on to try other names and report the last of them.
    if (!QFileInfo::exists(module.fileName())) {
        *error = QStringLiteral("no such file");
        return nullptr;
    }
    if (!module.load()) {
        *error = loaderReason(module);
        return nullptr;
    }
    const auto entry = reinterpret_cast<LayerCommandEntry>(module.resolve(layerCommandEntryName));
    if (!entry)
        *error = QStringLiteral("it has no entry point %1").arg(QLatin1String(layerCommandEntryName));
    return entry;
}

} // namespace

int runLayerCommand(const QString& name, const QStringList& arguments)
{
    QLibrary module(layerModulePath());
    QString error;
    const LayerCommandEntry entry = layerCommandEntry(module, &error);
    const QString shownPath = QDir::toNativeSeparators(layerModulePath());
    if (!entry)
        return failure(name, QStringLiteral("cannot load the layer commands from %1: %2").arg(shownPath, error));
    const int status = entry(name.toUtf8().constData(), &arguments);
    if (status == UnknownLayerCommand)
        return failure(name, QStringLiteral("%1 holds no command \"%2\"; it belongs to another build of vygis")
                                 .arg(shownPath, name));
    return status;
}
