#pragma once

// Runs the vygis tool as a user would, in a folder of its own, and reads back what it
// wrote.

#include "vygisutil.h"

#include <QFile>
#include <QMap>
#include <QProcess>
#include <QProcessEnvironment>
#include <QStringList>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <vector>

// The bytes of a file; empty when it cannot be read.
inline QByteArray bytesOf(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

inline void writeBytes(const QString& path, const QByteArray& bytes)
{
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
    file.write(bytes);
}

// A compound document holding the directory entries streams (UTF-16) as Excel writes
// them: EncryptionInfo and EncryptedPackage for a workbook with a password to open,
// Workbook for the Excel 97-2003 format.
inline QByteArray compoundDocument(const QStringList& streams)
{
    QByteArray bytes("\xD0\xCF\x11\xE0\xA1\xB1\x1A\xE1", 8);
    bytes.append(QByteArray(504, '\0'));
    for (const QString& stream : streams)
        bytes.append(QByteArray(reinterpret_cast<const char*>(stream.utf16()), stream.size() * 2)
                         .leftJustified(128, '\0'));
    return bytes.leftJustified(4096, '\0');
}

// An OpenDocument spreadsheet as far as its first bytes tell, under any name.
inline void writeOpenDocumentSpreadsheet(const QString& path)
{
    const QString script = "import sys, zipfile\n"
                           "with zipfile.ZipFile(sys.argv[1], 'w') as z:\n"
                           "    z.writestr('mimetype', 'application/vnd.oasis.opendocument.spreadsheet')\n"
                           "    z.writestr('content.xml', '<office:document-content/>')\n";
    ASSERT_EQ(QProcess::execute("python3", {"-c", script, path}), 0);
}

struct ToolRun
{
    int status = -1;
    QString out;
    QString err;
};

class ToolTest : public ::testing::Test
{
protected:
    // Runs program without a display, so that it reports on its error stream, with extra
    // variables in its environment.
    static ToolRun runProgram(const QString& program, const QStringList& arguments,
                              const QMap<QString, QString>& variables = {}, const QByteArray& input = {})
    {
        QProcess process;
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.remove("DISPLAY");
        environment.remove("WAYLAND_DISPLAY");
        for (auto variable = variables.cbegin(); variable != variables.cend(); ++variable)
            environment.insert(variable.key(), variable.value());
        process.setProcessEnvironment(environment);
        process.start(program, arguments);
        process.write(input);
        process.closeWriteChannel();
        if (!process.waitForFinished(120000) || process.exitStatus() != QProcess::NormalExit)
            return {};
        return {process.exitCode(), QString::fromUtf8(process.readAllStandardOutput()),
                QString::fromUtf8(process.readAllStandardError())};
    }

    static ToolRun vygis(const QStringList& arguments, const QByteArray& input = QByteArray())
    {
        return runProgram(QStringLiteral(VYGIS_TOOL), arguments, {}, input);
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
