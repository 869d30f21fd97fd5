// The library's readers of template and rule workbooks, given a file of any bytes: field
// templates, table names, check rules, coordinate tables, transaction templates and the
// whole-sheet reader. They read a path, so each input is written to a file first.

#include "vygisutil.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <cstddef>
#include <cstdint>
#include <vector>

namespace {

volatile qint64 g_seen = 0;

QString inputPath()
{
    // In memory where the system has such a folder: the rewrite syncs what it saves,
    // which on a disk would take most of each run.
    static QTemporaryDir folder(QDir(QStringLiteral("/dev/shm")).exists()
                                    ? QStringLiteral("/dev/shm/vygis-fuzz-XXXXXX") : QString());
    return folder.filePath(QStringLiteral("template.xlsx"));
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    const QString path = inputPath();
    {
        QFile file(path);
        if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate))
            return 0;
        file.write(reinterpret_cast<const char*>(data), qint64(size));
    }

    qint64 seen = 0;
    const QStringList names = VyExcelUtil::readFieldsTemplateTableName(path);
    seen += names.size();
    const QString table = names.value(1);
    seen += VyExcelUtil::readFieldsTemplateTableContent(table, path).size();
    seen += VyExcelUtil::readFieldsTemplateTableContent1(table, path).size();
    seen += VyExcelUtil::getImportTemplateTable(path).size();
    seen += VyExcelUtil::getImportTemplateTableName(path).size();

    std::vector<QStringList> rows;
    VyExcelUtil::getExcelData(path, rows);
    seen += qint64(rows.size());
    QVector<QStringList> rules;
    seen += VyExcelUtil::readAttributeCheckRuleFromExcel(path, rules) + rules.size();
    seen += qint64(VyExcelUtil::readCoordinateFile(path).size());
    seen += VyExcelUtil::readCoordinateFile2(path).size();
    QMap<QString, QString> pairs;
    seen += VyExcelUtil::readTransactionTemplateFile(path, pairs) + pairs.size();
    g_seen = seen;
    return 0;
}
