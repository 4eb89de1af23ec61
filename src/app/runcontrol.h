// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// The control that pauses, resumes and stops the encode.

#include <functional>

namespace tavrix
{

class SegmentedControl;
class ToolChild;

// The action of a press is the one that the pressed segment's image shows.
class RunControl
{
public:
    // `stop` is called for a press of stop. Nothing is owned.
    RunControl(SegmentedControl& control, ToolChild& child, std::function<void()> stop);

    void press(SegmentedControl& control);
    // An intake pauses the encode and gives back what it has taken: a pause made by the user stays.
    void pauseForDrop();
    void resumeAfterDrop();

private:
    void pressPause();

    SegmentedControl& control_;
    ToolChild& child_;
    std::function<void()> stop_;
    bool disabledForDrop_ = false;
    bool pausedForDrop_ = false;
};

} // namespace tavrix
