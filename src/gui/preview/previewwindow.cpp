// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/preview/previewwindow.h"

#include "app/batchlist.h"
#include "base/text/paths.h"
#include "base/text/roundingconversions.h"
#include "gui/preview/clippictures.h"
#include "gui/preview/moviewidget.h"
#include "gui/preview/partdialog.h"
#include "gui/preview/trimline.h"
#include "gui/preview/trimpanel.h"
#include "gui/widgets/images.h"
#include "gui/widgets/windowtext.h"
#include "quicktime/rules/movieslots.h"

#include <QCheckBox>
#include <QCloseEvent>
#include <QHBoxLayout>
#include <QLabel>
#include <QSlider>
#include <QToolButton>
#include <QVBoxLayout>

#include <algorithm>
#include <cmath>
#include <tuple>
#include <utility>

namespace tavrix
{

namespace
{

constexpr double perSecond = 1000;
constexpr int volumeSteps = 100;

QToolButton* imageButton(const QString& image, const QString& name, QWidget* parent)
{
    auto* button = new QToolButton(parent);
    button->setIcon(imageNamed(image));
    button->setObjectName(name);
    button->setFocusPolicy(Qt::StrongFocus);
    return button;
}

QString minutesText(double seconds)
{
    const int whole = truncatedInt(seconds);
    return formatText(QStringLiteral("%d:%02d"), {whole / 60, whole % 60});
}

void nameControl(QWidget* widget, const QString& words)
{
    widget->setAccessibleName(words);
    widget->setToolTip(words);
}

} // namespace

PreviewWindow::PreviewWindow(BatchList& rows)
    : rows_(&rows), movie_(new MovieWidget(this)), pictures_(new ClipPictures(this)), words_(new QLabel(this))
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
    auto* line = new QHBoxLayout;
    buildControls(line);
    layout->addLayout(line);
    layout->addWidget(trim_);
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
    nameControl(time_, windowText("Win_acc_time"));
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

void PreviewWindow::buildControls(QHBoxLayout* line)
{
    play_ = imageButton(QStringLiteral("btPlay"), QStringLiteral("previewPlayBt"), this);
    nameControl(play_, windowText("Win_play"));
    connect(play_, &QToolButton::clicked, this, &PreviewWindow::togglePlay);
    line->addWidget(play_);
    auto* stopButton = imageButton(QStringLiteral("btStop"), QStringLiteral("previewStopBt"), this);
    nameControl(stopButton, windowText("Win_image_btStop"));
    connect(stopButton, &QToolButton::clicked, this, &PreviewWindow::stop);
    line->addWidget(stopButton);
    for (const auto& [name, text, words, pictures] :
         {std::tuple("previewBackBt", "<", "Win_stepBack", -1), std::tuple("previewOnBt", ">", "Win_stepOn", 1)}) {
        auto* button = new QToolButton(this);
        button->setObjectName(QLatin1String(name));
        button->setText(QLatin1String(text));
        button->setAutoRepeat(true);
        nameControl(button, windowText(words));
        connect(button, &QToolButton::clicked, this, [this, count = pictures] { step(count); });
        line->addWidget(button);
    }
    timeText_ = new QLabel(this);
    timeText_->setObjectName(QStringLiteral("previewTimeStr"));
    line->addWidget(timeText_);
    line->addStretch(1);
    auto* loop = new QCheckBox(windowText("Win_loop"), this);
    loop->setObjectName(QStringLiteral("previewLoop"));
    connect(loop, &QCheckBox::toggled, this, [this](bool on) {
        if (on) {
            movieviewLoop(*movie_);
        } else if (movie_->movie()) {
            movie_->movie()->setLoops(false);
            movie_->movieSettingsChanged();
        }
    });
    line->addWidget(loop);
    buildVolume(line);
    connect(movie_, &MovieWidget::positionChanged, this, &PreviewWindow::showTime);
    connect(movie_, &MovieWidget::firstFrame, this, &PreviewWindow::noteClock);
    connect(movie_, &MovieWidget::playingChanged, this, [this](bool playing) {
        play_->setIcon(imageNamed(playing ? QStringLiteral("btPause") : QStringLiteral("btPlay")));
        nameControl(play_, playing ? windowText("Win_image_btPause") : windowText("Win_play"));
        // At the clip's end, for example: the last picture stays, and a step leads to the one before it.
        if (!playing && movie_->frameStart()) {
            goTo(*movie_->frameStart() - clockAhead_);
        }
    });
}

void PreviewWindow::buildVolume(QHBoxLayout* line)
{
    auto* caption = new QLabel(windowText("Win_acc_volume"), this);
    caption->setProperty("role", QStringLiteral("caption"));
    line->addSpacing(6);
    line->addWidget(caption);
    volume_ = new QSlider(Qt::Horizontal, this);
    volume_->setObjectName(QStringLiteral("previewVolume"));
    volume_->setRange(0, volumeSteps);
    volume_->setValue(volumeSteps);
    volume_->setFixedWidth(80);
    nameControl(volume_, windowText("Win_acc_volume"));
    connect(volume_, &QSlider::valueChanged, this, &PreviewWindow::applyVolume);
    line->addWidget(volume_);
    connect(&movie_->player(), &ClipPlayer::soundDeviceChanged, this, &PreviewWindow::showSoundDevice);
    showSoundDevice();
}

void PreviewWindow::showSoundDevice()
{
    const bool heard = movie_->player().hasSoundDevice();
    volume_->setEnabled(heard);
    volume_->setToolTip(windowText(heard ? "Win_acc_volume" : "Win_noSoundDevice"));
}

void PreviewWindow::applyVolume()
{
    movieviewVolume(*movie_, static_cast<float>(volume_->value()) / volumeSteps);
}

void PreviewWindow::showMovie(const QString& path)
{
    path_ = path;
    setWindowTitle(windowText("Win_previewTitle", {lastPathComponent(path)}));
    const bool opened = movie2MovieView(path, *movie_, false);
    words_->setVisible(!opened);
    words_->setText(opened ? QString() : windowText("Win_cannotOpen", {lastPathComponent(path)}));
    findChild<QCheckBox*>(QStringLiteral("previewLoop"))->setChecked(false);
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
    play_->setFocus();
    if (opened) {
        pictures_->wish(0);
        wishThumbnails();
        // The volume stays what it was for the clip before.
        applyVolume();
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
    timeText_->setText(windowText("Win_timeOf", {minutesText(now), minutesText(duration_)}));
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
