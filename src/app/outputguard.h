#pragma once

// What a row may write, replace and delete.

#include "sys/fileidentity.h"

#include <QSet>
#include <QString>

#include <optional>

namespace tavrix
{

class BatchList;

// Protects three kinds of files from a row: sources, outputs of the same batch, and what stood under the output's name
// before the row began.
class OutputGuard
{
public:
    // The list is not owned.
    explicit OutputGuard(const BatchList& rows) : rows_(rows) {}

    // A batch begins: none of its outputs is made yet.
    void beginBatch() { made_.clear(); }
    // A row begins, whose output has no name yet.
    void beginRow() { before_.reset(); }
    // Looks at what stands under the output's name. Called before that name is stored anywhere: a stop deletes what is
    // stored unless it stood there before.
    void lookAt(const QString& output);

    // True when something stood there as it was looked at.
    [[nodiscard]] bool isTaken() const { return before_.has_value(); }
    // Why what stands there must stay, whatever a person would answer; nothing when it may be replaced.
    [[nodiscard]] QString refusal(const QString& output) const;
    // True when there is a file and it is not the one that stood there before.
    [[nodiscard]] bool hasMade(const QString& output) const;
    // A finished output: the later rows of the batch must not overwrite it.
    void keep(const QString& output) { made_.insert(output); }

    // Deletes what the row has made so far. Nothing outside the folder of the outputs is touched.
    void removePartial(const QString& output) const;
    // Deletes the movie of the first pass that lies beside the output.
    void removeIntermediate(const QString& output) const;

private:
    [[nodiscard]] bool isSource(const QString& path) const;
    [[nodiscard]] bool isOutputOfThisBatch(const QString& path) const;

    const BatchList& rows_;
    std::optional<FileIdentity> before_;
    QSet<QString> made_;
};

} // namespace tavrix
