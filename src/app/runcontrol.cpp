// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/runcontrol.h"

#include "app/toolchild.h"
#include "app/windowmodel.h"
#include "base/text/log.h"

#include <utility>

namespace tavrix
{

RunControl::RunControl(SegmentedControl& control, ToolChild& child, std::function<void()> stop)
    : control_(control), child_(child), stop_(std::move(stop))
{
}

void RunControl::press(SegmentedControl& control)
{
    const int segment = control.selectedSegment();
    control.setSelectedSegment(-1);
    const QString image = control.imageName(segment);
    if (image == controlImage::pause) {
        logLine(QStringLiteral("process             : pause"));
        control.setImageName(segment, controlImage::play);
        child_.suspend();
    } else if (image == controlImage::play) {
        logLine(QStringLiteral("process             : play"));
        control.setImageName(segment, controlImage::pause);
        child_.resume();
    } else if (image == controlImage::stop) {
        logLine(QStringLiteral("process             : stop"));
        stop_();
    }
}

void RunControl::pauseForDrop()
{
    disabledForDrop_ = true;
    control_.setEnabled(false);
    // Pressing the control toggles: an encode that the user has paused must not be resumed by a drop.
    if (child_.isHeld() && control_.imageName(encStopSegmentPause) == controlImage::pause) {
        pausedForDrop_ = true;
        pressPause();
    }
}

void RunControl::resumeAfterDrop()
{
    if (std::exchange(disabledForDrop_, false)) {
        control_.setEnabled(true);
    }
    if (std::exchange(pausedForDrop_, false) && control_.imageName(encStopSegmentPause) == controlImage::play) {
        pressPause();
    }
}

void RunControl::pressPause()
{
    control_.setSelectedSegment(encStopSegmentPause);
    press(control_);
}

} // namespace tavrix
