#include "gui/moviewidget.h"

#include "base/log.h"
#include "gui/windowtext.h"

#include <QAudioOutput>
#include <QCoreApplication>
#include <QFileInfo>
#include <QMediaPlayer>
#include <QPainter>
#include <QUrl>
#include <QVideoFrame>
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

QMediaPlayer* makePlayer(QObject* parent)
{
    [[maybe_unused]] static const bool chosen = chooseBackend();
    return new QMediaPlayer(parent);
}

} // namespace

MovieWidget::MovieWidget(QWidget* parent)
    : QWidget(parent), player_(makePlayer(this)), audio_(new QAudioOutput(this)), sink_(new QVideoSink(this))
{
    setMinimumSize(320, 180);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
    player_->setAudioOutput(audio_);
    player_->setVideoSink(sink_);
    connect(sink_, &QVideoSink::videoFrameChanged, this, &MovieWidget::takeFrame);
    connect(player_, &QMediaPlayer::errorOccurred, this, [this](QMediaPlayer::Error, const QString& text) {
        logLine(QStringLiteral("preview             :-( %@"), {text});
        fail();
    });
    connect(player_, &QMediaPlayer::positionChanged, this, &MovieWidget::positionChanged);
    connect(player_, &QMediaPlayer::playbackStateChanged, this, [this] { Q_EMIT playingChanged(isPlaying()); });
}

MovieWidget::~MovieWidget()
{
    // The player's threads must not deliver into a half-destroyed widget.
    player_->disconnect(this);
    sink_->disconnect(this);
    player_->stop();
}

void MovieWidget::setMovie(const std::shared_ptr<Movie>& movie)
{
    movie_ = movie;
    frame_ = QImage();
    failed_ = false;
    player_->stop();
    player_->setSource(movie ? QUrl::fromLocalFile(movie->path()) : QUrl());
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
        audio_->setVolume(movie_->volume());
    }
}

void MovieWidget::takeFrame(const QVideoFrame& frame)
{
    if (!frame.isValid()) {
        return;
    }
    const bool first = frame_.isNull();
    frame_ = frame.toImage();
    if (first && !frame_.isNull()) {
        Q_EMIT firstFrame();
    }
    update();
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

void MovieWidget::paintEvent(QPaintEvent* /*event*/)
{
    QPainter painter(this);
    painter.fillRect(rect(), Qt::black);
    if (failed_ || frame_.isNull()) {
        painter.setPen(Qt::white);
        const QString words = failed_ ? windowText("Win_cannotPlay") : QString();
        painter.drawText(rect().adjusted(20, 20, -20, -20), static_cast<int>(Qt::AlignCenter) | Qt::TextWordWrap,
                         words);
        return;
    }
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    // The display size, not the pixel count: camera clips can have pixels that are not square.
    QSizeF shape = frame_.size();
    if (movie_ && movie_->currentSize().width > 0 && movie_->currentSize().height > 0) {
        shape = QSizeF(movie_->currentSize().width, movie_->currentSize().height);
    }
    const QSizeF fitted = shape.scaled(size(), Qt::KeepAspectRatio);
    const QPointF corner((width() - fitted.width()) / 2, (height() - fitted.height()) / 2);
    painter.drawImage(QRectF(corner, fitted), frame_);
}

} // namespace tavrix
