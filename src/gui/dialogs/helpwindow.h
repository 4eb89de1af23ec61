// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QWidget>

class QHBoxLayout;
class QLabel;
class QPushButton;
class QStackedWidget;
class QToolButton;

namespace tavrix
{

class MovieWidget;
class SlideView;

// The help: a short movie, and the same slides as pages to be read at leisure. Without a movie or a player only the
// pages.
class HelpWindow : public QWidget
{
    Q_OBJECT
public:
    HelpWindow();
    ~HelpWindow() override;

    // Brings the window up with the movie, or with the pages where no movie can be played.
    void showHelp();
    void showPages();
    void showMovie();
    [[nodiscard]] bool showsMovie() const;
    // From 1.
    [[nodiscard]] int page() const { return page_; }
    // Path of the movie in the language in force, else in English; nothing when the build has made none.
    [[nodiscard]] static QString moviePath();

protected:
    void hideEvent(QHideEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    void buildControls(QHBoxLayout* line);
    void turnTo(int page);
    void refresh();

    QStackedWidget* stack_;
    MovieWidget* movie_;
    SlideView* slide_;
    QToolButton* play_ = nullptr;
    QPushButton* previous_ = nullptr;
    QPushButton* next_ = nullptr;
    QPushButton* kind_ = nullptr;
    QLabel* number_ = nullptr;
    int page_ = 1;
    bool movieUsable_ = true;
};

} // namespace tavrix
