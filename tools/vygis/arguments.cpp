#include "arguments.h"

#include "command.h"

bool Arguments::parse(const QString& command, const QStringList& arguments,
                      const OptionSyntax& syntax)
{
    bool optionsEnded = false;
    for (int i = 0; i < arguments.size(); ++i) {
        const QString& argument = arguments[i];
        if (optionsEnded || !argument.startsWith(QStringLiteral("--"))) {
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
            QStringList& list = m_values[argument];
            while (i + 1 < arguments.size() && !arguments[i + 1].startsWith(QStringLiteral("--")))
                list.append(arguments[++i]);
            if (list.isEmpty()) {
                usageError(command, QStringLiteral("%1 needs at least one value").arg(argument));
                return false;
            }
        } else {
            usageError(command, QStringLiteral("unknown option %1").arg(argument));
            return false;
        }
    }
    if (m_positional.size() < syntax.minPositional) {
        usageError(command, QStringLiteral("too few arguments"));
        return false;
    }
    if (m_positional.size() > syntax.maxPositional) {
        usageError(command, QStringLiteral("unexpected argument %1").arg(m_positional.value(syntax.maxPositional)));
        return false;
    }
    return true;
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
