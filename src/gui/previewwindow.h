#pragma once

#include <QWidget>

class QHBoxLayout;
class QLabel;
class QSlider;
class QToolButton;

namespace tavrix
{

class MovieWidget;

// Plays the clip of a row, with play, stop, loop, volume and a time line.
class PreviewWindow : public QWidget
{
    Q_OBJECT
public:
    PreviewWindow();
    ~PreviewWindow() override;

    // Shows the window in any case; a clip that cannot be opened is said there.
    void showMovie(const QString& path);
    [[nodiscard]] MovieWidget& movieWidget() const { return *movie_; }

protected:
    void closeEvent(QCloseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    void buildControls(QHBoxLayout* line);
    void buildVolume(QHBoxLayout* line);
    void applyVolume();
    void showSoundDevice();
    void togglePlay();
    void stop();
    void showTime();

    MovieWidget* movie_;
    QLabel* words_;
    QToolButton* play_ = nullptr;
    QSlider* time_ = nullptr;
    QSlider* volume_ = nullptr;
    QLabel* timeText_ = nullptr;
};

} // namespace tavrix
