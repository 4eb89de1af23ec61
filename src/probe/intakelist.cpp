// SPDX-License-Identifier: GPL-3.0-or-later
#include "probe/intakelist.h"

#include "base/bundle/bundle.h"
#include "base/files/fileinfo.h"
#include "base/files/filelisting.h"
#include "base/text/format.h"
#include "base/text/paths.h"
#include "base/text/text.h"
#include "probe/batchtexts.h"

#include <QFileInfo>
#include <QSet>

#include <algorithm>
#include <climits>

namespace tavrix
{

namespace
{

QSet<QString> acceptedExtensions()
{
    QSet<QString> accepted;
    for (const QString& extension : documentTypeExtensions()) {
        accepted << extension << extension.toUpper() << capitalized(extension);
    }
    return accepted;
}

class IntakeBuilder
{
public:
    void addGiven(const QString& path)
    {
        const QString resolved = pathByResolvingAlias(path);
        if (isFolder(resolved)) {
            roots_ << QFileInfo(resolved).canonicalFilePath() + u'/';
            addFolder(resolved);
            for (const QString& item : lsCocoaRecursive(resolved)) {
                addFound(item);
            }
        } else if (extensions_.contains(pathExtension(resolved))) {
            addFile(resolved);
        } else {
            skipOther(resolved);
        }
    }
    [[nodiscard]] IntakeList take()
    {
        tellLinkedFolders();
        return std::move(list_);
    }

private:
    void addFound(const QString& path)
    {
        const bool clip = extensions_.contains(pathExtension(path));
        if (nativePath(path).size() >= PATH_MAX) {
            // Nobody can tell a folder from a file there.
            if (clip || pathExtension(path).isEmpty()) {
                skip(path, "Clip_tooDeep");
            }
        } else if (const QFileInfo info(path); info.isDir()) {
            // Links to folders are not entered.
            if (info.isSymLink()) {
                linkedFolders_ << path;
            } else {
                addFolder(path);
            }
        } else if (clip) {
            addFile(pathByResolvingAlias(path));
        }
    }

    // One whose folder is listed anyway hides nothing.
    void tellLinkedFolders()
    {
        for (const QString& link : linkedFolders_) {
            const QString target = QFileInfo(link).canonicalFilePath() + u'/';
            if (std::none_of(roots_.cbegin(), roots_.cend(),
                             [&target](const QString& root) { return target.startsWith(root); })) {
                skip(link, "Clip_linkedFolder");
            }
        }
    }

    void addFolder(const QString& path)
    {
        const QFileInfo info(path);
        if (!info.isReadable() || !info.isExecutable()) {
            skip(path, "Clip_closedFolder");
        }
        for (const QString& entry : unspeakableEntries(path)) {
            const QString extension = pathExtension(entry);
            // What has no extension may be a folder full of clips.
            if (extension.isEmpty() || extensions_.contains(extension)) {
                skip(entry, "Clip_unspeakable");
            }
        }
    }

    void addFile(const QString& path)
    {
        const QFileInfo info(path);
        if (!info.exists()) {
            skip(path, "Clip_notFound");
        } else if (!info.isFile()) {
            // A FIFO would keep the analysis waiting for ever.
            skip(path, "Clip_noFile");
        } else if (!info.isReadable()) {
            skip(path, "Clip_closedFile");
        } else {
            list_.accepted << path;
        }
    }

    void skipOther(const QString& path)
    {
        if (const QString extension = pathExtension(path); extension.isEmpty()) {
            skip(path, "Clip_otherExtension");
        } else {
            list_.skipped << SkippedSource{path, formatText(batchText("Clip_otherExtensionOf"), {extension})};
        }
    }
    void skip(const QString& path, const char* reason) { list_.skipped << SkippedSource{path, batchText(reason)}; }

    QSet<QString> extensions_ = acceptedExtensions();
    QStringList roots_; // listed folders, without links in their paths, with a "/" at the end
    QStringList linkedFolders_;
    IntakeList list_;
};

} // namespace

IntakeList intakeList(const QStringList& paths)
{
    IntakeBuilder builder;
    for (const QString& path : paths) {
        builder.addGiven(path);
    }
    return builder.take();
}

} // namespace tavrix
