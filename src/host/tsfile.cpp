#include "tsbase.h"

#include "tsqtext.h"

#include <QFileInfo>

namespace VyObjects {

bool TsFile::Exists(const TsString& path)
{
    if (path.IsEmpty())
        return false;
    return QFileInfo(toQString(path)).isFile();
}

} // namespace VyObjects
