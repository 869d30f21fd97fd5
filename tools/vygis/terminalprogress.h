#pragma once

#include <QElapsedTimer>
#include <QString>

// One line of progress on standard error, such as "vygis join: reading owners.xlsx" or
// "vygis join: 120000 of 200000 features (60%)", rewritten in place and wiped when the
// job ends, so that only the job's own messages stay. Shown only when standard error
// is a terminal and the run is not quiet: a log or a pipe gets no progress lines.
class TerminalProgress
{
public:
    explicit TerminalProgress(const QString& prefix);
    ~TerminalProgress();

    TerminalProgress(const TerminalProgress&) = delete;
    TerminalProgress& operator=(const TerminalProgress&) = delete;

    // What the job does now.
    void step(const QString& text);
    // How far it got: "done of total what (percent)", or "done what" for a negative
    // total, one not known beforehand. Cheap enough to call for every item.
    void count(long long done, long long total, const QString& what);
    // Wipes the line, if one is shown.
    void finish();
    // Whether the progress goes anywhere: false on a pipe, in a log, or when quiet.
    bool isShown() const { return m_terminal; }

private:
    void show(const QString& text);

    QString m_prefix;
    bool m_terminal;
    int m_shownLength = 0;
    bool m_counting = false;   // the line shows a count
    QElapsedTimer m_sinceShown;
};

// Whether standard output is a terminal: there the lines a command prints would run
// into a progress line on standard error, and are progress enough themselves.
bool outputIsTerminal();
