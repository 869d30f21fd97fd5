#include "vywaitdialog.h"

#include <QApplication>
#include <QDialog>
#include <QEventLoop>
#include <QLabel>
#include <QPointer>
#include <QProgressBar>
#include <QThread>
#include <QTimer>
#include <QVBoxLayout>
#include <QWidget>

#include <atomic>
#include <cstdio>
#include <exception>

#ifdef Q_OS_WIN
#include <io.h>
#else
#include <unistd.h>
#endif

namespace {

bool errorStreamIsTerminal()
{
#ifdef Q_OS_WIN
    return _isatty(_fileno(stderr)) != 0;
#else
    return isatty(STDERR_FILENO) != 0;
#endif
}

std::atomic<bool> shownOnTerminal{true};

const QApplication* widgetApplication()
{
    return qobject_cast<QApplication*>(QCoreApplication::instance());
}

// The work, wrapped so that an exception crosses back to the waiting thread.
class Worker
{
public:
    explicit Worker(const std::function<void()>& work)
        : m_thread(QThread::create([this, &work] { run(work); }))
    {
    }

    ~Worker()
    {
        if (m_thread->isRunning())
            m_thread->wait();
    }

    Worker(const Worker&) = delete;
    Worker& operator=(const Worker&) = delete;

    QThread* thread() const { return m_thread.get(); }

    void finish()
    {
        m_thread->wait();
        if (m_failure)
            std::rethrow_exception(m_failure);
    }

private:
    void run(const std::function<void()>& work)
    {
        try {
            work();
        } catch (...) {
            m_failure = std::current_exception();
        }
    }

    std::exception_ptr m_failure;
    std::unique_ptr<QThread> m_thread;
};

QDialog* createBusyDialog(const QString& text, QWidget* parent)
{
    auto* dialog = new QDialog(parent, Qt::Dialog | Qt::CustomizeWindowHint | Qt::WindowTitleHint);
    dialog->setWindowTitle(QApplication::applicationDisplayName());
    dialog->setWindowModality(Qt::ApplicationModal);
    dialog->setAttribute(Qt::WA_DeleteOnClose, false);
    auto* layout = new QVBoxLayout(dialog);
    layout->addWidget(new QLabel(text, dialog));
    auto* bar = new QProgressBar(dialog);
    bar->setRange(0, 0);   // busy: the work's length is unknown
    bar->setTextVisible(false);
    layout->addWidget(bar);
    dialog->setMinimumWidth(300);
    return dialog;
}

} // namespace

struct VyWaitDialog::Private
{
    QString text;
    QPointer<QWidget> parent;
    QPointer<QDialog> dialog;
    int showDelay = DefaultShowDelay;
    bool shown = false;

    void waitWithDialog(const std::function<void()>& work);
    void waitOnTerminal(const std::function<void()>& work);
    void showDialog();
    void closeDialog();
};

void VyWaitDialog::Private::waitWithDialog(const std::function<void()>& work)
{
    Worker worker(work);
    QEventLoop loop;
    QObject::connect(worker.thread(), &QThread::finished, &loop, &QEventLoop::quit);
    QTimer showTimer;
    showTimer.setSingleShot(true);
    QObject::connect(&showTimer, &QTimer::timeout, &loop, [this] { showDialog(); });
    worker.thread()->start();
    showTimer.start(showDelay);
    // Queued from the worker, so a work that ends before exec still ends it.
    loop.exec(QEventLoop::ExcludeUserInputEvents);
    showTimer.stop();
    closeDialog();
    worker.finish();
}

void VyWaitDialog::Private::waitOnTerminal(const std::function<void()>& work)
{
    Worker worker(work);
    worker.thread()->start();
    const unsigned long delay = static_cast<unsigned long>(qMax(showDelay, 0));
    if (!worker.thread()->wait(delay)) {
        shown = true;
        const QByteArray line = text.toLocal8Bit();
        const char spinner[] = {'|', '/', '-', '\\'};
        int tick = 0;
        do {
            std::fprintf(stderr, "\r%s %c", line.constData(), spinner[tick++ % 4]);
            std::fflush(stderr);
        } while (!worker.thread()->wait(200));
        std::fprintf(stderr, "\r%s done\n", line.constData());
        std::fflush(stderr);
    }
    worker.finish();
}

void VyWaitDialog::Private::showDialog()
{
    if (!dialog)
        dialog = createBusyDialog(text, parent);
    dialog->show();
    dialog->raise();
    shown = true;
}

void VyWaitDialog::Private::closeDialog()
{
    if (dialog)
        dialog->hide();
}

VyWaitDialog::VyWaitDialog(const QString& text, QWidget* parent)
    : d(new Private)
{
    d->text = text;
    d->parent = parent;
}

VyWaitDialog::~VyWaitDialog()
{
    // A parent, if any, would otherwise keep the hidden dialog until it dies.
    delete d->dialog.data();
}

void VyWaitDialog::WaitFor(const std::function<void()>& work)
{
    d->shown = false;
    if (!work)
        return;
    const QApplication* application = widgetApplication();
    if (application && QThread::currentThread() == application->thread())
        d->waitWithDialog(work);
    else if (!application && shownOnTerminal && errorStreamIsTerminal())
        d->waitOnTerminal(work);
    else
        work();
}

void VyWaitDialog::setShownOnTerminal(bool shown)
{
    shownOnTerminal = shown;
}

bool VyWaitDialog::isShownOnTerminal()
{
    return shownOnTerminal;
}

QString VyWaitDialog::text() const
{
    return d->text;
}

void VyWaitDialog::setShowDelay(int msecs)
{
    d->showDelay = qMax(msecs, 0);
}

int VyWaitDialog::showDelay() const
{
    return d->showDelay;
}

bool VyWaitDialog::wasShown() const
{
    return d->shown;
}
