// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/preview/clipplayer.h"

#include "base/text/log.h"

#include <QAudioDevice>
#include <QAudioOutput>
#include <QCoreApplication>
#include <QFileInfo>
#include <QMediaPlayer>
#include <QUrl>
#include <QVideoSink>

namespace tavrix
{

namespace
{

constexpr int watchMilliseconds = 1000;
// The position follows the sound: a sound that cannot be played any more holds it.
constexpr int mostStanding = 3;

bool soundGivenUp = false;

// The player on the FFmpeg libraries reads whatever this program's tools read; the default one needs plug-ins of its
// own for camera clips. The choice counts before the first player is made.
bool chooseBackend()
{
    for (const QString& folder : QCoreApplication::libraryPaths()) {
        if (QFileInfo::exists(folder + QStringLiteral("/multimedia/libffmpegmediaplugin.so")) &&
            !qEnvironmentVariableIsSet("QT_MEDIA_BACKEND")) {
            qputenv("QT_MEDIA_BACKEND", "ffmpeg");
        }
    }
    return true;
}

std::unique_ptr<QMediaPlayer> makePlayer()
{
    [[maybe_unused]] static const bool chosen = chooseBackend();
    return std::make_unique<QMediaPlayer>();
}

} // namespace

// What plays a clip together. The player ends first: its threads use the others.
struct ClipPlayer::Engine {
    std::unique_ptr<QAudioOutput> sound; // null without a device
    std::unique_ptr<QVideoSink> sink = std::make_unique<QVideoSink>();
    std::unique_ptr<QMediaPlayer> player = makePlayer();
};

ClipPlayer::ClipPlayer(QObject* parent) : QObject(parent), engine_(makeEngine())
{
    followSoundDevice();
    connect(&devices_, &QMediaDevices::audioOutputsChanged, this, &ClipPlayer::watchSound);
    // Qt 6.4 does not always tell that a device has come or gone.
    watch_.setInterval(watchMilliseconds);
    connect(&watch_, &QTimer::timeout, this, &ClipPlayer::watchSound);
}

ClipPlayer::~ClipPlayer()
{
    engine_->player->disconnect(this);
    engine_->sink->disconnect(this);
    engine_.reset();
}

std::unique_ptr<ClipPlayer::Engine> ClipPlayer::makeEngine()
{
    auto engine = std::make_unique<Engine>();
    QMediaPlayer* player = engine->player.get();
    player->setVideoSink(engine->sink.get());
    // In the player's thread: waiting in the window's event queue the frames would fill the memory.
    const auto keep = [this](const QVideoFrame& frame) {
        if (frame.isValid() && frames_.put(frame)) {
            QMetaObject::invokeMethod(this, &ClipPlayer::frameCame, Qt::QueuedConnection);
        }
    };
    connect(engine->sink.get(), &QVideoSink::videoFrameChanged, this, keep, Qt::DirectConnection);
    connect(player, &QMediaPlayer::errorOccurred, this,
            [this](QMediaPlayer::Error, const QString& text) { Q_EMIT failed(text); });
    connect(player, &QMediaPlayer::positionChanged, this, &ClipPlayer::positionChanged);
    connect(player, &QMediaPlayer::playbackStateChanged, this, [this] { Q_EMIT playingChanged(isPlaying()); });
    return engine;
}

void ClipPlayer::setClip(const QString& path)
{
    path_ = path;
    engine_->player->stop();
    followSoundDevice();
    engine_->player->setSource(path.isEmpty() ? QUrl() : QUrl::fromLocalFile(path));
    (void)frames_.take();
    standing_ = 0;
    if (path.isEmpty()) {
        watch_.stop();
    } else {
        watch_.start();
    }
}

bool ClipPlayer::canPlay() const
{
    return engine_->player->isAvailable();
}

void ClipPlayer::play()
{
    engine_->player->play();
}

void ClipPlayer::pause()
{
    engine_->player->pause();
}

void ClipPlayer::stop()
{
    engine_->player->stop();
}

bool ClipPlayer::isPlaying() const
{
    return engine_->player->playbackState() == QMediaPlayer::PlayingState;
}

qint64 ClipPlayer::position() const
{
    return engine_->player->position();
}

void ClipPlayer::setPosition(qint64 milliseconds)
{
    engine_->player->setPosition(milliseconds);
}

void ClipPlayer::setLoops(bool on)
{
    loops_ = on;
    engine_->player->setLoops(on ? QMediaPlayer::Infinite : QMediaPlayer::Once);
}

void ClipPlayer::setVolume(float volume)
{
    volume_ = volume;
    if (engine_->sound) {
        engine_->sound->setVolume(volume);
    }
}

bool ClipPlayer::hasSoundDevice() const
{
    return engine_->sound != nullptr;
}

QVideoSink* ClipPlayer::videoSink() const
{
    return engine_->sink.get();
}

bool ClipPlayer::hasGivenUpSound()
{
    return soundGivenUp;
}

// A sound that plays is left alone: the sound server moves it to another device by itself.
void ClipPlayer::followSoundDevice()
{
    const QAudioDevice device = QMediaDevices::defaultAudioOutput();
    if (hasSoundDevice() || soundGivenUp || device.isNull()) {
        return;
    }
    engine_->sound = std::make_unique<QAudioOutput>(device);
    engine_->sound->setVolume(volume_);
    engine_->player->setAudioOutput(engine_->sound.get());
    Q_EMIT soundDeviceChanged();
}

void ClipPlayer::watchSound()
{
    followSoundDevice();
    const qint64 now = position();
    standing_ = isPlaying() && now == lastPosition_ ? standing_ + 1 : 0;
    lastPosition_ = now;
    if (hasSoundDevice() && (standing_ >= mostStanding || QMediaDevices::audioOutputs().isEmpty())) {
        giveUpSound();
    }
}

void ClipPlayer::giveUpSound()
{
    const qint64 at = position();
    const bool played = isPlaying();
    const bool heard = hasSoundDevice();
    logLine(QStringLiteral("preview             :-( sound device"));
    engine_->player->disconnect(this);
    engine_->sink->disconnect(this);
    engine_->player->pause();
    if (heard) {
        soundGivenUp = true;
        // Its threads hold a lock of the sound library that nobody frees: ending them would wait for ever.
        static_cast<void>(engine_.release());
    }
    engine_ = makeEngine();
    standing_ = 0;
    setLoops(loops_);
    if (!path_.isEmpty()) {
        engine_->player->setSource(QUrl::fromLocalFile(path_));
        engine_->player->setPosition(at);
    }
    if (played) {
        play();
    }
    if (heard) {
        Q_EMIT soundDeviceChanged();
    }
}

} // namespace tavrix
