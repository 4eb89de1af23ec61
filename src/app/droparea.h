// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// The place where clips are dropped: open, closed for the time of an intake, or closed and knocked at.

#include "app/windowmodel.h"

namespace tavrix
{

// Its five controls and the process-wide gate always change together.
class DropArea
{
public:
    explicit DropArea(DropControls& controls) : controls_(controls) {}

    [[nodiscard]] bool isOpen() const;
    void open();
    void close();
    // A drop came while it was closed.
    void refuse();

private:
    DropControls& controls_;
};

} // namespace tavrix
