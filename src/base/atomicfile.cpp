#include "base/atomicfile.h"

#include "base/posixfile.h"

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <unistd.h>

namespace tavrix
{

bool replaceFileAtomically(const QString& path, const QByteArray& bytes, QString* reason)
{
    const QByteArray target = systemPath(path);
    const std::optional<struct stat> present = linkStatus(target);
    if (target.isEmpty() || (present && !S_ISREG(present->st_mode))) {
        *reason = systemErrorText(target.isEmpty() ? ENOENT : EEXIST);
        return false;
    }
    // mkostemp makes a file of its own with the mode 0600, whatever the umask is.
    QByteArray temporary = target + ".XXXXXX";
    FileDescriptor file(::mkostemp(temporary.data(), O_CLOEXEC));
    if (!file.isOpen()) {
        *reason = systemErrorText();
        return false;
    }
    if (writeAllTo(file, bytes) && ::fsync(file.get()) == 0 && file.close() &&
        ::rename(temporary.constData(), target.constData()) == 0) {
        return true;
    }
    *reason = systemErrorText();
    ::unlink(temporary.constData());
    return false;
}

} // namespace tavrix
