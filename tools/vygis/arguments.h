#pragma once

#include <QMap>
#include <QSet>
#include <QString>
#include <QStringList>

// The options a subcommand understands: switches ("--alias"), options that take one
// value each time they are given ("--map H=F", repeatable), and options that take a list
// separated by commas ("--columns X,Y,Z,NAME"), each repetition adding to it. A list
// written the old way, its entries as separate arguments ("--columns X Y Z NAME"), is
// still read where no entry can be taken for a positional argument: once every one of
// those is given.
struct OptionSyntax
{
    QStringList switches;
    QStringList valued;
    QStringList lists;
    int minPositional = 0;
    int maxPositional = 0;
};

// A subcommand's arguments sorted into positional ones and options. Not
// QCommandLineParser: that takes any argument starting with "-" for an option (a
// negative count, a table name such as "-north"), cannot read the old form of a list,
// and words its messages in its own way.
class Arguments
{
public:
    // Sorts arguments by syntax. On wrong usage prints a message naming the command and
    // returns false.
    bool parse(const QString& command, const QStringList& arguments, const OptionSyntax& syntax);

    const QStringList& positional() const { return m_positional; }
    QString positional(int index) const { return m_positional.value(index); }
    bool isSet(const QString& option) const;
    // Every value given to a valued option, or every entry of a list option, in order.
    QStringList values(const QString& option) const { return m_values.value(option); }

private:
    bool takeList(const QString& command, const QStringList& arguments, int& i, const OptionSyntax& syntax);
    bool checkPositionalCount(const QString& command, const OptionSyntax& syntax) const;

    QStringList m_positional;
    // A list option and its first entry, for each positional argument that came right
    // after a list: what a user who wrote the list the old way gets told.
    QMap<int, QPair<QString, QString>> m_afterList;
    QSet<QString> m_switches;
    QMap<QString, QStringList> m_values;
};

// Prints "vygis COMMAND: TEXT; see 'vygis COMMAND --help'" and gives the usage status.
int usageError(const QString& command, const QString& text);
// Prints "vygis COMMAND: TEXT" and gives the failure status.
int failure(const QString& command, const QString& text);
