#include "gui/moviewidget.h"

#include "base/log.h"
#include "gui/windowtext.h"

#include <QAudioDevice>
#include <QAudioOutput>
#include <QCoreApplication>
#include <QFileInfo>
#include <QMediaPlayer>
#include <QPainter>
#include <QUrl>
#include <QVideoSink>

namespace tavrix
{

namespace
{

constexpr qint32 fallbackScale = 600;
constexpr qint64 millisecondsPerSecond = 1000;

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

MovieWidget::MovieWidget(QWidget* parent) : QWidget(parent), sink_(new QVideoSink(this)), player_(makePlayer())
{
    setMinimumSize(320, 180);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
    useSoundDevice();
    connect(&devices_, &QMediaDevices::audioOutputsChanged, this, &MovieWidget::useSoundDevice);
    watchFrames();
    connect(player_.get(), &QMediaPlayer::errorOccurred, this, [this](QMediaPlayer::Error, const QString& text) {
        logLine(QStringLiteral("preview             :-( %@"), {text});
        fail();
    });
    connect(player_.get(), &QMediaPlayer::positionChanged, this, &MovieWidget::positionChanged);
    connect(player_.get(), &QMediaPlayer::playbackStateChanged, this, [this] { Q_EMIT playingChanged(isPlaying()); });
}

MovieWidget::~MovieWidget()
{
    // The player's threads must not deliver into a half-destroyed widget: they have ended when the player is gone.
    player_->disconnect(this);
    sink_->disconnect(this);
    player_.reset();
}

// Frames come from a thread of the player. Waiting for the window in its event queue they would fill the memory where
// painting is slower than the clip.
void MovieWidget::watchFrames()
{
    player_->setVideoSink(sink_);
    const auto keep = [this](const QVideoFrame& frame) {
        if (frame.isValid() && newest_.put(frame)) {
            QMetaObject::invokeMethod(this, &MovieWidget::showNewestFrame, Qt::QueuedConnection);
        }
    };
    connect(sink_, &QVideoSink::videoFrameChanged, this, keep, Qt::DirectConnection);
}

// The player would end the whole program on a sound output without a device.
void MovieWidget::useSoundDevice()
{
    const QList<QAudioDevice> devices = QMediaDevices::audioOutputs();
    const QAudioDevice device = QMediaDevices::defaultAudioOutput();
    const bool had = hasSoundDevice();
    if (had && devices.contains(sound_->device())) {
        return;
    }
    player_->setAudioOutput(nullptr);
    sound_.reset();
    if (!device.isNull()) {
        sound_ = std::make_unique<QAudioOutput>(device);
        player_->setAudioOutput(sound_.get());
        movieSettingsChanged();
    }
    if (had != hasSoundDevice()) {
        Q_EMIT soundDeviceChanged();
    }
}

void MovieWidget::setMovie(const std::shared_ptr<Movie>& movie)
{
    movie_ = movie;
    failed_ = false;
    player_->stop();
    player_->setSource(movie ? QUrl::fromLocalFile(movie->path()) : QUrl());
    (void)newest_.take();
    frame_ = QVideoFrame();
    picture_ = QImage();
    if (movie) {
        movieSettingsChanged();
        if (!player_->isAvailable()) {
            fail();
        }
    }
    update();
}

void MovieWidget::play()
{
    if (movie_ && !failed_) {
        player_->play();
    }
}

void MovieWidget::pause()
{
    player_->pause();
}

bool MovieWidget::isPlaying() const
{
    return player_->playbackState() == QMediaPlayer::PlayingState;
}

MediaTime MovieWidget::currentTime() const
{
    const qint32 known = movie_ ? movie_->duration().timeScale : 0;
    const qint32 scale = known > 0 ? known : fallbackScale;
    return QTMakeTime(player_->position() * scale / millisecondsPerSecond, scale);
}

void MovieWidget::setCurrentTime(const MediaTime& time)
{
    player_->setPosition(valueInScale(time, millisecondsPerSecond));
}

void MovieWidget::movieSettingsChanged()
{
    if (movie_) {
        player_->setLoops(movie_->loops() ? QMediaPlayer::Infinite : QMediaPlayer::Once);
        if (sound_) {
            sound_->setVolume(movie_->volume());
        }
    }
}

void MovieWidget::showNewestFrame()
{
    const QVideoFrame newest = newest_.take();
    if (!newest.isValid() || !movie_) {
        return;
    }
    const bool first = !frame_.isValid();
    frame_ = newest;
    picture_ = QImage();
    update();
    if (first) {
        Q_EMIT firstFrame();
    }
}

void MovieWidget::fail()
{
    if (!failed_) {
        failed_ = true;
        player_->stop();
        update();
        Q_EMIT failed();
    }
}

// The display size, not the pixel count: camera clips can have pixels that are not square.
QSize MovieWidget::shownSize() const
{
    QSizeF shape = frame_.size();
    if (movie_ && movie_->currentSize().width > 0 && movie_->currentSize().height > 0) {
        shape = QSizeF(movie_->currentSize().width, movie_->currentSize().height);
    }
    return shape.scaled(size(), Qt::KeepAspectRatio).toSize();
}

void MovieWidget::paintEvent(QPaintEvent* /*event*/)
{
    QPainter painter(this);
    painter.fillRect(rect(), Qt::black);
    const QSize shown = shownSize();
    const QSize pixels = (QSizeF(shown) * devicePixelRatioF()).toSize();
    if (!failed_ && frame_.isValid() && picture_.size() != pixels) {
        picture_ = scaler_.picture(frame_, pixels);
    }
    if (failed_ || picture_.isNull()) {
        painter.setPen(Qt::white);
        const QString words = failed_ ? windowText("Win_cannotPlay") : QString();
        painter.drawText(rect().adjusted(20, 20, -20, -20), static_cast<int>(Qt::AlignCenter) | Qt::TextWordWrap,
                         words);
        return;
    }
    painter.drawImage(QRect(QPoint((width() - shown.width()) / 2, (height() - shown.height()) / 2), shown), picture_);
}

} // namespace tavrix
