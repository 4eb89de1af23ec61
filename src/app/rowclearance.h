// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// Whether a row may write its output: the names that it needs, a person's answer, the room on the disk.

#include "app/outputguard.h"
#include "app/session.h"

#include <QString>

#include <optional>

namespace tavrix
{

class BatchList;

class RowClearance
{
public:
    struct Ruling {
        After after = After::GoOn; // of an alert that was shown; where it is another one, nothing else counts
        bool stopsBatch = false;
        bool keepsOlder = false; // refused because what stands under the name is to stay
        QString refusal;         // why the row fails; nothing: its output can be written
    };

    RowClearance(Session& session, const OutputGuard& guard);

    // May ask a person. The guard has looked at the output before.
    [[nodiscard]] Ruling look(int row, const QString& output) const;

    // The answer to the replace question for every batch: 1 replace, 0 keep, no value asks.
    void setReplacePolicy(std::optional<int> policy) { replacePolicy_ = policy; }

private:
    [[nodiscard]] QString refusal(int row, const QString& output) const;
    [[nodiscard]] Answer replaceAnswer(const QString& output) const;
    [[nodiscard]] Ruling roomFor(int row, const QString& output) const;
    [[nodiscard]] bool fitsByRule(int row, const QString& output) const;
    [[nodiscard]] BatchList& rows() const;

    Session& session_;
    const OutputGuard& guard_;
    std::optional<int> replacePolicy_;
};

} // namespace tavrix
