#include "pointfile.h"

#include "vygisutil.h"

#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>
#include <QTextStream>

namespace {

// A line of two numbers is a point; any other line, trimmed, is a heading, which
// starts a new group of points. Empty lines and lines from "#" are passed over.
bool readPointText(const QString& path, QStringList& points, QString* error)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly | QIODevice::Text)) {
        *error = QStringLiteral("%1: cannot be read (%2)").arg(path, file.errorString());
        return false;
    }
    QTextStream in(&file);
    in.setCodec("UTF-8");
    static const QRegularExpression separators(QStringLiteral("[,;\\s]+"));
    while (!in.atEnd()) {
        const QString line = in.readLine().trimmed();
        if (line.isEmpty() || line.startsWith(QLatin1Char('#')))
            continue;
        const QStringList parts = line.split(separators, Qt::SkipEmptyParts);
        bool xIsNumber = false;
        bool yIsNumber = false;
        if (parts.size() == 2) {
            parts[0].toDouble(&xIsNumber);
            parts[1].toDouble(&yIsNumber);
        }
        if (xIsNumber && yIsNumber)
            points << parts[0] << parts[1];
        else
            points << line << QString();
    }
    return true;
}

bool isWorkbook(const QString& path)
{
    const QString suffix = QFileInfo(path).suffix().toLower();
    return suffix == QStringLiteral("xlsx") || suffix == QStringLiteral("xlsm");
}

} // namespace

bool readPointFile(const QString& path, QStringList& points, QString* error)
{
    if (!QFileInfo(path).isFile()) {
        *error = QStringLiteral("%1: no such file").arg(path);
        return false;
    }
    if (isWorkbook(path))
        points = VyExcelUtil::readCoordinateFile2(path);
    else if (!readPointText(path, points, error))
        return false;
    if (points.isEmpty()) {
        *error = QStringLiteral("%1: no points").arg(path);
        return false;
    }
    return true;
}

