#pragma once

#include <QString>
#include <QStringList>

// One CSV line: fields quoted where they hold a comma, a quote or a line break.
QString csvLine(const QStringList& fields);
