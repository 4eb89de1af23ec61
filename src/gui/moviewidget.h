#pragma once

#include "quicktime/movieview.h"

#include <QImage>
#include <QWidget>

class QAudioOutput;
class QMediaPlayer;
class QVideoFrame;
class QVideoSink;

namespace tavrix
{

// Shows a movie on Qt Multimedia. Frames are painted like any other picture, so that the view works without a graphics
// card too. Where the file cannot be played it says so.
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
    [[nodiscard]] bool hasFrame() const { return !frame_.isNull(); }

Q_SIGNALS:
    void playingChanged(bool playing);
    void positionChanged();
    void firstFrame(); // the first picture of the movie is there
    void failed();

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    void takeFrame(const QVideoFrame& frame);
    void fail();

    std::shared_ptr<Movie> movie_;
    QMediaPlayer* player_;
    QAudioOutput* audio_;
    QVideoSink* sink_;
    QImage frame_;
    bool failed_ = false;
};

} // namespace tavrix
