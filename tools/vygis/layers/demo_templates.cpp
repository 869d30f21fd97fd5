#include "demo.h"
#include "vygisutil.h"

namespace {

QString joined(const QStringList& texts)
{
    return texts.join(QStringLiteral(", "));
}

// A field row added to the cities table of a copy of the sample template.
const QStringList elevationField{QStringLiteral("cities"), QStringLiteral("ELEVATION"),
                                 QStringLiteral("Double"), QStringLiteral("8"), QStringLiteral("1")};

void rewriteFieldTemplate(DemoRun& run)
{
    const QString file = QStringLiteral("field-template.xlsx");
    const QString copy = run.copyOfSample(file, file);
    const QStringList tables = VyExcelUtil::readFieldsTemplateTableName(copy);
    const QStringList cityFields = VyExcelUtil::readFieldsTemplateTableContent(QStringLiteral("cities"), copy);
    QStringList rows = VyExcelUtil::getImportTemplateTable(copy);
    if (copy.isEmpty() || tables.isEmpty() || cityFields.isEmpty() || rows.isEmpty())
        return run.failed(QStringLiteral("could not read field-template.xlsx"));
    run.found(QStringLiteral("field-template.xlsx: column A names %1 rows of tables %2; the cities "
                             "table has %3 fields")
                  .arg(tables.size())
                  .arg(joined(VyExcelUtil::getImportTemplateTableName(copy)))
                  .arg(cityFields.size() / 4));
    rows += elevationField;
    if (!VyExcelUtil::updateFieldsTemplateTableContent(rows, copy)
        || VyExcelUtil::readFieldsTemplateTableContent(QStringLiteral("cities"), copy).size() != cityFields.size() + 4)
        return run.failed(QStringLiteral("could not rewrite field-template.xlsx"));
    run.made(file, QStringLiteral("the sample field template rewritten with a field ELEVATION (Double, "
                                  "8, 1) added to the cities table: %1 field rows")
                       .arg(rows.size() / 5));
}

void rewriteTableNames(DemoRun& run)
{
    const QString file = QStringLiteral("table-names.xlsx");
    const QString copy = run.copyOfSample(file, file);
    const QStringList names = VyExcelUtil::readFieldsTemplateTableName(copy);
    if (copy.isEmpty() || names.isEmpty())
        return run.failed(QStringLiteral("could not read table-names.xlsx"));
    const QStringList renamed{QStringLiteral("countries"), QStringLiteral("cities"), QStringLiteral("elevations")};
    VyExcelUtil::updateTemplateName(copy, renamed);
    if (VyExcelUtil::readFieldsTemplateTableName(copy) != renamed)
        return run.failed(QStringLiteral("could not rewrite table-names.xlsx"));
    run.made(file, QStringLiteral("the sample table names (%1) rewritten as %2")
                       .arg(joined(names), joined(renamed)));
}

} // namespace

void runTemplateSteps(DemoRun& run)
{
    rewriteFieldTemplate(run);
    rewriteTableNames(run);
}
