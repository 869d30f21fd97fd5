#include "hosttesting.h"

#include "vywaitdialog.h"

#include <QDialog>
#include <QElapsedTimer>
#include <QThread>
#include <QTimer>

#include <atomic>
#include <stdexcept>

namespace {

using WaitWithApplicationTest = WidgetApplicationTest;

bool anyDialogVisible()
{
    for (QWidget* widget : QApplication::topLevelWidgets()) {
        if (qobject_cast<QDialog*>(widget) && widget->isVisible())
            return true;
    }
    return false;
}

} // namespace

TEST(WaitWithoutApplicationTest, RunsTheWorkToItsEndWithoutADialog)
{
    ASSERT_EQ(QCoreApplication::instance(), nullptr);
    VyWaitDialog dialog(QStringLiteral("Exporting..."), nullptr);
    int rows = 0;
    dialog.WaitFor([&rows] {
        for (int i = 0; i < 1000; ++i)
            ++rows;
    });
    dialog.WaitFor(std::function<void()>());   // empty work is nothing to wait for
    EXPECT_EQ(rows, 1000);
    EXPECT_FALSE(dialog.wasShown());
}

TEST_F(WaitWithApplicationTest, QuickWorkRunsOffTheGuiThreadShowsNothingAndPassesExceptionsOn)
{
    VyWaitDialog dialog(QStringLiteral("Exporting..."), nullptr);
    QThread* workThread = nullptr;
    dialog.WaitFor([&] { workThread = QThread::currentThread(); });
    EXPECT_NE(workThread, nullptr);
    EXPECT_NE(workThread, QThread::currentThread());
    EXPECT_FALSE(dialog.wasShown());
    EXPECT_FALSE(anyDialogVisible());
    EXPECT_THROW(dialog.WaitFor([] { throw std::runtime_error("disk full"); }), std::runtime_error);
}

// The timer runs on the GUI thread while the work sleeps; the dialog goes with its owner.
TEST_F(WaitWithApplicationTest, LongWorkShowsTheDialogWhileTheGuiThreadServesEvents)
{
    std::atomic<bool> visibleDuringWork{false};
    std::atomic<int> ticks{0};
    QTimer probe;
    QObject::connect(&probe, &QTimer::timeout, [&] {
        if (anyDialogVisible())
            visibleDuringWork = true;
        ++ticks;
    });
    probe.start(5);
    {
        VyWaitDialog dialog(QStringLiteral("Exporting..."), nullptr);
        dialog.setShowDelay(0);
        // The work lasts until the GUI thread has served the timer a few times with the
        // dialog up, however slowly a loaded machine runs it; ten seconds at the most.
        dialog.WaitFor([&] {
            QElapsedTimer waited;
            waited.start();
            while ((ticks < 4 || !visibleDuringWork) && waited.elapsed() < 10000)
                QThread::msleep(5);
        });
        EXPECT_TRUE(dialog.wasShown());
        EXPECT_TRUE(visibleDuringWork);
        EXPECT_GT(ticks, 3);
        EXPECT_FALSE(anyDialogVisible());
    }
    EXPECT_TRUE(QApplication::topLevelWidgets().isEmpty());
}
