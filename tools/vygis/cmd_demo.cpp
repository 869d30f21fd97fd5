#include "command.h"
#include "csv.h"
#include "vygisutil.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTextStream>

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

bool writeCsv(const std::vector<QStringList>& rows, const QString& path)
{
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate | QIODevice::Text))
        return false;
    QTextStream out(&file);
    out.setCodec("UTF-8");
    for (const QStringList& row : rows)
        out << csvLine(row) << '\n';
    return true;
}

// A step of the demo: what it made, and what the file holds.
void report(const QDir& out, const QString& file, const QString& holds)
{
    printLine(QStringLiteral("  %1\n      %2").arg(out.filePath(file), holds));
}

int runDemo(const QString& samples, const QString& output)
{
    const QString cities = samples + QStringLiteral("/cities.xlsx");
    if (!QFileInfo(cities).isFile()) {
        printError(QStringLiteral("vygis demo: sample data not found in %1").arg(samples));
        return ExitFailure;
    }
    QDir out(output);
    if (!out.mkpath(QStringLiteral("."))) {
        printError(QStringLiteral("vygis demo: cannot create the output folder %1").arg(output));
        return ExitFailure;
    }
    printLine(QStringLiteral("vygis demo: sample data from %1").arg(QDir(samples).absolutePath()));
    printLine(QStringLiteral("Output in %1:").arg(out.absolutePath()));

    std::vector<QStringList> rows;
    VyExcelUtil::getExcelData(cities, rows);
    if (rows.empty() || !writeCsv(rows, out.filePath(QStringLiteral("cities.csv")))) {
        printError(QStringLiteral("vygis demo: could not read %1").arg(cities));
        return ExitFailure;
    }
    report(out, QStringLiteral("cities.csv"),
           QStringLiteral("the sheet of cities.xlsx read whole: %1 rows of %2 columns (%3)")
               .arg(rows.size()).arg(rows.front().size()).arg(rows.front().join(QStringLiteral(", "))));

    const QString blank = out.filePath(QStringLiteral("blank.xlsx"));
    QFile::remove(blank);
    VyExcelUtil::createExcel(blank);
    report(out, QStringLiteral("blank.xlsx"), QStringLiteral("a new workbook with one empty sheet \"Sheet1\""));

    const QString cleared = out.filePath(QStringLiteral("cleared.xlsx"));
    QFile::remove(cleared);
    QFile::copy(cities, cleared);
    const bool wasCleared = VyExcelUtil::clearExcel(cleared);
    report(out, QStringLiteral("cleared.xlsx"),
           wasCleared ? QStringLiteral("a copy of cities.xlsx reset to one empty sheet")
                      : QStringLiteral("could not be reset"));
    return wasCleared ? ExitSuccess : ExitFailure;
}

} // namespace

Command demoCommand()
{
    Command command;
    command.name = QStringLiteral("demo");
    command.summary = QStringLiteral("run the library's jobs on the bundled sample data");
    command.usage = QStringLiteral(
        "Usage: vygis demo [OUTPUT_FOLDER] [--samples FOLDER]\n\n"
        "Runs the library on the sample data bundled with the project and writes every\n"
        "result into OUTPUT_FOLDER (default: vygis-demo-output in the current folder),\n"
        "then prints what each file holds.");
    command.run = [](const QStringList& arguments) {
        QString output = QStringLiteral("vygis-demo-output");
        QString samples;
        for (int i = 0; i < arguments.size(); ++i) {
            if (arguments[i] == QStringLiteral("--samples") && i + 1 < arguments.size())
                samples = arguments[++i];
            else if (arguments[i].startsWith(QLatin1Char('-'))) {
                printError(QStringLiteral("vygis demo: unknown option %1").arg(arguments[i]));
                return int(ExitUsage);
            } else
                output = arguments[i];
        }
        return runDemo(findSamples(samples), output);
    };
    return command;
}
