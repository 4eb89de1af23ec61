// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/preview/previewwindow.h"

#include "app/batchlist.h"
#include "base/text/paths.h"
#include "base/text/roundingconversions.h"
#include "gui/preview/clippictures.h"
#include "gui/preview/moviewidget.h"
#include "gui/preview/partdialog.h"
#include "gui/preview/playbar.h"
#include "gui/preview/trimline.h"
#include "gui/preview/trimpanel.h"
#include "gui/widgets/images.h"
#include "gui/widgets/windowtext.h"
#include "quicktime/rules/movieslots.h"

#include <QCloseEvent>
#include <QLabel>
#include <QVBoxLayout>

#include <algorithm>
#include <cmath>
#include <utility>

namespace tavrix
{

namespace
{

constexpr double perSecond = 1000;
} // namespace

PreviewWindow::PreviewWindow(BatchList& rows)
    : rows_(&rows), movie_(new MovieWidget(this)), pictures_(new ClipPictures(this)), words_(new QLabel(this)),
      bar_(new PlayBar(*movie_, this))
{
    setObjectName(QStringLiteral("previewWindow"));
    setWindowIcon(imageNamed(QStringLiteral("tavrix")));
    setAttribute(Qt::WA_StyledBackground);
    auto* layout = new QVBoxLayout(this);
    movie_->setObjectName(QStringLiteral("previewMovieView"));
    movie_->setAccessibleName(windowText("Win_acc_movie"));
    layout->addWidget(movie_, 1);
    words_->setObjectName(QStringLiteral("previewWords"));
    words_->setTextFormat(Qt::PlainText);
    words_->setWordWrap(true);
    words_->setAlignment(Qt::AlignCenter);
    layout->addWidget(words_);
    buildTrim();
    layout->addWidget(time_);
    layout->addWidget(bar_);
    layout->addWidget(trim_);
    connect(bar_, &PlayBar::playWished, this, &PreviewWindow::togglePlay);
    connect(bar_, &PlayBar::stopWished, this, &PreviewWindow::stop);
    connect(bar_, &PlayBar::stepWished, this, &PreviewWindow::step);
    connect(movie_, &MovieWidget::positionChanged, this, &PreviewWindow::showTime);
    connect(movie_, &MovieWidget::firstFrame, this, &PreviewWindow::noteClock);
    connect(movie_, &MovieWidget::playingChanged, this, &PreviewWindow::stayOnLastPicture);
    connect(pictures_, &ClipPictures::picture, this, &PreviewWindow::takePicture);
    connect(pictures_, &ClipPictures::thumbnail, time_, &TrimLine::setThumbnail);
    connect(&rows, &QAbstractItemModel::dataChanged, this, &PreviewWindow::followRow);
    connect(&rows, &QAbstractItemModel::rowsRemoved, this, &PreviewWindow::followRow);
    connect(&rows, &QAbstractItemModel::modelReset, this, &PreviewWindow::followRow);
    resize(720, 600);
}

PreviewWindow::~PreviewWindow() = default;

void PreviewWindow::buildTrim()
{
    time_ = new TrimLine(this);
    time_->setObjectName(QStringLiteral("previewTime"));
    time_->setAccessibleName(windowText("Win_acc_time"));
    time_->setToolTip(windowText("Win_acc_time"));
    connect(time_, &TrimLine::wentTo, this, &PreviewWindow::goTo);
    connect(time_, &TrimLine::fromMoved, this, [this](double seconds) { dragMark(Dragged::From, seconds); });
    connect(time_, &TrimLine::toMoved, this, [this](double seconds) { dragMark(Dragged::To, seconds); });
    connect(time_, &TrimLine::resized, this, &PreviewWindow::wishThumbnails);
    trim_ = new TrimPanel(this);
    trim_->setObjectName(QStringLiteral("previewTrim"));
    connect(trim_, &TrimPanel::fromWished, this, [this] { trim_->setFrom(shownFrom()); });
    connect(trim_, &TrimPanel::toWished, this, [this] { trim_->setTo(shownTo()); });
    connect(trim_, &TrimPanel::saveWished, this, &PreviewWindow::savePart);
    connect(trim_, &TrimPanel::convertWished, this,
            [this](bool only) { setRowPart(only ? trim_->part() : std::nullopt); });
    connect(trim_, &TrimPanel::marksChanged, this, [this] {
        time_->setMarks(trim_->from(), trim_->to());
        // The row follows the marks once it converts a part.
        if (const int index = row(); index >= 0 && rows_->row(index).part) {
            setRowPart(trim_->part());
        }
    });
}

void PreviewWindow::showMovie(const QString& path)
{
    path_ = path;
    setWindowTitle(windowText("Win_previewTitle", {lastPathComponent(path)}));
    const bool opened = movie2MovieView(path, *movie_, false);
    words_->setVisible(!opened);
    words_->setText(opened ? QString() : windowText("Win_cannotOpen", {lastPathComponent(path)}));
    bar_->beginClip();
    duration_ = movieviewDuration(*movie_);
    time_->setRange(0, truncatedInt(duration_ * perSecond));
    stillFrom_ = 0;
    stillTo_ = 0;
    clockAhead_ = 0;
    firstPicture_.reset();
    firstFrame_.reset();
    pictures_->setClip(opened ? path : QString());
    const int index = row();
    trim_->setClip(opened, duration_, index >= 0 ? rows_->row(index).part : std::nullopt);
    followRow();
    showTime();
    show();
    raise();
    activateWindow();
    bar_->setFocus();
    if (opened) {
        pictures_->wish(0);
        wishThumbnails();
        bar_->applyVolume();
        movieviewPlay(*movie_);
    }
}

double PreviewWindow::shownFrom() const
{
    const std::optional<double> frame = movie_->frameStart();
    return movie_->isPlaying() && frame ? std::max(0.0, *frame - clockAhead_) : stillFrom_;
}

double PreviewWindow::shownTo() const
{
    const std::optional<double> frame = movie_->frameEnd();
    return movie_->isPlaying() && frame ? std::max(0.0, *frame - clockAhead_) : stillTo_;
}

void PreviewWindow::togglePlay()
{
    if (movie_->isPlaying()) {
        pause();
        return;
    }
    constexpr double nearEnd = 0.1;
    const double from = stillTo_ >= duration_ - nearEnd ? 0 : stillFrom_;
    movieviewGoToTime(*movie_, from + clockAhead_);
    movieviewPlay(*movie_);
}

void PreviewWindow::pause()
{
    if (movie_->isPlaying()) {
        const double now = shownFrom();
        movieviewStop(*movie_);
        goTo(now);
    }
}

// At the clip's end, for example; a step leads to the picture before it.
void PreviewWindow::stayOnLastPicture(bool playing)
{
    if (!playing && movie_->frameStart()) {
        goTo(*movie_->frameStart() - clockAhead_);
    }
}

void PreviewWindow::stop()
{
    movieviewStop(*movie_);
    goTo(0);
}

double PreviewWindow::withinClip(double seconds) const
{
    // The length that the container tells may be short by some pictures.
    constexpr double behind = 1;
    return qBound(0.0, seconds, duration_ + behind);
}

void PreviewWindow::goTo(double seconds)
{
    const double wanted = withinClip(seconds);
    if (movie_->isPlaying()) {
        movieviewGoToTime(*movie_, wanted + clockAhead_);
    } else {
        pictures_->wish(wanted);
    }
}

void PreviewWindow::step(int pictures)
{
    if (movie_->isPlaying()) {
        pause();
        return;
    }
    // Shorter than any picture, longer than what times are rounded by.
    constexpr double little = 0.002;
    goTo(pictures > 0 ? stillTo_ : stillFrom_ - little);
}

void PreviewWindow::dragMark(Dragged mark, double seconds)
{
    if (movie_->isPlaying()) {
        movieviewStop(*movie_);
    }
    dragged_ = mark;
    draggedTo_ = withinClip(seconds);
    mark == Dragged::From ? trim_->setFrom(seconds) : trim_->setTo(seconds);
    goTo(seconds);
}

void PreviewWindow::takePicture(const QImage& image, double start, double end, double wished)
{
    if (!firstPicture_) {
        firstPicture_ = start;
        noteClock();
    }
    if (movie_->isPlaying()) {
        return;
    }
    movie_->showStill(image);
    stillFrom_ = start;
    stillTo_ = end;
    // A mark stands between two pictures; what was wished before it was dragged there is not its picture.
    const bool isMeant = wished == draggedTo_;
    const Dragged dragged = isMeant ? std::exchange(dragged_, Dragged::Nothing) : Dragged::Nothing;
    if (dragged == Dragged::From) {
        trim_->setFrom(start);
    } else if (dragged == Dragged::To) {
        trim_->setTo(end);
    }
    showTime();
}

void PreviewWindow::noteClock()
{
    if (!firstFrame_) {
        firstFrame_ = movie_->frameStart();
    }
    if (firstFrame_ && firstPicture_) {
        clockAhead_ = std::max(0.0, *firstFrame_ - *firstPicture_);
        showTime();
    }
}

void PreviewWindow::wishThumbnails()
{
    if (duration_ > 0 && movie_->movie()) {
        time_->clearThumbnails();
        pictures_->wishThumbnails(time_->thumbnailCount(), duration_, time_->thumbnailSize());
    }
}

int PreviewWindow::row() const
{
    return rows_ ? rows_->indexOfSource(path_) : -1;
}

void PreviewWindow::followRow()
{
    const int index = row();
    const bool isRow = index >= 0;
    trim_->setRow(isRow, isRow && !rows_->row(index).isCurrent(), isRow && rows_->row(index).part.has_value());
}

void PreviewWindow::setRowPart(const std::optional<ClipPart>& part)
{
    if (const int index = row(); index >= 0 && !rows_->row(index).isCurrent()) {
        rows_->setPart(index, part);
    }
}

void PreviewWindow::savePart()
{
    pause();
    std::optional<ClipPart> part = trim_->part();
    if (part && !part->to) {
        part->to = duration_;
    }
    (new PartDialog(path_, part, this))->show();
}

void PreviewWindow::showTime()
{
    const double now = shownFrom();
    const QSignalBlocker quiet(time_);
    time_->setValue(truncatedInt(now * perSecond));
    time_->update();
    bar_->showTime(now, duration_);
}

void PreviewWindow::closeEvent(QCloseEvent* event)
{
    if (auto* dialog = findChild<PartDialog*>(); dialog != nullptr && dialog->isWorking()) {
        event->ignore(); // its own button stops it
        dialog->raise();
        return;
    }
    movieviewStop(*movie_);
    movieviewRelease(*movie_);
    pictures_->setClip(QString());
    QTMOVIEVIEWrelease();
    QWidget::closeEvent(event);
}

void PreviewWindow::keyPressEvent(QKeyEvent* event)
{
    switch (event->key()) {
    case Qt::Key_Escape:
        close();
        return;
    case Qt::Key_I:
        trim_->setFrom(shownFrom());
        return;
    case Qt::Key_O:
        trim_->setTo(shownTo());
        return;
    case Qt::Key_Left:
    case Qt::Key_Comma:
        step(-1);
        return;
    case Qt::Key_Right:
    case Qt::Key_Period:
        step(1);
        return;
    case Qt::Key_Home:
        goTo(0);
        return;
    case Qt::Key_End:
        goTo(duration_ + 1);
        return;
    default:
        QWidget::keyPressEvent(event);
    }
}

} // namespace tavrix
