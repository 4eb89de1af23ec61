// SPDX-License-Identifier: GPL-3.0-or-later
#include "inspect/workingfolder.h"

#include "base/files/posixfile.h"
#include "base/text/paths.h"
#include "inspect/words.h"

#include <QFile>

#include <array>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <filesystem>
#include <mutex>
#include <thread>

#include <fcntl.h>
#include <stdlib.h>
#include <unistd.h>

namespace tavrix
{

namespace
{

// What an ending signal has to remove; the lock keeps a publication and an end apart.
struct Endangered {
    std::mutex mutex;
    std::filesystem::path folder;
};

Endangered& endangered()
{
    static auto* const shared = new Endangered; // outlives the watching thread
    return *shared;
}

void removeFolder(const std::filesystem::path& folder)
{
    std::error_code ignored; // there is nobody left to tell
    std::filesystem::remove_all(folder, ignored);
}

[[noreturn]] void endBySignal(int signal)
{
    constexpr int endedBySignal = 128;
    ::_exit(endedBySignal + signal);
}

// Waits for an ending signal, cleans up, and ends the program. A handler could not remove a folder.
void watchSignals()
{
    sigset_t ending;
    sigemptyset(&ending);
    for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
        sigaddset(&ending, signal);
    }
    pthread_sigmask(SIG_BLOCK, &ending, nullptr);
    std::thread([ending] {
        int signal = 0;
        while (sigwait(&ending, &signal) != 0) {
        }
        const std::lock_guard lock(endangered().mutex);
        removeFolder(endangered().folder);
        endBySignal(signal);
    }).detach();
}

} // namespace

WorkingFolder::WorkingFolder(const QString& parent)
{
    static std::once_flag watched;
    std::call_once(watched, watchSignals);
    const QString place = parent.isEmpty() ? QStringLiteral(".") : parent;
    QByteArray name = nativePath(stringByAppendingPathComponent(place, QStringLiteral(".tavrix-XXXXXX")));
    const std::lock_guard lock(endangered().mutex);
    if (::mkdtemp(name.data()) != nullptr) {
        folder_ = QFile::decodeName(name);
        endangered().folder = name.toStdString();
    }
}

WorkingFolder::~WorkingFolder()
{
    if (isOpen()) {
        const std::lock_guard lock(endangered().mutex);
        removeFolder(endangered().folder);
        endangered().folder.clear();
    }
}

QString WorkingFolder::path(const QString& name) const
{
    return stringByAppendingPathComponent(folder_, name);
}

Result<void, QString> WorkingFolder::publish(const QString& file, const QString& destination, bool replaces) const
{
    const std::lock_guard lock(endangered().mutex);
    const QByteArray from = nativePath(file);
    const QByteArray to = nativePath(destination);
    if (replaces) {
        return ::rename(from.constData(), to.constData()) == 0 ? Result<void, QString>() : Failure{systemErrorText()};
    }
    // Some file systems know no renaming that spares what is there; a second name is refused likewise where one stands.
    if (::renameat2(AT_FDCWD, from.constData(), AT_FDCWD, to.constData(), RENAME_NOREPLACE) == 0 ||
        (errno == EINVAL && ::link(from.constData(), to.constData()) == 0)) {
        return {};
    }
    if (errno == EEXIST) {
        return Failure{inspectText("Ins_exportExists", {destination})};
    }
    return Failure{systemErrorText()};
}

} // namespace tavrix
