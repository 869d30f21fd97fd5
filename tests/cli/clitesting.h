#pragma once

// Runs the vygis tool as a user would, in a folder of its own, and reads back what it
// wrote.

#include "vygisutil.h"

#include <QProcess>
#include <QProcessEnvironment>
#include <QStringList>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <vector>

struct ToolRun
{
    int status = -1;
    QString out;
    QString err;
};

class ToolTest : public ::testing::Test
{
protected:
    // Runs vygis without a display, so that it reports on its error stream.
    static ToolRun vygis(const QStringList& arguments, const QByteArray& input = QByteArray())
    {
        QProcess process;
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.remove(QStringLiteral("DISPLAY"));
        environment.remove(QStringLiteral("WAYLAND_DISPLAY"));
        process.setProcessEnvironment(environment);
        process.start(QStringLiteral(VYGIS_TOOL), arguments);
        process.write(input);
        process.closeWriteChannel();
        if (!process.waitForFinished(120000) || process.exitStatus() != QProcess::NormalExit)
            return {};
        return {process.exitCode(), QString::fromUtf8(process.readAllStandardOutput()),
                QString::fromUtf8(process.readAllStandardError())};
    }

    static QString sample(const QString& name)
    {
        return QStringLiteral(VYGIS_SAMPLES_DIR "/") + name;
    }

    QString file(const QString& name) const { return m_dir.filePath(name); }

    // A copy of a sample that a test may change.
    QString copyOf(const QString& name) const
    {
        QFile::copy(sample(name), file(name));
        return file(name);
    }

    static std::vector<QStringList> sheet(const QString& path)
    {
        std::vector<QStringList> rows;
        VyExcelUtil::getExcelData(path, rows);
        return rows;
    }

    static QStringList lines(const QString& text)
    {
        return text.split(QLatin1Char('\n'), Qt::SkipEmptyParts);
    }

private:
    QTemporaryDir m_dir;
};
