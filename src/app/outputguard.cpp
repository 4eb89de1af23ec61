#include "app/outputguard.h"

#include "app/batchlist.h"
#include "base/filedelete.h"
#include "base/fileops.h"
#include "base/filesizes.h"
#include "base/paths.h"
#include "encode/outputname.h"
#include "probe/batchtexts.h"

#include <QFileInfo>

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

} // namespace

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
    // A pipe would be written into instead of replaced, and block for ever.
    if (!QFileInfo(output).isFile()) {
        return batchText("Enc_kept");
    }
    return {};
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

void OutputGuard::removePartial(const QString& output) const
{
    if (!isInEventsFolder(output)) {
        return;
    }
    if (hasMade(output) && !isSource(output)) {
        rmCocoa(output);
    }
    removeIntermediate(output);
}

void OutputGuard::removeIntermediate(const QString& output) const
{
    if (!isInEventsFolder(output)) {
        return;
    }
    const QString intermediate = intermediateName(output);
    // A short output name can give its own name: only a file made by the second pass is an intermediate.
    if (intermediate != output && !isSource(intermediate)) {
        removeOwnFile(intermediate, stringByDeletingLastPathComponent(output));
    }
}

} // namespace tavrix
