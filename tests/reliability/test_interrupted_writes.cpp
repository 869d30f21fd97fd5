// Writes that do not finish: a process killed while it saves, a disk that fills up while
// a drawing is rewritten. The file at the path is the old one, intact, every time.

#include "vygisutil.h"

#include "xlsxdocument.h"

#include <QElapsedTimer>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <QThread>

#include <gtest/gtest.h>

#ifdef Q_OS_UNIX
#include <csignal>
#include <sys/resource.h>
#endif

namespace {

QByteArray bytesOf(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

class InterruptedWrites : public ::testing::Test
{
protected:
    QString path(const QString& name) const { return m_dir.filePath(name); }

    // Waits for the next line the child prints.
    static QByteArray nextLine(QProcess& child)
    {
        while (!child.canReadLine() && child.state() == QProcess::Running)
            child.waitForReadyRead(1000);
        return child.readLine();
    }

    // Starts the child on mode and path and returns once it is about to write.
    void start(QProcess& child, const QString& mode, const QString& target, int rows)
    {
        child.start(QStringLiteral(VYGIS_SAVE_CHILD), {mode, target, QString::number(rows)});
        ASSERT_TRUE(child.waitForStarted(30000));
        ASSERT_EQ(nextLine(child), "writing\n");
    }

    // How long the child takes to write; the file it wrote must then open with its
    // last row.
    qint64 writingTime(const QString& mode, int rows, int lastRow)
    {
        const QString target = path(mode + "-complete.xlsx");
        QProcess child;
        start(child, mode, target, rows);
        QElapsedTimer timer;
        timer.start();
        EXPECT_EQ(nextLine(child), "written\n");
        const qint64 elapsed = timer.elapsed();
        EXPECT_TRUE(child.waitForFinished(600000));
        EXPECT_EQ(child.exitCode(), 0);
        EXPECT_EQ(QXlsx::Document(target).dimension().lastRow(), lastRow);
        return elapsed;
    }

    // Kills the child halfway through its write over an existing workbook, which must
    // then hold what it held before.
    void expectKilledWriteLeavesTheOldFile(const QString& mode, int rows, int lastRow)
    {
        const qint64 duration = writingTime(mode, rows, lastRow);
        const QString target = path(mode + ".xlsx");
        QXlsx::Document old;
        old.write(1, 1, QStringLiteral("the old workbook"));
        ASSERT_TRUE(old.saveAs(target));
        const QByteArray before = bytesOf(target);

        QProcess child;
        start(child, mode, target, rows);
        QThread::msleep(static_cast<unsigned long>(duration / 2));
        child.kill();
        ASSERT_TRUE(child.waitForFinished(30000));
        ASSERT_FALSE(child.readAll().contains("written"))
            << "the write ended before it could be interrupted; give it more rows";
        EXPECT_TRUE(bytesOf(target) == before);
        EXPECT_EQ(QXlsx::Document(target).read(1, 1), QVariant(QStringLiteral("the old workbook")));
    }

    QTemporaryDir m_dir;
};

TEST_F(InterruptedWrites, AWorkbookKilledWhileSavingLeavesTheOldFile)
{
    expectKilledWriteLeavesTheOldFile(QStringLiteral("workbook"), 150000, 150000);
}

TEST_F(InterruptedWrites, AnExportKilledPartWayLeavesTheOldFile)
{
    expectKilledWriteLeavesTheOldFile(QStringLiteral("export"), 150000, 150002);
}

#ifdef Q_OS_UNIX
// A file size limit stands in for a disk that fills up part way through the rewrite.
TEST_F(InterruptedWrites, ADrawingWhoseRewriteRunsOutOfSpaceIsLeftAsItWas)
{
    QByteArray drawing;
    for (int i = 0; drawing.size() < (3 << 20); ++i)
        drawing += "  3\r\nANSI_1252\r\n 10\r\n" + QByteArray::number(i) + "\r\n";
    const QString file = path(QStringLiteral("drawing.dxf"));
    QFile out(file);
    ASSERT_TRUE(out.open(QIODevice::WriteOnly));
    out.write(drawing);
    out.close();

    rlimit saved{};
    ASSERT_EQ(getrlimit(RLIMIT_FSIZE, &saved), 0);
    rlimit limit = saved;
    limit.rlim_cur = 1 << 20;
    const auto oldHandler = std::signal(SIGXFSZ, SIG_IGN);
    ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &limit), 0);
    VyUniversalFunction::replaceDxfCodepage(VyObjects::TsString(file.toStdWString()));
    setrlimit(RLIMIT_FSIZE, &saved);
    std::signal(SIGXFSZ, oldHandler);

    EXPECT_TRUE(bytesOf(file) == drawing);
}
#endif

} // namespace
