// SPDX-License-Identifier: GPL-3.0-or-later
// A view that plays a movie.
#pragma once

#include "gui/preview/clipplayer.h"
#include "gui/preview/framescaler.h"
#include "quicktime/rules/movieview.h"

#include <QImage>
#include <QVideoFrame>
#include <QWidget>

#include <memory>
#include <optional>

namespace tavrix
{

// Shows a movie on Qt Multimedia. Frames are painted like any other picture, so that the view works without a graphics
// card too; a machine that is too slow for all of them shows fewer. Where the file cannot be played it says so. Without
// a sound device it plays in silence.
class MovieWidget : public QWidget, public MovieView
{
    Q_OBJECT
public:
    explicit MovieWidget(QWidget* parent = nullptr);

    void setMovie(const std::shared_ptr<Movie>& movie) override;
    [[nodiscard]] std::shared_ptr<Movie> movie() const override { return movie_; }
    void play() override;
    void pause() override;
    [[nodiscard]] MediaTime currentTime() const override;
    void setCurrentTime(const MediaTime& time) override;
    void movieSettingsChanged() override;

    [[nodiscard]] bool isPlaying() const { return player_.isPlaying(); }
    [[nodiscard]] bool hasFailed() const { return failed_; }
    // When the frame that is shown begins and ends by the player's clock, in seconds; nothing when it does not say.
    [[nodiscard]] std::optional<double> frameStart() const;
    [[nodiscard]] std::optional<double> frameEnd() const;
    // A picture in the place of the player's frames, until the next one of these comes.
    void showStill(const QImage& picture);
    [[nodiscard]] bool showsStill() const { return !still_.isNull(); }
    [[nodiscard]] bool hasFrame() const { return frame_.isValid(); }
    [[nodiscard]] ClipPlayer& player() { return player_; }

Q_SIGNALS:
    void playingChanged(bool playing);
    void positionChanged();
    void firstFrame();
    void failed();

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    void showNewestFrame();
    [[nodiscard]] QSize shownSize() const;
    void fail();

    std::shared_ptr<Movie> movie_;
    ClipPlayer player_;
    QVideoFrame frame_;
    QImage still_;   // null: the frame is shown
    QImage picture_; // of the frame, at the size it is shown in; null when it has to be made
    FrameScaler scaler_;
    bool failed_ = false;
};

} // namespace tavrix
