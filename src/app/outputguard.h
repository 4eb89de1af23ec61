// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// What a row may write, replace and delete.

#include "sys/fileidentity.h"

#include <QList>
#include <QSet>
#include <QString>

#include <optional>

namespace tavrix
{

class BatchList;

// Key in the working record of the row being encoded: the file that the running tool writes, as text.
inline const QString ownFile = QStringLiteral("ownFile");

// Protects from a row what it has not made: sources, outputs of the same batch, what stood under the output's name
// before the row began, and what others put there while it runs. What it has made are the files that its tools have
// told of.
class OutputGuard
{
public:
    // The list is not owned.
    explicit OutputGuard(const BatchList& rows) : rows_(rows) {}

    // A batch begins: none of its outputs is made yet.
    void beginBatch() { made_.clear(); }
    // A row begins, whose output has no name yet.
    void beginRow();
    // Looks at what stands under the output's name. Called before that name is stored anywhere: a stop deletes what is
    // stored.
    void lookAt(const QString& output);
    // A file that one of the row's tools writes, whatever its name; device and inode count. False when it is known.
    bool noteOwn(const FileIdentity& file);

    // What stood there as it was looked at; no value for nothing.
    [[nodiscard]] const std::optional<FileIdentity>& standing() const { return before_; }
    [[nodiscard]] bool isTaken() const { return before_.has_value(); }
    // Why what stands there must stay, whatever a person would answer; nothing when it may be replaced.
    [[nodiscard]] QString refusal(const QString& output) const;
    // Why the first pass's movie cannot have its name beside the output; nothing when it can.
    [[nodiscard]] QString intermediateRefusal(const QString& output) const;
    // True when there is a file and it is not the one that stood there before.
    [[nodiscard]] bool hasMade(const QString& output) const;
    // True when there is a file and one of the row's tools has written it.
    [[nodiscard]] bool isOwn(const QString& path) const;
    // A finished output: the later rows of the batch must not overwrite it.
    void keep(const QString& output) { made_.insert(output); }

    // Deletes the output that the row has made so far, unless it has taken the place of an older one: then it is all
    // that there is. Nothing outside the folder of the outputs is touched.
    void removePartial(const QString& output) const;
    // What lies under the name of the first pass's movie; no value for nothing.
    [[nodiscard]] static std::optional<FileIdentity> intermediateOf(const QString& output);
    // Deletes the movie of the first pass that lies beside the output.
    void removeIntermediate(const QString& output) const;

private:
    [[nodiscard]] bool isSource(const QString& path) const;
    [[nodiscard]] bool isOutputOfThisBatch(const QString& path) const;

    const BatchList& rows_;
    std::optional<FileIdentity> before_;
    QList<FileIdentity> own_;
    QSet<QString> made_;
};

} // namespace tavrix
