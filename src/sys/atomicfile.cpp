// SPDX-License-Identifier: GPL-3.0-or-later
#include "sys/atomicfile.h"

#include "sys/errortext.h"
#include "sys/fileidentity.h"
#include "sys/safeoutput.h"
#include "sys/transfer.h"

#include <cerrno>

namespace tavrix
{

Result<void> replaceFile(const std::string& path, std::string_view bytes, mode_t mode)
{
    const std::optional<struct stat> present = linkStatus(path.c_str());
    if (present && !S_ISREG(present->st_mode)) {
        return Failure{errorText(EEXIST)};
    }
    Result<SafeOutput> file = SafeOutput::open(path, SafeOutput::Style::Brief, mode);
    if (!file) {
        return Failure{file.reason()};
    }
    if (!writeAll(file->fd(), bytes)) {
        return Failure{errorText(errno)};
    }
    return file->commit();
}

} // namespace tavrix
