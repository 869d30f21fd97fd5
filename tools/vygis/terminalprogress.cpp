#include "terminalprogress.h"

#include <cstdio>

#ifdef Q_OS_WIN
#include <io.h>
#else
#include <unistd.h>
#endif

namespace {

const qint64 FirstShownAfter = 1000;   // milliseconds: short jobs show nothing
const qint64 ShownEvery = 200;

bool errorStreamIsTerminal()
{
#ifdef Q_OS_WIN
    return _isatty(_fileno(stderr)) != 0;
#else
    return isatty(STDERR_FILENO) != 0;
#endif
}

} // namespace

TerminalProgress::TerminalProgress(const QString& prefix)
    : m_prefix(prefix), m_terminal(errorStreamIsTerminal())
{
    m_running.start();
}

TerminalProgress::~TerminalProgress()
{
    finish();
}

void TerminalProgress::show(long long done, long long total, const QString& what)
{
    if (!m_terminal)
        return;
    const qint64 now = m_running.elapsed();
    if (now < FirstShownAfter || (m_shown && now - m_lastShown < ShownEvery))
        return;
    m_lastShown = now;
    m_shown = true;
    const int percent = total > 0 ? static_cast<int>(done * 100 / total) : 100;
    const QByteArray line = QStringLiteral("%1%2 of %3 %4 (%5%)")
                                .arg(m_prefix).arg(done).arg(total).arg(what).arg(percent)
                                .toLocal8Bit();
    std::fprintf(stderr, "\r%s", line.constData());
    std::fflush(stderr);
}

void TerminalProgress::finish()
{
    if (!m_shown)
        return;
    m_shown = false;
    std::fputc('\n', stderr);
    std::fflush(stderr);
}
