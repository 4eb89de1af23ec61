// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/text/cliptime.h"

#include <QPointer>
#include <QWidget>

#include <optional>

class QLabel;

namespace tavrix
{

class BatchList;
class ClipPictures;
class MovieWidget;
class PlayBar;
class TrimLine;
class TrimPanel;

// Plays the clip of a row, with play, stop, loop, volume and a time line, and marks a part of it, which can be saved or
// be all that the row converts. While it does not play it shows the exact picture of a time, so that a mark stands
// between two pictures.
class PreviewWindow : public QWidget
{
    Q_OBJECT
public:
    // The list is not owned.
    explicit PreviewWindow(BatchList& rows);
    ~PreviewWindow() override;

    // Shows the window in any case; a clip that cannot be opened is said there.
    void showMovie(const QString& path);
    [[nodiscard]] MovieWidget& movieWidget() const { return *movie_; }
    // When the picture that is shown begins and ends, in seconds of the clip.
    [[nodiscard]] double shownFrom() const;
    [[nodiscard]] double shownTo() const;

protected:
    void closeEvent(QCloseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    enum class Dragged { Nothing, From, To };

    void buildTrim();
    void togglePlay();
    void pause();
    void stop();
    void stayOnLastPicture(bool playing);
    void showTime();
    // To the picture of that time; a clip that plays goes on from there.
    void goTo(double seconds);
    void step(int pictures);
    void dragMark(Dragged mark, double seconds);
    [[nodiscard]] double withinClip(double seconds) const;
    void takePicture(const QImage& image, double start, double end, double wished);
    void noteClock();
    void wishThumbnails();
    void followRow();
    void setRowPart(const std::optional<ClipPart>& part);
    void savePart();
    [[nodiscard]] int row() const;

    QPointer<BatchList> rows_;
    QString path_;
    MovieWidget* movie_;
    ClipPictures* pictures_;
    QLabel* words_;
    PlayBar* bar_;
    TrimLine* time_ = nullptr;
    TrimPanel* trim_ = nullptr;
    double duration_ = 0;
    double stillFrom_ = 0; // of the picture that was shown last while the clip did not play
    double stillTo_ = 0;
    // What the player's clock is ahead of the clip's timeline: it may count from the file's own beginning.
    double clockAhead_ = 0;
    std::optional<double> firstPicture_;
    std::optional<double> firstFrame_;
    Dragged dragged_ = Dragged::Nothing;
    double draggedTo_ = 0;
};

} // namespace tavrix
