// SPDX-License-Identifier: GPL-3.0-or-later
// The line of controls below the preview: play, stop, single steps, the time, loop, volume.
#pragma once

#include <QWidget>

class QCheckBox;
class QHBoxLayout;
class QLabel;
class QSlider;
class QToolButton;

namespace tavrix
{

class MovieWidget;

// Loop and volume act on the movie; the rest is told, since what it does depends on the picture that is shown.
class PlayBar : public QWidget
{
    Q_OBJECT
public:
    // The movie is not owned and lives as long.
    explicit PlayBar(MovieWidget& movie, QWidget* parent);

    // Another clip: no loop, while the volume stays what it was.
    void beginClip();
    void applyVolume();
    // Both in seconds.
    void showTime(double now, double duration);

Q_SIGNALS:
    void playWished();
    void stopWished();
    void stepWished(int pictures); // less than 0: back

private:
    void addPlay(QHBoxLayout* line);
    void addSteps(QHBoxLayout* line);
    void addLoop(QHBoxLayout* line);
    void addVolume(QHBoxLayout* line);
    void showSoundDevice();
    void showPlaying(bool playing);

    MovieWidget& movie_;
    QToolButton* play_ = nullptr;
    QCheckBox* loop_ = nullptr;
    QSlider* volume_ = nullptr;
    QLabel* timeText_ = nullptr;
};

} // namespace tavrix
