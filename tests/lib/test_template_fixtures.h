#pragma once

// Field template workbooks for the tests, built cell by cell with the engine.

#include "libtesting.h"

#include <vector>

class TemplateFiles : public LibraryTest
{
protected:
    static QStringList header()
    {
        return {"TableName", "FieldsName", "FieldsType", "FieldsLenth", "Precision"};
    }

    // A field row whose every column can be told apart from the others.
    static QStringList field(const QString& table, const QString& name)
    {
        return {table, name, "type of " + name, "length of " + name, "precision of " + name};
    }

    // In the rows given to save: no cell in that place.
    static inline const QString Unstored{};

    static QStringList concat(const std::vector<QStringList>& rows)
    {
        QStringList all;
        for (const QStringList& row : rows)
            all += row;
        return all;
    }

    // Saves rows from row 1 down as text cells. Unstored leaves its cell out; every
    // other entry, "" included, is a stored text cell.
    QString save(const std::vector<QStringList>& rows)
    {
        QList<QVariantList> values;
        for (const QStringList& row : rows)
            values.append(QVariant(row).toList());
        return LibraryTest::rows(values);
    }

    QString saveTemplate(std::vector<QStringList> fieldRows)
    {
        fieldRows.insert(fieldRows.begin(), header());
        return save(fieldRows);
    }
};
