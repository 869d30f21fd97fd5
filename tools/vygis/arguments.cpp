#include "arguments.h"

#include "command.h"

namespace {

bool isOption(const QString& argument)
{
    return argument.startsWith(QStringLiteral("--"));
}

QStringList listEntries(const QString& value)
{
    QStringList entries;
    for (const QString& entry : value.split(QLatin1Char(','), Qt::SkipEmptyParts))
        if (!entry.trimmed().isEmpty())
            entries.append(entry.trimmed());
    return entries;
}

} // namespace

bool Arguments::parse(const QString& command, const QStringList& arguments,
                      const OptionSyntax& syntax)
{
    bool optionsEnded = false;
    for (int i = 0; i < arguments.size(); ++i) {
        const QString& argument = arguments[i];
        if (optionsEnded || !isOption(argument)) {
            m_positional.append(argument);
        } else if (argument == QStringLiteral("--")) {
            optionsEnded = true;
        } else if (syntax.switches.contains(argument)) {
            m_switches.insert(argument);
        } else if (syntax.valued.contains(argument)) {
            if (i + 1 >= arguments.size()) {
                usageError(command, QStringLiteral("%1 needs a value").arg(argument));
                return false;
            }
            m_values[argument].append(arguments[++i]);
        } else if (syntax.lists.contains(argument)) {
            if (!takeList(command, arguments, i, syntax))
                return false;
        } else {
            usageError(command, QStringLiteral("unknown option %1").arg(argument));
            return false;
        }
    }
    return checkPositionalCount(command, syntax);
}

// Takes the list that follows the option at i, leaving i at its last argument.
bool Arguments::takeList(const QString& command, const QStringList& arguments, int& i,
                         const OptionSyntax& syntax)
{
    const QString& option = arguments[i];
    const QStringList entries = i + 1 < arguments.size() && !isOption(arguments[i + 1])
        ? listEntries(arguments[++i]) : QStringList();
    if (entries.isEmpty()) {
        usageError(command, QStringLiteral("%1 needs a list, its entries separated by commas").arg(option));
        return false;
    }
    QStringList& list = m_values[option];
    list += entries;
    // The old form: with every positional argument given, what follows can only be more.
    while (m_positional.size() >= syntax.maxPositional && i + 1 < arguments.size() && !isOption(arguments[i + 1]))
        list += listEntries(arguments[++i]);
    if (i + 1 < arguments.size() && !isOption(arguments[i + 1]))
        m_afterList.insert(m_positional.size(), {option, entries.first()});
    return true;
}

bool Arguments::checkPositionalCount(const QString& command, const OptionSyntax& syntax) const
{
    if (m_positional.size() < syntax.minPositional) {
        usageError(command, QStringLiteral("too few arguments"));
        return false;
    }
    if (m_positional.size() <= syntax.maxPositional)
        return true;
    QString text = QStringLiteral("unexpected argument %1").arg(m_positional.value(syntax.maxPositional));
    if (!m_afterList.isEmpty()) {
        const auto after = m_afterList.cbegin();
        text += QStringLiteral(" (%1 takes one argument, its entries separated by commas: %1 %2,%3)")
                    .arg(after.value().first, after.value().second, m_positional.value(after.key()));
    }
    usageError(command, text);
    return false;
}

bool Arguments::isSet(const QString& option) const
{
    return m_switches.contains(option) || m_values.contains(option);
}

int usageError(const QString& command, const QString& text)
{
    printError(QStringLiteral("vygis %1: %2; see 'vygis %1 --help'").arg(command, text));
    return ExitUsage;
}

int failure(const QString& command, const QString& text)
{
    printError(QStringLiteral("vygis %1: %2").arg(command, text));
    return ExitFailure;
}
