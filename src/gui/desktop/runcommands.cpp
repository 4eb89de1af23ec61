// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/desktop/runcommands.h"

#include "app/appdelegate.h"
#include "base/dialogue/runloopgate.h"

#include <QPointer>

namespace tavrix
{

RunCommands::RunCommands(appDelegate& controller, QObject* parent) : QObject(parent), controller_(controller) {}

bool RunCommands::shows(int segment, const QString& image) const
{
    const SegmentedControl& control = controller_.model().encStopBt;
    return control.isEnabled() && !control.isHidden() && control.imageName(segment) == image;
}

bool RunCommands::isPaused() const
{
    return controller_.isEncoding() &&
           controller_.model().encStopBt.imageName(encStopSegmentPause) == controlImage::play;
}

bool RunCommands::canPause() const
{
    return controller_.isEncoding() && shows(encStopSegmentPause, controlImage::pause);
}

void RunCommands::press(int segment, const QString& image)
{
    // Later, because a stop asks and tells: whoever sent the order has his answer before.
    QMetaObject::invokeMethod(
        this,
        [this, segment, image] {
            RunLoopGate::instance().deliver([self = QPointer(this), segment, image] {
                if (self && self->controller_.isEncoding() && self->shows(segment, image)) {
                    SegmentedControl& control = self->controller_.model().encStopBt;
                    control.setSelectedSegment(segment);
                    self->controller_.iba_encStopBt(&control);
                }
            });
        },
        Qt::QueuedConnection);
}

void RunCommands::pause()
{
    press(encStopSegmentPause, controlImage::pause);
}

void RunCommands::resume()
{
    press(encStopSegmentPause, controlImage::play);
}

void RunCommands::stop()
{
    press(encStopSegmentStop, controlImage::stop);
}

} // namespace tavrix
