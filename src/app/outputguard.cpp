// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/outputguard.h"

#include "app/batchlist.h"
#include "base/files/filedelete.h"
#include "base/files/fileinfo.h"
#include "base/files/fileops.h"
#include "base/text/format.h"
#include "base/text/paths.h"
#include "encode/outputname.h"
#include "probe/batchtexts.h"

#include <unistd.h>

#include <algorithm>

namespace tavrix
{

namespace
{

bool isInEventsFolder(const QString& output)
{
    return !output.isEmpty() && lastPathComponent(stringByDeletingLastPathComponent(output)) == eventsFolderName;
}

// Of a link itself: a link that somebody has put there is not the file that the row has made.
std::optional<FileIdentity> identityAt(const QString& path)
{
    const std::optional<struct stat> status = linkStatus(nativePath(path).constData());
    return status ? std::optional(identityOf(*status)) : std::nullopt;
}

QString named(const char* key, const QString& path)
{
    return formatText(batchText(key), {lastPathComponent(path)});
}

// Why a file of this kind stays under its name; nothing for an ordinary one that may be written.
QString refusalOfKind(const QString& path)
{
    const QByteArray native = nativePath(path);
    const std::optional<struct stat> status = linkStatus(native.constData());
    if (!status) {
        return {};
    }
    if (S_ISLNK(status->st_mode)) {
        return named("Enc_linkThere", path);
    }
    if (S_ISDIR(status->st_mode)) {
        return named("Enc_folderThere", path);
    }
    if (!S_ISREG(status->st_mode)) {
        return named("Enc_specialThere", path);
    }
    // The administrator may write everything; whoever has taken away all write permissions has meant something by it.
    constexpr mode_t anyWrite = S_IWUSR | S_IWGRP | S_IWOTH;
    if ((status->st_mode & anyWrite) == 0 || ::access(native.constData(), W_OK) != 0) {
        return named("Enc_readOnlyThere", path);
    }
    return {};
}

} // namespace

void OutputGuard::beginRow()
{
    before_.reset();
    own_.clear();
}

bool OutputGuard::noteOwn(const FileIdentity& file)
{
    if (own_.contains(file)) {
        return false;
    }
    own_ << file;
    return true;
}

void OutputGuard::lookAt(const QString& output)
{
    before_ = identityAt(output);
}

QString OutputGuard::refusal(const QString& output) const
{
    if (isSource(output)) {
        return batchText("Enc_outputIsSource");
    }
    // Two clips can get one output name; a stored answer or a time-out must not let the second destroy the first.
    if (isOutputOfThisBatch(output)) {
        return batchText("Enc_outputOfThisBatch");
    }
    return refusalOfKind(output);
}

QString OutputGuard::intermediateRefusal(const QString& output) const
{
    const QString intermediate = intermediateName(output);
    return identityAt(intermediate) ? named("Enc_masterThere", intermediate) : QString();
}

bool OutputGuard::hasMade(const QString& output) const
{
    const std::optional<FileIdentity> now = identityAt(output);
    return now && now != before_;
}

bool OutputGuard::isSource(const QString& path) const
{
    for (int i = 0; i < rows_.count(); ++i) {
        if (isSameFile(path, rows_.row(i).source())) {
            return true;
        }
    }
    return false;
}

// One file can have several names: the destination may have been changed to a link to it, or take capitals for small.
bool OutputGuard::isOutputOfThisBatch(const QString& path) const
{
    return std::any_of(made_.cbegin(), made_.cend(),
                       [&path](const QString& output) { return output == path || isSameFile(output, path); });
}

bool OutputGuard::isOwn(const QString& path) const
{
    const std::optional<FileIdentity> now = identityAt(path);
    return now &&
           std::any_of(own_.cbegin(), own_.cend(), [&now](const FileIdentity& own) { return sameFile(own, *now); });
}

void OutputGuard::removePartial(const QString& output) const
{
    if (!isInEventsFolder(output)) {
        return;
    }
    if (!isTaken() && isOwn(output) && !isSource(output)) {
        rmCocoa(output);
    }
    removeIntermediate(output);
}

std::optional<FileIdentity> OutputGuard::intermediateOf(const QString& output)
{
    return identityAt(intermediateName(output));
}

void OutputGuard::removeIntermediate(const QString& output) const
{
    if (!isInEventsFolder(output)) {
        return;
    }
    const QString intermediate = intermediateName(output);
    // A short output name can give its own name: only a file made by the second pass is an intermediate.
    if (intermediate != output && isOwn(intermediate) && !isSource(intermediate)) {
        removeOwnFile(intermediate, stringByDeletingLastPathComponent(output));
    }
}

} // namespace tavrix
