// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/preview/moviewidget.h"

#include "base/text/log.h"
#include "gui/widgets/windowtext.h"

#include <QPainter>

namespace tavrix
{

namespace
{

constexpr qint32 fallbackScale = 600;
constexpr qint64 millisecondsPerSecond = 1000;

} // namespace

MovieWidget::MovieWidget(QWidget* parent) : QWidget(parent)
{
    setMinimumSize(320, 180);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
    connect(&player_, &ClipPlayer::frameCame, this, &MovieWidget::showNewestFrame);
    connect(&player_, &ClipPlayer::failed, this, [this](const QString& reason) {
        logLine(QStringLiteral("preview             :-( %@"), {reason});
        fail();
    });
    connect(&player_, &ClipPlayer::positionChanged, this, &MovieWidget::positionChanged);
    connect(&player_, &ClipPlayer::playingChanged, this, &MovieWidget::playingChanged);
}

void MovieWidget::setMovie(const std::shared_ptr<Movie>& movie)
{
    movie_ = movie;
    failed_ = false;
    player_.setClip(movie ? movie->path() : QString());
    frame_ = QVideoFrame();
    still_ = QImage();
    picture_ = QImage();
    if (movie) {
        movieSettingsChanged();
        if (!player_.canPlay()) {
            fail();
        }
    }
    update();
}

void MovieWidget::play()
{
    if (movie_ && !failed_) {
        player_.play();
    }
}

void MovieWidget::pause()
{
    player_.pause();
}

MediaTime MovieWidget::currentTime() const
{
    const qint32 known = movie_ ? movie_->duration().timeScale : 0;
    const qint32 scale = known > 0 ? known : fallbackScale;
    return QTMakeTime(player_.position() * scale / millisecondsPerSecond, scale);
}

void MovieWidget::setCurrentTime(const MediaTime& time)
{
    player_.setPosition(valueInScale(time, millisecondsPerSecond));
}

void MovieWidget::movieSettingsChanged()
{
    if (movie_) {
        player_.setLoops(movie_->loops());
        player_.setVolume(movie_->volume());
    }
}

void MovieWidget::showNewestFrame()
{
    const QVideoFrame newest = player_.takeFrame();
    if (!newest.isValid() || !movie_) {
        return;
    }
    const bool first = !frame_.isValid();
    frame_ = newest;
    picture_ = QImage();
    if (isPlaying()) {
        still_ = QImage();
    }
    update();
    if (first) {
        Q_EMIT firstFrame();
    }
}

std::optional<double> MovieWidget::frameStart() const
{
    constexpr double perSecond = 1000000;
    return frame_.isValid() && frame_.startTime() >= 0
               ? std::optional(static_cast<double>(frame_.startTime()) / perSecond)
               : std::nullopt;
}

std::optional<double> MovieWidget::frameEnd() const
{
    constexpr double perSecond = 1000000;
    return frame_.isValid() && frame_.endTime() > 0 ? std::optional(static_cast<double>(frame_.endTime()) / perSecond)
                                                    : std::nullopt;
}

void MovieWidget::showStill(const QImage& picture)
{
    still_ = picture;
    update();
}

void MovieWidget::fail()
{
    if (!failed_) {
        failed_ = true;
        player_.stop();
        update();
        Q_EMIT failed();
    }
}

// The display size, not the pixel count: camera clips can have pixels that are not square.
QSize MovieWidget::shownSize() const
{
    QSizeF shape = frame_.isValid() ? frame_.size() : still_.size();
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
    if (!still_.isNull() && !failed_) {
        painter.setRenderHint(QPainter::SmoothPixmapTransform);
        painter.drawImage(QRect(QPoint((width() - shown.width()) / 2, (height() - shown.height()) / 2), shown), still_);
        return;
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
