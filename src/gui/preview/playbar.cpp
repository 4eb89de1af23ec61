// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/preview/playbar.h"

#include "base/text/format.h"
#include "base/text/roundingconversions.h"
#include "gui/preview/moviewidget.h"
#include "gui/widgets/images.h"
#include "gui/widgets/windowtext.h"
#include "quicktime/rules/movieview.h"

#include <QCheckBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QSlider>
#include <QToolButton>

#include <tuple>

namespace tavrix
{

namespace
{

constexpr int volumeSteps = 100;

QToolButton* imageButton(const QString& image, const QString& name, QWidget* parent)
{
    auto* button = new QToolButton(parent);
    button->setIcon(imageNamed(image));
    button->setObjectName(name);
    button->setFocusPolicy(Qt::StrongFocus);
    return button;
}

QString minutesText(double seconds)
{
    const int whole = truncatedInt(seconds);
    return formatText(QStringLiteral("%d:%02d"), {whole / 60, whole % 60});
}

void nameControl(QWidget* widget, const QString& words)
{
    widget->setAccessibleName(words);
    widget->setToolTip(words);
}

} // namespace

PlayBar::PlayBar(MovieWidget& movie, QWidget* parent) : QWidget(parent), movie_(movie)
{
    auto* line = new QHBoxLayout(this);
    line->setContentsMargins(0, 0, 0, 0);
    addPlay(line);
    addSteps(line);
    timeText_ = new QLabel(this);
    timeText_->setObjectName(QStringLiteral("previewTimeStr"));
    line->addWidget(timeText_);
    line->addStretch(1);
    addLoop(line);
    addVolume(line);
    setFocusProxy(play_);
}

void PlayBar::addPlay(QHBoxLayout* line)
{
    play_ = imageButton(QStringLiteral("btPlay"), QStringLiteral("previewPlayBt"), this);
    nameControl(play_, windowText("Win_play"));
    connect(play_, &QToolButton::clicked, this, &PlayBar::playWished);
    connect(&movie_, &MovieWidget::playingChanged, this, &PlayBar::showPlaying);
    line->addWidget(play_);
    auto* stopButton = imageButton(QStringLiteral("btStop"), QStringLiteral("previewStopBt"), this);
    nameControl(stopButton, windowText("Win_image_btStop"));
    connect(stopButton, &QToolButton::clicked, this, &PlayBar::stopWished);
    line->addWidget(stopButton);
}

void PlayBar::addSteps(QHBoxLayout* line)
{
    for (const auto& [name, text, words, pictures] :
         {std::tuple("previewBackBt", "<", "Win_stepBack", -1), std::tuple("previewOnBt", ">", "Win_stepOn", 1)}) {
        auto* button = new QToolButton(this);
        button->setObjectName(QLatin1String(name));
        button->setText(QLatin1String(text));
        button->setAutoRepeat(true);
        nameControl(button, windowText(words));
        connect(button, &QToolButton::clicked, this, [this, count = pictures] { Q_EMIT stepWished(count); });
        line->addWidget(button);
    }
}

void PlayBar::addLoop(QHBoxLayout* line)
{
    loop_ = new QCheckBox(windowText("Win_loop"), this);
    loop_->setObjectName(QStringLiteral("previewLoop"));
    connect(loop_, &QCheckBox::toggled, this, [this](bool on) {
        if (on) {
            movieviewLoop(movie_);
        } else if (movie_.movie()) {
            movie_.movie()->setLoops(false);
            movie_.movieSettingsChanged();
        }
    });
    line->addWidget(loop_);
}

void PlayBar::addVolume(QHBoxLayout* line)
{
    auto* caption = new QLabel(windowText("Win_acc_volume"), this);
    caption->setProperty("role", QStringLiteral("caption"));
    line->addSpacing(6);
    line->addWidget(caption);
    volume_ = new QSlider(Qt::Horizontal, this);
    volume_->setObjectName(QStringLiteral("previewVolume"));
    volume_->setRange(0, volumeSteps);
    volume_->setValue(volumeSteps);
    volume_->setFixedWidth(80);
    nameControl(volume_, windowText("Win_acc_volume"));
    connect(volume_, &QSlider::valueChanged, this, &PlayBar::applyVolume);
    line->addWidget(volume_);
    connect(&movie_.player(), &ClipPlayer::soundDeviceChanged, this, &PlayBar::showSoundDevice);
    showSoundDevice();
}

void PlayBar::showSoundDevice()
{
    const bool heard = movie_.player().hasSoundDevice();
    volume_->setEnabled(heard);
    volume_->setToolTip(windowText(heard ? "Win_acc_volume" : "Win_noSoundDevice"));
}

void PlayBar::showPlaying(bool playing)
{
    play_->setIcon(imageNamed(playing ? QStringLiteral("btPause") : QStringLiteral("btPlay")));
    nameControl(play_, playing ? windowText("Win_image_btPause") : windowText("Win_play"));
}

void PlayBar::beginClip()
{
    loop_->setChecked(false);
}

void PlayBar::applyVolume()
{
    movieviewVolume(movie_, static_cast<float>(volume_->value()) / volumeSteps);
}

void PlayBar::showTime(double now, double duration)
{
    timeText_->setText(windowText("Win_timeOf", {minutesText(now), minutesText(duration)}));
}

} // namespace tavrix
