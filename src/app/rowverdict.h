// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// What the tools say of a row's output.

#include "judge/verdict.h"
#include "sys/fileidentity.h"

#include <QString>

#include <optional>

namespace tavrix
{

// Picks out of what a row's children write which file each of them makes and what it says of it. The worse verdict of
// both passes is kept: a second pass finds whole what the first one could not read to its end.
class RowVerdict
{
public:
    void begin();
    // The next child of the same row.
    void beginPass();
    // Any piece of a child's text; a line may come in two.
    void read(const QString& text);
    // Nothing when no tool has judged.
    [[nodiscard]] const std::optional<judge::Verdict>& verdict() const { return verdict_; }
    // Whether the running pass's tool has judged.
    [[nodiscard]] bool isPassJudged() const { return passJudged_; }
    // Judged in the running pass, and no pass has failed.
    [[nodiscard]] bool isGood() const;
    // The file that the running pass's tool writes, by device and inode; nothing until it has told.
    [[nodiscard]] const std::optional<FileIdentity>& output() const { return output_; }

private:
    void take(const QString& line);

    QString open_; // begins the line that is not yet whole
    std::optional<judge::Verdict> verdict_;
    std::optional<FileIdentity> output_;
    bool passJudged_ = false;
};

} // namespace tavrix
