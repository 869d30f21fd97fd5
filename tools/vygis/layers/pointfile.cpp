#include "pointfile.h"

#include "vygisutil.h"

#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>
#include <QTextStream>

#include <algorithm>
#include <cmath>

namespace {

bool isNumber(const QString& field)
{
    bool ok = false;
    const double value = field.toDouble(&ok);
    return ok && std::isfinite(value);
}

// One line of a text point file, split into its fields.
struct PointLine
{
    int number = 0;
    QString text;
    QStringList fields;

    bool isPoint() const
    {
        return (fields.size() == 2 || fields.size() == 3)
            && std::all_of(fields.begin(), fields.end(), isNumber);
    }
    bool isHeading() const { return !isNumber(fields.first()); }
    // Names given between delimiters, not words of a heading spaced apart.
    bool couldBeColumnHeader() const
    {
        static const QRegularExpression delimiter(QStringLiteral("[,;\\t]"));
        return (fields.size() == 2 || fields.size() == 3) && text.contains(delimiter)
            && std::none_of(fields.begin(), fields.end(), isNumber);
    }
    // The x and y of a point: the last two fields, after an id where there is one.
    QString x() const { return fields.at(fields.size() - 2); }
    QString y() const { return fields.last(); }
};

// The lines that hold something, comments and empty lines left out.
bool readLines(const QString& path, QList<PointLine>& lines, QString* error)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly | QIODevice::Text)) {
        *error = QStringLiteral("%1: cannot be read (%2)").arg(path, file.errorString());
        return false;
    }
    QTextStream in(&file);
    in.setCodec("UTF-8");
    static const QRegularExpression separators(QStringLiteral("[,;\\s]+"));
    for (int number = 1; !in.atEnd(); ++number) {
        const QString text = in.readLine().trimmed();
        if (text.isEmpty() || text.startsWith(QLatin1Char('#')))
            continue;
        lines.append({number, text, text.split(separators, Qt::SkipEmptyParts)});
    }
    return true;
}

bool readPointText(const QString& path, QStringList& points, QString* error, PointFileNotes& notes)
{
    QList<PointLine> lines;
    if (!readLines(path, lines, error))
        return false;
    int first = 0;
    if (lines.size() >= 2 && lines[0].couldBeColumnHeader() && lines[1].isPoint()
        && lines[1].fields.size() == lines[0].fields.size()) {
        notes.columnHeaderLine = lines[0].number;
        notes.columnHeader = lines[0].text;
        first = 1;
    }
    bool anyPoint = false;
    for (int i = first; i < lines.size(); ++i) {
        const PointLine& line = lines.at(i);
        if (line.isPoint()) {
            points << line.x() << line.y();
            anyPoint = true;
        } else if (line.isHeading()) {
            points << line.text << QString();
        } else {
            notes.skippedLines.append(line.number);
        }
    }
    if (!anyPoint) {
        *error = QStringLiteral("%1: no line holds a point (two numbers x, y or three numbers "
                                "id, x, y)").arg(path);
        return false;
    }
    return true;
}

bool isWorkbook(const QString& path)
{
    const QString suffix = QFileInfo(path).suffix().toLower();
    return suffix == QStringLiteral("xlsx") || suffix == QStringLiteral("xlsm");
}

} // namespace

bool readPointFile(const QString& path, QStringList& points, QString* error, PointFileNotes* notes)
{
    if (!QFileInfo::exists(path)) {
        *error = QStringLiteral("%1: no such file").arg(path);
        return false;
    }
    if (QFileInfo(path).isDir()) {
        *error = QStringLiteral("%1: a folder, not a file of points").arg(path);
        return false;
    }
    PointFileNotes ignored;
    if (!isWorkbook(path))
        return readPointText(path, points, error, notes ? *notes : ignored);
    points = VyExcelUtil::readCoordinateFile2(path);
    if (points.isEmpty()) {
        *error = QStringLiteral("%1: no points").arg(path);
        return false;
    }
    return true;
}
