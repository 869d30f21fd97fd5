#pragma once

#include <QElapsedTimer>
#include <QString>

// "vygis join: 120000 of 200000 features (60%)" on standard error, rewritten in place,
// for a job that has run a second already, and only when standard error is a terminal:
// a log or a pipe gets no progress lines.
class TerminalProgress
{
public:
    explicit TerminalProgress(const QString& prefix);
    ~TerminalProgress();

    TerminalProgress(const TerminalProgress&) = delete;
    TerminalProgress& operator=(const TerminalProgress&) = delete;

    // Cheap enough to call for every item.
    void show(long long done, long long total, const QString& what);
    // Ends the progress line, if one was shown.
    void finish();

private:
    QString m_prefix;
    bool m_terminal;
    bool m_shown = false;
    QElapsedTimer m_running;
    qint64 m_lastShown = 0;
};
