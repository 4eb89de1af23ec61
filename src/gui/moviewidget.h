// A view that plays a movie.
#pragma once

#include "gui/framescaler.h"
#include "gui/newestframe.h"
#include "quicktime/movieview.h"

#include <QImage>
#include <QMediaDevices>
#include <QVideoFrame>
#include <QWidget>

#include <memory>

class QAudioOutput;
class QMediaPlayer;
class QVideoSink;

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
    ~MovieWidget() override;

    void setMovie(const std::shared_ptr<Movie>& movie) override;
    [[nodiscard]] std::shared_ptr<Movie> movie() const override { return movie_; }
    void play() override;
    void pause() override;
    [[nodiscard]] MediaTime currentTime() const override;
    void setCurrentTime(const MediaTime& time) override;
    void movieSettingsChanged() override;

    [[nodiscard]] bool isPlaying() const;
    // The file cannot be played.
    [[nodiscard]] bool hasFailed() const { return failed_; }
    [[nodiscard]] bool hasFrame() const { return frame_.isValid(); }
    [[nodiscard]] bool hasSoundDevice() const { return sound_ != nullptr; }

Q_SIGNALS:
    void playingChanged(bool playing);
    void positionChanged();
    void firstFrame(); // the first picture of the movie is there
    void failed();
    void soundDeviceChanged();

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    void watchFrames();
    void showNewestFrame();
    void useSoundDevice();
    [[nodiscard]] QSize shownSize() const;
    void fail();

    std::shared_ptr<Movie> movie_;
    QVideoSink* sink_;
    std::unique_ptr<QMediaPlayer> player_;
    QMediaDevices devices_;
    std::unique_ptr<QAudioOutput> sound_; // null without a sound device
    NewestFrame newest_;
    QVideoFrame frame_;
    QImage picture_; // of the frame, at the size it is shown in; null when it has to be made
    FrameScaler scaler_;
    bool failed_ = false;
};

} // namespace tavrix
