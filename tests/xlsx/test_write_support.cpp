#include "test_write_support.h"

#include "xlsxdocument.h"
#include "zip/zipreader.h"

#include <QFile>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QProcess>
#include <QTemporaryDir>
#include <QUrl>

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

namespace {

QByteArray run(const QString& program, const QStringList& arguments, QString* error, int timeoutMs)
{
    QProcess process;
    process.start(program, arguments);
    if (!process.waitForFinished(timeoutMs) || process.exitStatus() != QProcess::NormalExit
        || process.exitCode() != 0) {
        *error = QString::fromUtf8(process.readAllStandardError());
        if (error->isEmpty())
            *error = QFileInfo(program).fileName() + QStringLiteral(" failed");
        return QByteArray();
    }
    error->clear();
    return process.readAllStandardOutput();
}

} // namespace

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

bool haveOffice()
{
    return QFileInfo(QStringLiteral(VYGIS_SOFFICE)).isExecutable();
}

QByteArray runPython(const QStringList& arguments, QString* error, int timeoutMs)
{
    QStringList args = arguments;
    if (!args.isEmpty() && args.first().endsWith(QLatin1String(".py")))
        args.first() = QStringLiteral(VYGIS_TEST_SOURCE_DIR "/interop/") + args.first();
    return run(QStringLiteral(VYGIS_PYTHON3), args, error, timeoutMs);
}

bool convertByOffice(const QStringList& files, const QString& filter, const QString& outDir, QString* error)
{
    // A private profile, so that a desktop session of LibreOffice is never in the way.
    const QTemporaryDir profile;
    run(QStringLiteral(VYGIS_SOFFICE),
        QStringList{"-env:UserInstallation=" + QUrl::fromLocalFile(profile.path()).toString(), "--headless",
                    "--convert-to", filter, "--outdir", outDir} + files, error, 180000);
    return error->isEmpty();
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
