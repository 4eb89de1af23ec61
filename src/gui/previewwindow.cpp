#include "gui/previewwindow.h"

#include "base/conversions.h"
#include "base/paths.h"
#include "gui/images.h"
#include "gui/moviewidget.h"
#include "gui/windowtext.h"
#include "quicktime/movieslots.h"

#include <QCheckBox>
#include <QCloseEvent>
#include <QHBoxLayout>
#include <QLabel>
#include <QSlider>
#include <QToolButton>
#include <QVBoxLayout>

namespace tavrix
{

namespace
{

constexpr int timeSteps = 1000;
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

PreviewWindow::PreviewWindow() : movie_(new MovieWidget(this)), words_(new QLabel(this))
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
    auto* line = new QHBoxLayout;
    buildControls(line);
    layout->addLayout(line);
    resize(680, 470);
}

PreviewWindow::~PreviewWindow() = default;

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
    time_ = new QSlider(Qt::Horizontal, this);
    time_->setObjectName(QStringLiteral("previewTime"));
    time_->setRange(0, timeSteps);
    nameControl(time_, windowText("Win_acc_time"));
    connect(time_, &QSlider::valueChanged, this,
            [this](int value) { movieviewGoToTime(*movie_, movieviewDuration(*movie_) * value / timeSteps); });
    line->addWidget(time_, 1);
    timeText_ = new QLabel(this);
    timeText_->setObjectName(QStringLiteral("previewTimeStr"));
    line->addWidget(timeText_);
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
    connect(movie_, &MovieWidget::playingChanged, this, [this](bool playing) {
        play_->setIcon(imageNamed(playing ? QStringLiteral("btPause") : QStringLiteral("btPlay")));
        nameControl(play_, playing ? windowText("Win_image_btPause") : windowText("Win_play"));
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
    setWindowTitle(windowText("Win_previewTitle", {lastPathComponent(path)}));
    const bool opened = movie2MovieView(path, *movie_, false);
    words_->setVisible(!opened);
    words_->setText(opened ? QString() : windowText("Win_cannotOpen", {lastPathComponent(path)}));
    findChild<QCheckBox*>(QStringLiteral("previewLoop"))->setChecked(false);
    showTime();
    show();
    raise();
    activateWindow();
    play_->setFocus();
    if (opened) {
        // The volume stays what it was for the clip before.
        applyVolume();
        movieviewPlay(*movie_);
    }
}

void PreviewWindow::togglePlay()
{
    movie_->isPlaying() ? movieviewStop(*movie_) : movieviewPlay(*movie_);
}

void PreviewWindow::stop()
{
    movieviewStop(*movie_);
    movieviewGoToTime(*movie_, 0);
}

void PreviewWindow::showTime()
{
    const double duration = movieviewDuration(*movie_);
    const double now = movieviewCurrentTime(*movie_);
    const QSignalBlocker quiet(time_);
    if (!time_->isSliderDown()) {
        time_->setValue(duration > 0 ? truncatedInt(now / duration * timeSteps) : 0);
    }
    timeText_->setText(windowText("Win_timeOf", {minutesText(now), minutesText(duration)}));
}

void PreviewWindow::closeEvent(QCloseEvent* event)
{
    movieviewStop(*movie_);
    movieviewRelease(*movie_);
    QTMOVIEVIEWrelease();
    QWidget::closeEvent(event);
}

void PreviewWindow::keyPressEvent(QKeyEvent* event)
{
    if (event->key() == Qt::Key_Escape) {
        close();
        return;
    }
    QWidget::keyPressEvent(event);
}

} // namespace tavrix
