#include "test_template_fixtures.h"

#include <QDir>
#include <QFileDevice>

#ifdef Q_OS_UNIX
#include <csignal>
#include <sys/resource.h>
#endif

namespace {

using TemplateUpdates = TemplateFiles;

// The sheets and the stored cells of a workbook as a user would find them: every cell
// must be a plain text cell, and the grid lists each row's texts up to its last cell.
struct Seen
{
    QStringList sheets;
    std::vector<QStringList> rows;
    bool allPlainText = true;
};

Seen inspect(const QString& file)
{
    QXlsx::Document document(file);
    Seen seen{document.sheetNames(), {}, true};
    const QXlsx::CellRange used = document.dimension();
    for (int r = 1; used.isValid() && r <= used.lastRow(); ++r) {
        QStringList row;
        for (int c = 1; c <= used.lastColumn(); ++c) {
            const QXlsx::Cell* cell = document.cellAt(r, c);
            row << (cell ? cell->value().toString() : QString());
            if (cell && (cell->cellType() != QXlsx::Cell::StringType || !cell->format().isEmpty()))
                seen.allPlainText = false;
        }
        seen.rows.push_back(row);
    }
    return seen;
}

// A workbook with a second sheet and cells beyond the template's, all of which must go.
void fillBusily(QXlsx::Document& document)
{
    document.write(1, 1, "old");
    document.write(30, 9, 3.5);
    document.addSheet("Notes");
    document.write(2, 2, "kept?");
}

TEST_F(TemplateUpdates, WritersReplaceTheWholeWorkbookByPlainTextsBelowTheHeader)
{
    const QString content = workbook(fillBusily);
    const QString names = workbook(fillBusily);
    // Content goes in complete groups of five.
    EXPECT_TRUE(VyExcelUtil::updateFieldsTemplateTableContent(
        {"0", "1", "2", "3", "4", "5", "6", "7", "8", "9", "10", "11"}, content));
    VyExcelUtil::updateTemplateName(names, {"roads", " rivers", ""});
    for (const QString& file : {content, names}) {
        EXPECT_EQ(inspect(file).sheets, QStringList{"Sheet1"});
        EXPECT_TRUE(inspect(file).allPlainText);
    }
    EXPECT_EQ(inspect(content).rows, (std::vector<QStringList>{header(), {"0", "1", "2", "3", "4"},
                                                               {"5", "6", "7", "8", "9"}}));
    EXPECT_EQ(inspect(names).rows, (std::vector<QStringList>{{"TableName"}, {"roads"}, {" rivers"}, {""}}));

    EXPECT_TRUE(VyExcelUtil::updateFieldsTemplateTableContent({"a", "b", "c"}, content));
    EXPECT_EQ(inspect(content).rows, std::vector<QStringList>{header()});
    VyExcelUtil::updateTemplateName(names, {});
    EXPECT_EQ(inspect(names).rows, std::vector<QStringList>{{"TableName"}});
    // Empty content leaves an emptied workbook and false.
    EXPECT_FALSE(VyExcelUtil::updateFieldsTemplateTableContent({}, content));
    EXPECT_EQ(inspect(content).sheets, QStringList{"Sheet1"});
    EXPECT_TRUE(inspect(content).rows.empty());
    // Neither writer creates a missing file, nor leaves one behind.
    EXPECT_FALSE(VyExcelUtil::updateFieldsTemplateTableContent(field("a", "1"), path("absent.xlsx")));
    VyExcelUtil::updateTemplateName(path("absent.xlsx"), {"a"});
    EXPECT_EQ(QDir(m_dir.path()).entryList(QDir::NoDotAndDotDot | QDir::AllEntries),
              QStringList({"book1.xlsx", "book2.xlsx"}));
}

TEST_F(TemplateUpdates, WhatTheReadersReturnWritesBackToTheSameList)
{
    const QString file = saveTemplate({field("a", "1"), {Unstored, " x ", "=1+1", "007", Unstored},
                                       {}, {"", "", "", "", "tail"}, field("b", "\u65e5\u672c")});
    const QStringList content = VyExcelUtil::getImportTemplateTable(file);
    ASSERT_EQ(content.size(), 25);
    EXPECT_TRUE(VyExcelUtil::updateFieldsTemplateTableContent(content, file));
    EXPECT_EQ(VyExcelUtil::getImportTemplateTable(file), content);

    const QString names = save({{"TableName"}, {"a"}, {Unstored}, {" b"}, {"a"}});
    const QStringList read = VyExcelUtil::readFieldsTemplateTableName(names);
    VyExcelUtil::updateTemplateName(names, read);
    EXPECT_EQ(VyExcelUtil::readFieldsTemplateTableName(names), read);
}

// Another program holding the file open: on Windows it cannot be deleted or replaced,
// and the template stays as it was; elsewhere the rewrite goes through. Never half.
TEST_F(TemplateUpdates, AFileHeldOpenIsRewrittenWholeOrNotAtAll)
{
    const QString file = saveTemplate({field("a", "1")});
    QFile holder(file);
    ASSERT_TRUE(holder.open(QIODevice::ReadOnly));
    EXPECT_TRUE(VyExcelUtil::updateFieldsTemplateTableContent(field("b", "2"), file));
    holder.close();
#ifdef Q_OS_WIN
    EXPECT_EQ(VyExcelUtil::getImportTemplateTable(file), field("a", "1"));
#else
    EXPECT_EQ(VyExcelUtil::getImportTemplateTable(file), field("b", "2"));
#endif
}

TEST_F(TemplateUpdates, AFileInAReadOnlyFolderIsLeftAsItWas)
{
    const QString file = saveTemplate({field("a", "1")});
    const QByteArray before = bytesOf(file);
    const QFileDevice::Permissions writable = QFile::permissions(m_dir.path());
    QFile::setPermissions(m_dir.path(), QFileDevice::ReadOwner | QFileDevice::ExeOwner);
    QFile probe(path("probe"));
    if (probe.open(QIODevice::WriteOnly)) {
        probe.remove();
        QFile::setPermissions(m_dir.path(), writable);
        GTEST_SKIP() << "this user can write to a read-only folder";
    }
    EXPECT_TRUE(VyExcelUtil::updateFieldsTemplateTableContent(field("b", "2"), file));
    VyExcelUtil::updateTemplateName(file, {"b"});
    QFile::setPermissions(m_dir.path(), writable);
    EXPECT_EQ(bytesOf(file), before);
}

#ifdef Q_OS_UNIX
// A disk that fills up after the reset deleted the file: the rewrite cannot be saved, and
// the template the user had must come back. A file size limit stands in for the disk.
TEST_F(TemplateUpdates, ASaveThatFailsAfterTheResetPutsTheTemplateBack)
{
    const QString file = saveTemplate({field("a", "1"), field("a", "2")});
    const QStringList before = VyExcelUtil::getImportTemplateTable(file);
    QStringList large;
    for (int i = 0; i < 40000; ++i)
        large << field(QString::number(i * 7919), QString::number(i * 31));

    rlimit saved{};
    ASSERT_EQ(getrlimit(RLIMIT_FSIZE, &saved), 0);
    rlimit limit = saved;
    limit.rlim_cur = 64 * 1024;
    const auto oldHandler = std::signal(SIGXFSZ, SIG_IGN);
    ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &limit), 0);
    const bool result = VyExcelUtil::updateFieldsTemplateTableContent(large, file);
    setrlimit(RLIMIT_FSIZE, &saved);
    std::signal(SIGXFSZ, oldHandler);

    EXPECT_TRUE(result);
    EXPECT_EQ(VyExcelUtil::getImportTemplateTable(file), before);
}
#endif

} // namespace
