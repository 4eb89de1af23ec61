#include "base/atomicfile.h"

#include "base/posixfile.h"
#include "sys/atomicfile.h"

#include <cerrno>

namespace tavrix
{

Result<void, QString> replaceFileAtomically(const QString& path, const QByteArray& bytes)
{
    const QByteArray target = systemPath(path);
    if (target.isEmpty()) {
        return Failure{systemErrorText(ENOENT)};
    }
    const Result<void> replaced = replaceFile(target.toStdString(), viewOf(bytes), 0600);
    return replaced ? Result<void, QString>() : Failure{QString::fromStdString(replaced.reason())};
}

} // namespace tavrix
