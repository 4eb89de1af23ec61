#include "probe/intakelist.h"

#include "base/bundle.h"
#include "base/filelisting.h"
#include "base/filesizes.h"
#include "base/paths.h"
#include "base/text.h"
#include "probe/batchtexts.h"

#include <QFileInfo>
#include <QSet>

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
            addFolder(resolved);
            for (const QString& item : lsCocoaRecursive(resolved)) {
                addFound(item);
            }
        } else if (extensions_.contains(pathExtension(resolved))) {
            addFile(resolved);
        } else {
            skip(resolved, "Clip_otherExtension");
        }
    }
    [[nodiscard]] IntakeList take() { return std::move(list_); }

private:
    void addFound(const QString& path)
    {
        if (const QFileInfo info(path); info.isDir()) {
            // Links to folders are not entered.
            if (!info.isSymLink()) {
                addFolder(path);
            }
        } else if (extensions_.contains(pathExtension(path))) {
            addFile(path);
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

    void skip(const QString& path, const char* reason) { list_.skipped << SkippedSource{path, batchText(reason)}; }

    QSet<QString> extensions_ = acceptedExtensions();
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
