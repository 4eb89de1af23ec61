// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// The progress display of the row that is being encoded.

#include "app/windowmodel.h"

#include <optional>

namespace tavrix
{

class EncodeProgress
{
public:
    explicit EncodeProgress(EncodeControls& controls) : controls_(controls) {}

    // A child begins. The maximum is in what the child's progress lines count (seconds, percent); 0 or less shows no
    // bar. The parser is one of the selectors of encode/progress.h.
    void begin(float maximum, int parser);
    // Shows what the child's text says of its progress. The value, unless the text says nothing that counts.
    std::optional<float> show(const QString& text);
    // Of what its child says is done, between 0 and 1: the bar of a second pass counts in other units than its tool. No
    // value for a text that says nothing of it.
    [[nodiscard]] std::optional<double> fraction(const QString& text) const;
    // Which of a row's passes begins, from 1, and how many there are.
    void setPass(int pass, int passes);
    [[nodiscard]] int pass() const { return pass_; }
    [[nodiscard]] int passes() const { return passes_; }
    // The child has ended: all of it is done.
    void fill();
    // The row is over: nothing is shown.
    void reset();

    [[nodiscard]] float maximum() const { return maximum_; }

private:
    EncodeControls& controls_;
    float maximum_ = 0;
    float previous_ = 0; // value shown last
    int parser_ = 0;
    int pass_ = 1;
    int passes_ = 1;
};

} // namespace tavrix
