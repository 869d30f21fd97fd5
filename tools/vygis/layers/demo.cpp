#include "demo.h"

#include "command.h"

#include <QFile>

QString DemoRun::copyOfSample(const QString& name, const QString& copyName) const
{
    const QString copy = output(copyName);
    QFile::remove(copy);
    if (!QFile::copy(sample(name), copy))
        return QString();
    // Samples may come from a read-only installation; the copy is the demo's own.
    QFile::setPermissions(copy, QFile::permissions(copy) | QFile::WriteOwner);
    return copy;
}

void DemoRun::made(const QString& file, const QString& holds) const
{
    printLine(QStringLiteral("  %1\n      %2").arg(m_output.filePath(file), holds));
}

void DemoRun::found(const QString& what) const
{
    printLine(QStringLiteral("  (%1)").arg(what));
}

void DemoRun::failed(const QString& what)
{
    ++m_failures;
    printError(QStringLiteral("vygis demo: %1").arg(what));
}
