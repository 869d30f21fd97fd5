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

TEST_F(WaitWithApplicationTest, QuickWorkRunsOffTheGuiThreadAndShowsNothing)
{
    VyWaitDialog dialog(QStringLiteral("Exporting..."), nullptr);
    std::vector<int> written;
    QThread* workThread = nullptr;
    dialog.WaitFor([&] {
        written.assign(500, 7);
        workThread = QThread::currentThread();
    });
    EXPECT_EQ(written.size(), 500u);
    EXPECT_NE(workThread, nullptr);
    EXPECT_NE(workThread, QThread::currentThread());
    EXPECT_FALSE(dialog.wasShown());
    EXPECT_FALSE(anyDialogVisible());
}

TEST_F(WaitWithApplicationTest, LongWorkShowsTheDialogWhileTheGuiThreadServesEvents)
{
    VyWaitDialog dialog(QStringLiteral("Exporting..."), nullptr);
    dialog.setShowDelay(0);
    bool visibleDuringWork = false;
    int ticks = 0;
    // The timer runs on the GUI thread while the work sleeps.
    QTimer probe;
    QObject::connect(&probe, &QTimer::timeout, [&] {
        visibleDuringWork = visibleDuringWork || anyDialogVisible();
        ++ticks;
    });
    probe.start(5);
    dialog.WaitFor([] { QThread::msleep(150); });
    EXPECT_TRUE(dialog.wasShown());
    EXPECT_TRUE(visibleDuringWork);
    EXPECT_GT(ticks, 3);
    EXPECT_FALSE(anyDialogVisible());
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
