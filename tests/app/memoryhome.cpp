// SPDX-License-Identifier: GPL-3.0-or-later
#include "memoryhome.h"

#include "base/store/preferences.h"

#include <sys/statfs.h>
#include <unistd.h>

#include <linux/magic.h>

namespace tavrix::test
{

namespace
{

constexpr const char* sharedMemory = "/dev/shm";

bool isInMemory(const char* folder)
{
    struct statfs info = {};
    return ::statfs(folder, &info) == 0 && info.f_type == TMPFS_MAGIC && ::access(folder, W_OK | X_OK) == 0;
}

} // namespace

struct MemoryHome::Places {
    EnvironmentChange outer{"TMPDIR", sharedMemory};
    TempFolder folder;
    EnvironmentChange home{"HOME", folder.makeFolder(QStringLiteral("home")).toUtf8().constData()};
    EnvironmentChange data{"XDG_DATA_HOME", folder.makeFolder(QStringLiteral("data")).toUtf8().constData()};
    EnvironmentChange temporary{"TMPDIR", folder.makeFolder(QStringLiteral("tmp")).toUtf8().constData()};
};

MemoryHome::MemoryHome() : places_(isInMemory(sharedMemory) ? std::make_unique<Places>() : nullptr)
{
    prefReload();
}

MemoryHome::~MemoryHome()
{
    prefReload();
}

} // namespace tavrix::test
