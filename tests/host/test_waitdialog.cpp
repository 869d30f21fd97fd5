#include "hosttesting.h"

#include "vywaitdialog.h"

#include <QDialog>
#include <QThread>
#include <QTimer>

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

TEST(WaitWithoutApplicationTest, RunsTheWorkToItsEnd)
{
    ASSERT_EQ(QCoreApplication::instance(), nullptr);
    VyWaitDialog dialog(QStringLiteral("Exporting..."), nullptr);
    int rows = 0;
    dialog.WaitFor([&rows] {
        for (int i = 0; i < 1000; ++i)
            ++rows;
    });
    EXPECT_EQ(rows, 1000);
    EXPECT_FALSE(dialog.wasShown());
}

TEST(WaitWithoutApplicationTest, EmptyWorkIsNothingToWaitFor)
{
    VyWaitDialog dialog(QStringLiteral("Exporting..."), nullptr);
    dialog.WaitFor(std::function<void()>());
    EXPECT_FALSE(dialog.wasShown());
}

TEST_F(WaitWithApplicationTest, QuickWorkShowsNothing)
{
    VyWaitDialog dialog(QStringLiteral("Exporting..."), nullptr);
    std::vector<int> written;
    dialog.WaitFor([&written] { written.assign(500, 7); });
    EXPECT_EQ(written.size(), 500u);
    EXPECT_FALSE(dialog.wasShown());
    EXPECT_FALSE(anyDialogVisible());
}

TEST_F(WaitWithApplicationTest, WorkRunsOffTheGuiThread)
{
    VyWaitDialog dialog(QStringLiteral("Exporting..."), nullptr);
    QThread* workThread = nullptr;
    dialog.WaitFor([&workThread] { workThread = QThread::currentThread(); });
    EXPECT_NE(workThread, nullptr);
    EXPECT_NE(workThread, QThread::currentThread());
}

TEST_F(WaitWithApplicationTest, LongWorkShowsTheDialogUntilItEnds)
{
    VyWaitDialog dialog(QStringLiteral("Exporting..."), nullptr);
    dialog.setShowDelay(0);
    bool visibleDuringWork = false;
    // The timer runs on the GUI thread while the work sleeps.
    QTimer probe;
    QObject::connect(&probe, &QTimer::timeout, [&visibleDuringWork] {
        visibleDuringWork = visibleDuringWork || anyDialogVisible();
    });
    probe.start(5);
    dialog.WaitFor([] { QThread::msleep(150); });
    EXPECT_TRUE(dialog.wasShown());
    EXPECT_TRUE(visibleDuringWork);
    EXPECT_FALSE(anyDialogVisible());
}

TEST_F(WaitWithApplicationTest, GuiThreadKeepsServingEvents)
{
    VyWaitDialog dialog(QStringLiteral("Exporting..."), nullptr);
    int ticks = 0;
    QTimer timer;
    QObject::connect(&timer, &QTimer::timeout, [&ticks] { ++ticks; });
    timer.start(5);
    dialog.WaitFor([] { QThread::msleep(100); });
    EXPECT_GT(ticks, 3);
}

TEST_F(WaitWithApplicationTest, DestructorRemovesTheDialog)
{
    {
        VyWaitDialog dialog(QStringLiteral("Exporting..."), nullptr);
        dialog.setShowDelay(0);
        dialog.WaitFor([] { QThread::msleep(50); });
        ASSERT_TRUE(dialog.wasShown());
    }
    EXPECT_TRUE(QApplication::topLevelWidgets().isEmpty());
}

TEST_F(WaitWithApplicationTest, ExceptionsOfTheWorkReachTheCaller)
{
    VyWaitDialog dialog(QStringLiteral("Exporting..."), nullptr);
    EXPECT_THROW(dialog.WaitFor([] { throw std::runtime_error("disk full"); }), std::runtime_error);
}
