// SPDX-License-Identifier: GPL-3.0-or-later
// Plays one clip after the other: pictures for a widget, sound where there is a device.
#pragma once

#include "gui/preview/newestframe.h"

#include <QMediaDevices>
#include <QObject>
#include <QString>
#include <QTimer>
#include <QVideoFrame>

#include <memory>

class QVideoSink;

namespace tavrix
{

// Stands between Qt's player and the window, which the player must not end, hang or flood: without a sound device the
// player would end the program; when the device goes away while it plays, it would wait for ever; and its frames come
// from a thread of its own, faster than a slow window paints.
class ClipPlayer : public QObject
{
    Q_OBJECT
public:
    explicit ClipPlayer(QObject* parent = nullptr);
    ~ClipPlayer() override;

    // "" unloads.
    void setClip(const QString& path);
    [[nodiscard]] bool canPlay() const;
    void play();
    void pause();
    void stop();
    [[nodiscard]] bool isPlaying() const;
    [[nodiscard]] qint64 position() const; // milliseconds
    void setPosition(qint64 milliseconds);
    void setLoops(bool on);
    void setVolume(float volume); // 0 to 1

    // The frame that came last, once; an invalid one when none has come since.
    [[nodiscard]] QVideoFrame takeFrame() { return frames_.take(); }
    [[nodiscard]] bool hasSoundDevice() const;
    // What the pictures come through.
    [[nodiscard]] QVideoSink* videoSink() const;
    // Goes on in silence, for this run of the program: the sound that was playing cannot be ended any more.
    void giveUpSound();
    // True once a sound was given up: the sound library then waits for ever in its part of the program's end.
    [[nodiscard]] static bool hasGivenUpSound();

Q_SIGNALS:
    // A frame waits; said once until it is taken.
    void frameCame();
    void positionChanged();
    void playingChanged(bool playing);
    void failed(const QString& reason);
    void soundDeviceChanged();

private:
    struct Engine;
    [[nodiscard]] std::unique_ptr<Engine> makeEngine();
    void followSoundDevice();
    void watchSound();

    std::unique_ptr<Engine> engine_;
    NewestFrame frames_;
    QMediaDevices devices_;
    QTimer watch_;
    QString path_;
    float volume_ = 1;
    bool loops_ = false;
    qint64 lastPosition_ = 0;
    int standing_ = 0; // times that the position was found where it was
};

} // namespace tavrix
