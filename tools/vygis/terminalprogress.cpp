#include "terminalprogress.h"

#include <cstdio>

#ifdef Q_OS_WIN
#include <io.h>
#else
#include <unistd.h>
#endif

namespace {

const qint64 ShownEvery = 200;   // milliseconds

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
}

TerminalProgress::~TerminalProgress()
{
    finish();
}

void TerminalProgress::step(const QString& text)
{
    if (m_terminal)
        show(text);
}

void TerminalProgress::count(long long done, long long total, const QString& what)
{
    if (!m_terminal || (m_sinceShown.isValid() && m_sinceShown.elapsed() < ShownEvery))
        return;
    const long long percent = total > 0 ? done * 100 / total : 100;
    show(QStringLiteral("%1 of %2 %3 (%4%)").arg(done).arg(total).arg(what).arg(percent));
}

// Blanks cover what is left of a longer line: a console may not know escape codes.
void TerminalProgress::show(const QString& text)
{
    const QByteArray line = (m_prefix + text).toLocal8Bit();
    const int blanks = qMax(0, m_shownLength - line.size());
    std::fprintf(stderr, "\r%s%*s", line.constData(), blanks, "");
    std::fflush(stderr);
    m_shownLength = line.size();
    m_sinceShown.start();
}

void TerminalProgress::finish()
{
    if (m_shownLength == 0)
        return;
    std::fprintf(stderr, "\r%*s\r", m_shownLength, "");
    std::fflush(stderr);
    m_shownLength = 0;
    m_sinceShown.invalidate();
}
