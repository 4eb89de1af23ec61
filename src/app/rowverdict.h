#pragma once

// What the tools say of a row's output.

#include "judge/verdict.h"

#include <QString>

#include <optional>

namespace tavrix
{

// Picks the verdicts out of what a row's children write, and keeps the worse of both passes: a second pass finds whole
// what the first one could not read to its end.
class RowVerdict
{
public:
    void begin();
    // What the first pass, a copy, could not hide is left out by the second.
    void beginSecondPass();
    // Any piece of a child's text; a line may come in two.
    void read(const QString& text);
    // Nothing when no tool has judged.
    [[nodiscard]] const std::optional<judge::Verdict>& verdict() const { return verdict_; }

private:
    void take(const QString& line);

    QString open_; // begins the line that is not yet whole
    std::optional<judge::Verdict> verdict_;
};

} // namespace tavrix
