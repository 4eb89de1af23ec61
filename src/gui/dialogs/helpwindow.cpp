// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/dialogs/helpwindow.h"

#include "base/bundle/bundle.h"
#include "base/dialogue/localisation.h"
#include "gui/dialogs/helpslides.h"
#include "gui/preview/moviewidget.h"
#include "gui/widgets/images.h"
#include "gui/widgets/slideview.h"
#include "gui/widgets/windowtext.h"
#include "quicktime/rules/movieslots.h"

#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QPushButton>
#include <QStackedWidget>
#include <QToolButton>
#include <QVBoxLayout>

namespace tavrix
{

HelpWindow::HelpWindow() : stack_(new QStackedWidget(this)), movie_(new MovieWidget(this)), slide_(new SlideView(this))
{
    setObjectName(QStringLiteral("helpWindow"));
    setWindowTitle(windowText("Win_helpTitle"));
    setWindowIcon(imageNamed(QStringLiteral("tavrix")));
    setAttribute(Qt::WA_StyledBackground);
    auto* layout = new QVBoxLayout(this);
    movie_->setObjectName(QStringLiteral("helpMovieView"));
    movie_->setAccessibleName(windowText("Win_acc_movie"));
    slide_->setObjectName(QStringLiteral("helpSlideView"));
    stack_->addWidget(movie_);
    stack_->addWidget(slide_);
    layout->addWidget(stack_, 1);
    auto* line = new QHBoxLayout;
    buildControls(line);
    layout->addLayout(line);
    connect(movie_, &MovieWidget::failed, this, [this] {
        movieUsable_ = false;
        showPages();
    });
    resize(760, 500);
}

HelpWindow::~HelpWindow() = default;

void HelpWindow::buildControls(QHBoxLayout* line)
{
    play_ = new QToolButton(this);
    play_->setObjectName(QStringLiteral("helpPlayBt"));
    play_->setFocusPolicy(Qt::StrongFocus);
    connect(play_, &QToolButton::clicked, this,
            [this] { movie_->isPlaying() ? movieviewStop(*movie_) : movieviewPlay(*movie_); });
    connect(movie_, &MovieWidget::playingChanged, this, &HelpWindow::refresh);
    line->addWidget(play_);
    previous_ = new QPushButton(windowText("Win_previous"), this);
    previous_->setObjectName(QStringLiteral("helpPreviousBt"));
    connect(previous_, &QPushButton::clicked, this, [this] { turnTo(page_ - 1); });
    line->addWidget(previous_);
    next_ = new QPushButton(windowText("Win_next"), this);
    next_->setObjectName(QStringLiteral("helpNextBt"));
    connect(next_, &QPushButton::clicked, this, [this] { turnTo(page_ + 1); });
    line->addWidget(next_);
    number_ = new QLabel(this);
    number_->setProperty("role", QStringLiteral("caption"));
    line->addWidget(number_);
    line->addStretch(1);
    kind_ = new QPushButton(this);
    kind_->setObjectName(QStringLiteral("helpKindBt"));
    connect(kind_, &QPushButton::clicked, this, [this] { showsMovie() ? showPages() : showMovie(); });
    line->addWidget(kind_);
    auto* close = new QPushButton(windowText("Win_done"), this);
    close->setObjectName(QStringLiteral("helpCloseBt"));
    connect(close, &QPushButton::clicked, this, &QWidget::hide);
    line->addWidget(close);
}

QString HelpWindow::moviePath()
{
    const QString own = pathForResource(QStringLiteral("help/help-") + currentLanguage(), QStringLiteral("webm"));
    return own.isEmpty() ? pathForResource(QStringLiteral("help/help-en"), QStringLiteral("webm")) : own;
}

bool HelpWindow::showsMovie() const
{
    return stack_->currentWidget() == movie_;
}

void HelpWindow::showHelp()
{
    turnTo(1);
    show();
    raise();
    activateWindow();
    showMovie();
}

void HelpWindow::showMovie()
{
    const QString path = moviePath();
    if (path.isEmpty() || !movieUsable_ || !movie2MovieView(path, *movie_, false)) {
        movieUsable_ = false;
        showPages();
        return;
    }
    stack_->setCurrentWidget(movie_);
    movieviewPlay(*movie_);
    refresh();
}

void HelpWindow::showPages()
{
    movieviewStop(*movie_);
    stack_->setCurrentWidget(slide_);
    turnTo(page_);
}

void HelpWindow::turnTo(int page)
{
    page_ = qBound(1, page, qMax(1, helpSlideCount()));
    slide_->setSlide(helpSlide(page_));
    slide_->setAccessibleName(windowText(formatText(QStringLiteral("Win_help%d_a"), {page_}).toLatin1().constData()));
    refresh();
}

void HelpWindow::refresh()
{
    const bool movie = showsMovie();
    const bool playing = movie_->isPlaying();
    play_->setVisible(movie);
    play_->setIcon(imageNamed(playing ? QStringLiteral("btPause") : QStringLiteral("btPlay")));
    play_->setAccessibleName(playing ? windowText("Win_image_btPause") : windowText("Win_play"));
    previous_->setVisible(!movie);
    next_->setVisible(!movie);
    number_->setVisible(!movie);
    previous_->setEnabled(page_ > 1);
    next_->setEnabled(page_ < helpSlideCount());
    number_->setText(formatText(QStringLiteral("%d/%d"), {page_, helpSlideCount()}));
    kind_->setText(movie ? windowText("Win_asPages") : windowText("Win_asMovie"));
    kind_->setVisible(movie || (movieUsable_ && !moviePath().isEmpty()));
}

void HelpWindow::hideEvent(QHideEvent* event)
{
    movieviewStop(*movie_);
    // A minimised window comes back by itself and then shows the movie again.
    if (!event->spontaneous()) {
        movieviewRelease(*movie_);
        QTMOVIEVIEWrelease();
    }
    QWidget::hideEvent(event);
}

void HelpWindow::keyPressEvent(QKeyEvent* event)
{
    switch (event->key()) {
    case Qt::Key_Escape:
        hide();
        break;
    case Qt::Key_Right:
    case Qt::Key_PageDown:
        turnTo(page_ + 1);
        break;
    case Qt::Key_Left:
    case Qt::Key_PageUp:
        turnTo(page_ - 1);
        break;
    default:
        QWidget::keyPressEvent(event);
    }
}

} // namespace tavrix
