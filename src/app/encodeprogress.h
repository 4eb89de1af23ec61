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
};

} // namespace tavrix
