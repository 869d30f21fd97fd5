#include "command.h"
#include "commandruns.h"
#include "demo.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>

namespace {

// The bundled samples: beside the installed tool, else in the source tree it was built from.
QString findSamples(const QString& given)
{
    if (!given.isEmpty())
        return given;
    const QString installed = QCoreApplication::applicationDirPath()
        + QStringLiteral("/../share/vygisutil/samples");
    if (QFileInfo::exists(installed + QStringLiteral("/cities.xlsx")))
        return QDir::cleanPath(installed);
    return QStringLiteral(VYGIS_SAMPLES_DIR);
}

// The demo writes two dozen files with common names (countries.gpkg, cities.csv, ...)
// into its folder. It only writes into a new or empty folder, or one an earlier demo
// made, which it marks, so that it never replaces a user's own files of those names.
const QString demoMark = QStringLiteral(".vygis-demo-output");

QString folderRefusal(const QDir& out)
{
    if (QFileInfo(out.path()).exists() && !QFileInfo(out.path()).isDir())
        return QStringLiteral("%1 is a file, not a folder").arg(out.path());
    if (!out.exists() || out.exists(demoMark)
        || out.entryList(QDir::AllEntries | QDir::NoDotAndDotDot | QDir::Hidden).isEmpty())
        return QString();
    return QStringLiteral("%1 holds files an earlier demo did not make; the demo only writes "
                          "into a new or empty folder, or one it made before").arg(out.path());
}

bool markAsDemoFolder(const QDir& out)
{
    QFile mark(out.filePath(demoMark));
    return mark.open(QIODevice::WriteOnly)
        && mark.write("This folder holds the output of 'vygis demo', which may replace its files.\n") > 0;
}

int runDemoOn(const QString& samples, const QString& output)
{
    if (!QFileInfo(samples + QStringLiteral("/cities.xlsx")).isFile()) {
        printError(QStringLiteral("vygis demo: sample data not found in %1").arg(samples));
        return ExitFailure;
    }
    QDir out(output);
    const QString refusal = folderRefusal(out);
    if (!refusal.isEmpty()) {
        printError(QStringLiteral("vygis demo: %1").arg(refusal));
        return ExitFailure;
    }
    if (!out.mkpath(QStringLiteral(".")) || !markAsDemoFolder(out)) {
        printError(QStringLiteral("vygis demo: cannot create the output folder %1").arg(output));
        return ExitFailure;
    }
    printLine(QStringLiteral("vygis demo: sample data from %1").arg(QDir(samples).absolutePath()));
    printLine(QStringLiteral("Output in %1:").arg(out.absolutePath()));

    DemoRun run(samples, out);
    const QList<QPair<QString, void (*)(DemoRun&)>> sections{
        {QStringLiteral("Workbooks and files"), runWorkbookSteps},
        {QStringLiteral("Reading workbooks"), runReaderSteps},
        {QStringLiteral("Field templates"), runTemplateSteps},
        {QStringLiteral("Layers"), runLayerSteps},
        {QStringLiteral("Reports"), runReportSteps}};
    for (const auto& section : sections) {
        printLine(QStringLiteral("\n%1:").arg(section.first));
        section.second(run);
    }
    if (run.failures() > 0) {
        printError(QStringLiteral("vygis demo: %1 step(s) failed").arg(run.failures()));
        return ExitFailure;
    }
    printLine(QStringLiteral("\nEvery step succeeded."));
    return ExitSuccess;
}

} // namespace

int runDemo(const QStringList& arguments)
{
    QString output = QStringLiteral("vygis-demo-output");
    QString samples;
    for (int i = 0; i < arguments.size(); ++i) {
        if (arguments[i] == QStringLiteral("--samples") && i + 1 < arguments.size())
            samples = arguments[++i];
        else if (arguments[i].startsWith(QLatin1Char('-'))) {
            printError(QStringLiteral("vygis demo: unknown option %1").arg(arguments[i]));
            return ExitUsage;
        } else
            output = arguments[i];
    }
    return runDemoOn(findSamples(samples), output);
}
