#ifndef VYGIS_VYWAITDIALOG_H
#define VYGIS_VYWAITDIALOG_H

#include "vygishost_export.h"

#include <QString>

#include <functional>
#include <memory>

class QWidget;

// Keeps the user informed while a long piece of work runs.
//
// WaitFor runs the work to its end and returns only then; whatever the work
// wrote is visible to the caller afterwards, and an exception it throws is
// thrown again from WaitFor. How the wait looks depends on the process:
//
// - in a widget application, called on its GUI thread: the work runs on a
//   worker thread while the GUI thread keeps painting. If the work is still
//   running after the show delay, a modal busy dialog with the text appears.
//   User input that arrives during the wait is held back and delivered after
//   it, so the user cannot start anything while the work runs; timers and
//   other events keep being served;
// - in a widget application, called on another thread: the work simply runs;
// - without a widget application, with the error stream on a terminal (and
//   isShownOnTerminal): the work runs on a worker thread and, once the show
//   delay has passed, the text and a spinner are shown on that terminal;
// - otherwise the work simply runs on the calling thread.
class VYGIS_HOST_EXPORT VyWaitDialog
{
public:
    static const int DefaultShowDelay = 500;   // milliseconds

    // Whether waits without a widget application show their text and spinner on a
    // terminal (the default). A program that shows its own progress there, with
    // counts, turns this off for the whole process; the work then simply runs.
    static void setShownOnTerminal(bool shown);
    static bool isShownOnTerminal();

    explicit VyWaitDialog(const QString& text, QWidget* parent = nullptr);
    ~VyWaitDialog();   // closes the dialog if it is still shown

    VyWaitDialog(const VyWaitDialog&) = delete;
    VyWaitDialog& operator=(const VyWaitDialog&) = delete;

    void WaitFor(const std::function<void()>& work);

    QString text() const;
    // Work shorter than this never shows anything.
    void setShowDelay(int msecs);
    int showDelay() const;
    // Whether the last WaitFor had to show its dialog or terminal line.
    bool wasShown() const;

private:
    struct Private;
    std::unique_ptr<Private> d;
};

#endif // VYGIS_VYWAITDIALOG_H
