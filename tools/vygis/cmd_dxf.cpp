#include "arguments.h"
#include "command.h"
#include "vygisutil.h"

#include <QFileInfo>

namespace {

int runDxfCodepage(const QStringList& arguments)
{
    const QString name = QStringLiteral("dxf-codepage");
    Arguments parsed;
    if (!parsed.parse(name, arguments, {{}, {}, {}, 1, 1}))
        return ExitUsage;
    // The rewrite makes an empty file where none exists; a mistyped path should not.
    const QFileInfo file(parsed.positional(0));
    if (!file.isFile())
        return failure(name, QStringLiteral("%1: no such file").arg(parsed.positional(0)));
    if (!file.isReadable() || !file.isWritable())
        return failure(name, QStringLiteral("%1: cannot be read and written").arg(parsed.positional(0)));
    VyUniversalFunction::replaceDxfCodepage(VyObjects::TsString(parsed.positional(0).toStdWString()));
    return ExitSuccess;
}

} // namespace

Command dxfCodepageCommand()
{
    Command command;
    command.name = QStringLiteral("dxf-codepage");
    command.summary = QStringLiteral("make a DXF file declare the code page ANSI_936");
    command.usage = QStringLiteral(
        "Usage: vygis dxf-codepage FILE\n\n"
        "Rewrites the text DXF FILE in place: every line that holds \"ANSI_\" becomes\n"
        "\"ANSI_936\"; all other bytes stay. The file is replaced only when the new text is\n"
        "complete; binary DXF files are left alone. Exit status 1 when there is no such\n"
        "file or it cannot be read and written.");
    command.run = runDxfCodepage;
    return command;
}
