#pragma once

// Field template workbooks for the tests, built cell by cell with the engine.

#include "xlsxdocument.h"

#include <QFile>
#include <QStringList>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <ostream>
#include <vector>

// Failing comparisons show texts, not bytes.
static inline void PrintTo(const QString& text, std::ostream* out)
{
    *out << '"' << text.toStdString() << '"';
}

class TemplateFiles : public ::testing::Test
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

    // Saves rows from row 1 down as text cells. A null QString leaves its cell unstored;
    // every other entry, "" included, is a stored text cell.
    QString save(const std::vector<QStringList>& rows)
    {
        QXlsx::Document document;
        for (size_t r = 0; r < rows.size(); ++r) {
            for (int c = 0; c < rows[r].size(); ++c) {
                if (!rows[r][c].isNull())
                    document.write(int(r) + 1, c + 1, rows[r][c]);
            }
        }
        const QString file = m_dir.filePath(QStringLiteral("template%1.xlsx").arg(++m_count));
        EXPECT_TRUE(document.saveAs(file));
        return file;
    }

    QString saveTemplate(std::vector<QStringList> fieldRows)
    {
        fieldRows.insert(fieldRows.begin(), header());
        return save(fieldRows);
    }

    QString path(const QString& name) const { return m_dir.filePath(name); }

    static QByteArray bytesOf(const QString& file)
    {
        QFile in(file);
        return in.open(QIODevice::ReadOnly) ? in.readAll() : QByteArray();
    }

    QTemporaryDir m_dir;
    int m_count = 0;
};
