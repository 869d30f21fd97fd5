#include "test_write_support.h"

#include "xlsxdocument.h"
#include "zip/zipreader.h"

#include <QFile>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QProcess>
#include <QTemporaryDir>

namespace writetest {

QString scratchPath(const QString& name)
{
    static QTemporaryDir folder;
    return folder.filePath(name);
}

QString saved(const QXlsx::Document& document, const QString& name)
{
    const QString path = scratchPath(name);
    return document.saveAs(path) ? path : QString();
}

namespace {

QByteArray fileBytes(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

} // namespace

QStringList entryNames(const QString& path)
{
    const QByteArray bytes = fileBytes(path);
    QXlsx::detail::ZipReader zip{QXlsx::detail::ReadLimits()};
    QStringList names;
    if (zip.open(bytes.constData(), bytes.size(), nullptr))
        for (int i = 0; i < zip.entryCount(); ++i)
            names << zip.entryName(i);
    return names;
}

QByteArray entry(const QString& path, const QString& name)
{
    const QByteArray bytes = fileBytes(path);
    QXlsx::detail::ZipReader zip{QXlsx::detail::ReadLimits()};
    QByteArray data;
    if (zip.open(bytes.constData(), bytes.size(), nullptr) && zip.indexOf(name) >= 0)
        zip.readAll(zip.indexOf(name), &data, nullptr);
    return data;
}

bool haveOpenpyxl()
{
    static const bool have = [] {
        QString error;
        return QFileInfo(QStringLiteral(VYGIS_PYTHON3)).isExecutable()
               && runPython({QStringLiteral("-c"), QStringLiteral("import openpyxl")}, &error).isEmpty()
               && error.isEmpty();
    }();
    return have;
}

QByteArray runPython(const QStringList& arguments, QString* error, int timeoutMs)
{
    QStringList args = arguments;
    if (!args.isEmpty() && args.first().endsWith(QLatin1String(".py")))
        args.first() = QStringLiteral(VYGIS_TEST_SOURCE_DIR "/interop/") + args.first();
    QProcess python;
    python.start(QStringLiteral(VYGIS_PYTHON3), args);
    if (!python.waitForFinished(timeoutMs) || python.exitStatus() != QProcess::NormalExit
        || python.exitCode() != 0) {
        *error = QString::fromUtf8(python.readAllStandardError());
        if (error->isEmpty())
            *error = QStringLiteral("python failed");
        return QByteArray();
    }
    error->clear();
    return python.readAllStandardOutput();
}

QJsonObject openpyxlDump(const QString& path)
{
    QString error;
    const QByteArray json = runPython({QStringLiteral("openpyxl_dump.py"), path}, &error);
    if (!error.isEmpty())
        qWarning("openpyxl: %s", qPrintable(error));
    return QJsonDocument::fromJson(json).object();
}

QJsonObject dumpedCell(const QJsonObject& dump, int sheet, const QString& reference)
{
    return dump.value(QLatin1String("sheets")).toArray().at(sheet).toObject()
        .value(QLatin1String("cells")).toObject().value(reference).toObject();
}

} // namespace writetest
