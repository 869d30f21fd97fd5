#include "terminalprogress.h"

#include "command.h"

#include <cstdio>

#ifdef Q_OS_WIN
#include <io.h>
#else
#include <unistd.h>
#endif

namespace {

const qint64 ShownEvery = 200;   // milliseconds

bool isTerminal(std::FILE* stream)
{
#ifdef Q_OS_WIN
    return _isatty(_fileno(stream)) != 0;
#else
    return isatty(fileno(stream)) != 0;
#endif
}

} // namespace

bool outputIsTerminal()
{
    return isTerminal(stdout);
}

TerminalProgress::TerminalProgress(const QString& prefix)
    : m_prefix(prefix), m_terminal(!isQuiet() && isTerminal(stderr))
{
}

TerminalProgress::~TerminalProgress()
{
    finish();
}

void TerminalProgress::step(const QString& text)
{
    if (!m_terminal)
        return;
    show(text);
    m_counting = false;
}

void TerminalProgress::count(long long done, long long total, const QString& what)
{
    // The first count replaces a step at once; later ones at most every ShownEvery.
    if (!m_terminal || (m_counting && m_sinceShown.elapsed() < ShownEvery))
        return;
    m_counting = true;
    if (total < 0) {
        show(QStringLiteral("%1 %2").arg(done).arg(what));
        return;
    }
    const long long percent = total > 0 ? qMin(done, total) * 100 / total : 100;
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
    m_counting = false;
}
