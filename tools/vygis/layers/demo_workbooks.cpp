#include "csv.h"
#include "demo.h"
#include "tsqtext.h"
#include "vygisutil.h"

#include <QFile>
#include <QFileInfo>

namespace {

QString joined(const QStringList& texts)
{
    return texts.join(QStringLiteral(", "));
}

void readWholeSheet(DemoRun& run)
{
    std::vector<QStringList> rows;
    VyExcelUtil::getExcelData(run.sample(QStringLiteral("cities.xlsx")), rows);
    if (rows.empty() || !writeCsvFile(run.output(QStringLiteral("cities.csv")), rows))
        return run.failed(QStringLiteral("could not read cities.xlsx"));
    run.made(QStringLiteral("cities.csv"),
             QStringLiteral("the sheet of cities.xlsx read whole: %1 rows of %2 columns (%3)")
                 .arg(rows.size()).arg(rows.front().size()).arg(joined(rows.front())));
}

void createAndClear(DemoRun& run)
{
    const QString blank = run.output(QStringLiteral("blank.xlsx"));
    QFile::remove(blank);
    VyExcelUtil::createExcel(blank);
    if (!QFileInfo::exists(blank))
        return run.failed(QStringLiteral("could not create blank.xlsx"));
    run.made(QStringLiteral("blank.xlsx"), QStringLiteral("a new workbook with one empty sheet \"Sheet1\""));

    const QString cleared = run.copyOfSample(QStringLiteral("cities.xlsx"), QStringLiteral("cleared.xlsx"));
    if (cleared.isEmpty() || !VyExcelUtil::clearExcel(cleared))
        return run.failed(QStringLiteral("could not reset a copy of cities.xlsx"));
    run.made(QStringLiteral("cleared.xlsx"), QStringLiteral("a copy of cities.xlsx reset to one empty sheet"));
}

void rewriteDxf(DemoRun& run)
{
    const QString dxf = run.copyOfSample(QStringLiteral("drawing.dxf"), QStringLiteral("drawing.dxf"));
    if (dxf.isEmpty())
        return run.failed(QStringLiteral("could not copy drawing.dxf"));
    VyUniversalFunction::replaceDxfCodepage(VyObjects::toTsString(dxf));
    QFile file(dxf);
    const QByteArray text = file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    const bool rewritten = text.contains("\nANSI_936") && !text.contains("ANSI_1252");
    if (!rewritten)
        return run.failed(QStringLiteral("drawing.dxf does not declare ANSI_936 after its rewrite"));
    run.made(QStringLiteral("drawing.dxf"),
             QStringLiteral("a copy of drawing.dxf whose code page line ANSI_1252 now reads ANSI_936"));
}

} // namespace

void runWorkbookSteps(DemoRun& run)
{
    readWholeSheet(run);
    createAndClear(run);
    rewriteDxf(run);
}

void runReaderSteps(DemoRun& run)
{
    QVector<QStringList> rules;
    if (!VyExcelUtil::readAttributeCheckRuleFromExcel(run.sample(QStringLiteral("check-rules.xlsx")), rules)
        || !writeCsvFile(run.output(QStringLiteral("check-rules.csv")), {rules.cbegin(), rules.cend()}))
        return run.failed(QStringLiteral("could not read check-rules.xlsx"));
    run.made(QStringLiteral("check-rules.csv"),
             QStringLiteral("the %1 rules of check-rules.xlsx below its two title rows, first: %2")
                 .arg(rules.size()).arg(joined(rules.value(0))));

    std::vector<QStringList> points;
    for (const VyObjects::TsPoint& point : VyExcelUtil::readCoordinateFile(run.sample(QStringLiteral("paris-outline.xlsx"))))
        points.push_back({QString::number(point.x), QString::number(point.y)});
    if (points.empty() || !writeCsvFile(run.output(QStringLiteral("paris-outline.csv")), points))
        return run.failed(QStringLiteral("could not read paris-outline.xlsx"));
    run.made(QStringLiteral("paris-outline.csv"),
             QStringLiteral("the outline typed in paris-outline.xlsx as %1 x,y points, closed by "
                            "repeating the first one").arg(points.size()));

    QMap<QString, QString> pairs;
    if (!VyExcelUtil::readTransactionTemplateFile(run.sample(QStringLiteral("name-pairs.xlsx")), pairs))
        return run.failed(QStringLiteral("could not read name-pairs.xlsx"));
    std::vector<QStringList> pairRows;
    for (auto pair = pairs.cbegin(); pair != pairs.cend(); ++pair)
        pairRows.push_back({pair.key(), pair.value()});
    writeCsvFile(run.output(QStringLiteral("name-pairs.csv")), pairRows);
    run.made(QStringLiteral("name-pairs.csv"),
             QStringLiteral("the pairs of name-pairs.xlsx, trimmed and upper case, which the join below "
                            "uses to send workbook columns to layer fields"));
}
