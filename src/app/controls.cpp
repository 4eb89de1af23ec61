// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/controls.h"

namespace tavrix
{

Control::Control(const char* name, QObject* parent) : QObject(parent)
{
    setObjectName(QLatin1String(name));
}

void Control::setHidden(bool hidden)
{
    assign(hidden_, hidden);
}

void Control::setEnabled(bool enabled)
{
    assign(enabled_, enabled);
}

SegmentedControl::SegmentedControl(const char* name, const QStringList& imageNames, QObject* parent)
    : Control(name, parent), imageNames_(imageNames)
{
}

void SegmentedControl::setSelectedSegment(int segment)
{
    if (segment >= -1 && segment < segmentCount()) {
        assign(selected_, segment);
    }
}

void SegmentedControl::setImageName(int segment, const QString& imageName)
{
    if (segment >= 0 && segment < segmentCount()) {
        assign(imageNames_[segment], imageName);
    }
}

void ProgressBar::setRange(double minimum, double maximum)
{
    assign(minimum_, minimum);
    assign(maximum_, maximum);
}

} // namespace tavrix
