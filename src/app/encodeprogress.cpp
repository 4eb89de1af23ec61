// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/encodeprogress.h"

#include "base/text/format.h"
#include "base/text/log.h"
#include "encode/progress.h"

namespace tavrix
{

namespace
{

constexpr float wholePercents = 100;

} // namespace

void EncodeProgress::begin(float maximum, int parser)
{
    SegmentedControl& control = controls_.encStopBt;
    if (control.imageName(encStopSegmentPause) == controlImage::play) {
        control.setImageName(encStopSegmentPause, controlImage::pause);
    }
    control.setHidden(false);
    control.setEnabled(true);
    controls_.mainEncProgressPercentStr.setStringValue(QString());
    maximum_ = maximum;
    parser_ = parser;
    if (maximum > 0) {
        controls_.encTaskProgress.setIndeterminate(false);
        controls_.encTaskProgress.setRange(0, static_cast<double>(maximum));
        controls_.encTaskProgress.setDoubleValue(0);
        previous_ = 0;
    }
}

std::optional<float> EncodeProgress::show(const QString& text)
{
    const float value = progressValue(parser_, text);
    if (maximum_ == 0.0F || !progressAccepted(value, maximum_)) {
        return std::nullopt;
    }
    controls_.encTaskProgress.incrementBy(static_cast<double>(value - previous_));
    const double percent = static_cast<double>(value * 100.0F / maximum_);
    controls_.mainEncProgressPercentStr.setStringValue(formatText(QStringLiteral("%.0f %%"), {percent}));
    logDebug(QStringLiteral("progress str        : %.0f"), {percent});
    previous_ = value;
    return value;
}

std::optional<double> EncodeProgress::fraction(const QString& text) const
{
    const bool percents = parser_ == parseMovencoder;
    const float whole = percents ? wholePercents : maximum_;
    const float value = progressValue(parser_, text);
    if (whole <= 0 || !progressAccepted(value, progressSentinel / 2)) {
        return std::nullopt;
    }
    return qMin(1.0, static_cast<double>(value / whole));
}

void EncodeProgress::setPass(int pass, int passes)
{
    pass_ = pass;
    passes_ = passes;
}

void EncodeProgress::fill()
{
    controls_.mainEncProgressPercentStr.setStringValue(QString());
    controls_.encStopBt.setHidden(true);
    controls_.encTaskProgress.setDoubleValue(controls_.encTaskProgress.maxValue());
}

void EncodeProgress::reset()
{
    controls_.encTaskProgress.setDoubleValue(0);
    controls_.encTaskProgress.stopAnimation();
    controls_.mainEncProgressPercentStr.setStringValue(QString());
    maximum_ = 0;
    previous_ = 0;
    controls_.mainEncProgressCaptionStr.setStringValue(QString());
    controls_.encStopBt.setHidden(true);
}

} // namespace tavrix
