// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/window/runpanel.h"

#include "app/appdelegate.h"
#include "app/partfile.h"
#include "gui/widgets/binding.h"
#include "gui/widgets/noticelabel.h"
#include "gui/widgets/segmentedview.h"
#include "gui/widgets/windowtext.h"

#include <QApplication>
#include <QHBoxLayout>
#include <QLabel>
#include <QProgressBar>
#include <QToolButton>
#include <QVBoxLayout>

namespace tavrix
{

namespace
{

constexpr int tickMilliseconds = 1000;

ClipWork workOf(const BatchRow& row)
{
    return {convertedRecord(row).value(record::w_duration).toDouble(), row.out};
}

} // namespace

RunPanel::RunPanel(appDelegate& controller, QWidget* parent)
    : QWidget(parent), controller_(controller), line_(new QWidget(this))
{
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(6);
    layout->addWidget(line_);
    buildLine();
    buildBar();
    bindControls();
    listen();
    refresh();
}

void RunPanel::buildLine()
{
    WindowModel& model = controller_.model();
    lineLayout_ = new QHBoxLayout(line_);
    lineLayout_->setContentsMargins(0, 0, 0, 0);
    lineLayout_->setSpacing(12);
    const auto label = [this](QLabel* made, const char* name) {
        made->setObjectName(QLatin1String(name));
        made->setTextFormat(Qt::PlainText);
        lineLayout_->addWidget(made);
        return made;
    };
    place_ = label(new QLabel(line_), "clipPlaceStr");
    auto* name = new ElidedLabel(line_);
    bindText(name, model.mainEncProgressCaptionStr);
    lineLayout_->addWidget(name, 1);
    percent_ = new QLabel(line_);
    bindText(percent_, model.mainEncProgressPercentStr);
    lineLayout_->addWidget(percent_);
    step_ = label(new QLabel(line_), "clipStepStr");
    left_ = label(new QLabel(line_), "timeLeftStr");
    left_->setProperty("role", QStringLiteral("caption"));
    control_ = new SegmentedView(model.encStopBt.segmentCount(), line_);
    control_->setAccessibleName(QStringLiteral("@@Win_acc_encodeControl"));
    // While a batch runs the control stays where it is, between two rows too: the focus would go elsewhere with it, and
    // the next key would change something that nobody has chosen.
    const auto press = [this, &model] {
        if (!model.encStopBt.isHidden()) {
            controller_.iba_encStopBt(&model.encStopBt);
        }
    };
    bindSegments(control_, model.encStopBt, press, [this] { return isRunning(); });
    lineLayout_->addWidget(control_);
}

void RunPanel::buildBar()
{
    WindowModel& model = controller_.model();
    auto* line = new QHBoxLayout;
    line->setSpacing(12);
    auto* bar = new QProgressBar(this);
    bar->setAccessibleName(QStringLiteral("@@Win_acc_progress"));
    bindProgress(bar, model.encTaskProgress);
    QSizePolicy policy = bar->sizePolicy();
    policy.setRetainSizeWhenHidden(false);
    bar->setSizePolicy(policy);
    // An empty bar would look like something that has stopped.
    const auto showBar = [this, bar, &model] {
        bar->setVisible(isRunning() && !model.encTaskProgress.isHidden());
    };
    follow(model.batchEncGoBt, bar, showBar);
    follow(model.encTaskProgress, bar, showBar);
    line->addWidget(bar, 3);
    notice_ = new NoticeLabel(controller_, this);
    line->addWidget(notice_, 2);
    static_cast<QVBoxLayout*>(layout())->addLayout(line);
}

void RunPanel::bindControls()
{
    WindowModel& model = controller_.model();
    connect(&model.batchEncGoBt, &Control::changed, this, [this, &model] {
        if (!isRunning() && control_->isAncestorOf(QApplication::focusWidget())) {
            Q_EMIT pauseLeaves();
        }
        control_->setVisible(isRunning() || !model.encStopBt.isHidden());
        refresh();
    });
    connect(&model.mainEncProgressPercentStr, &Control::changed, this, &RunPanel::refresh);
    connect(&model.encStopBt, &Control::changed, this, [this] {
        estimate_.setPaused(clock_.isValid() ? clock_.elapsed() : 0, isPaused());
        // A drop has disabled the control for a moment, and the focus was nowhere meanwhile.
        if (isRunning() && control_->isEnabled() && window()->focusWidget() == nullptr) {
            focusPause();
        }
        refresh();
    });
}

void RunPanel::listen()
{
    connect(&controller_, &appDelegate::rowStarted, this, &RunPanel::beginRow);
    connect(&controller_, &appDelegate::rowStep, this, &RunPanel::takeStep);
    connect(&controller_, &appDelegate::rowFinished, this, [this](int, bool success) {
        estimate_.endClip(clock_.isValid() ? clock_.elapsed() : 0, success);
        refresh();
    });
    connect(&controller_, &appDelegate::batchEnded, this, [this] {
        row_ = -1;
        ticker_.stop();
        refresh();
    });
    ticker_.setInterval(tickMilliseconds);
    connect(&ticker_, &QTimer::timeout, this, &RunPanel::refresh);
}

void RunPanel::beginRow(int row)
{
    if (row_ < 0) {
        clock_.start();
        estimate_.beginBatch();
        ticker_.start();
    }
    row_ = row;
    pass_ = 1;
    passes_ = 1;
    fraction_ = 0;
    refresh();
}

void RunPanel::takeStep(int row, int pass, int passes, double fraction)
{
    const BatchList& rows = controller_.model().encBatchArrayController;
    if (row < 0 || row >= rows.count()) {
        return;
    }
    row_ = row;
    if (pass != pass_ || fraction <= 0) {
        estimate_.beginPass(clock_.elapsed(), workOf(rows.row(row)), pass, passes);
    }
    pass_ = pass;
    passes_ = passes;
    fraction_ = fraction;
    estimate_.progress(clock_.elapsed(), fraction);
    refresh();
}

void RunPanel::refresh()
{
    const BatchList& rows = controller_.model().encBatchArrayController;
    const bool running = isRunning() && row_ >= 0 && row_ < rows.count();
    const bool paused = running && isPaused();
    place_->setVisible(running);
    place_->setText(running ? windowText("Win_clipOf", {row_ + 1, rows.count()}) : QString());
    // The rule's number counts seconds of the clip; a second pass tells its percentage itself.
    percent_->setVisible(!paused && !(running && pass_ > 1) && !percent_->text().isEmpty());
    QString step;
    if (paused) {
        step = windowText("Win_paused");
    } else if (running && passes_ > 1 && pass_ > 1) {
        step = windowText("Win_stepOfWithPart",
                          {pass_, passes_, formatName(rows.row(row_).out), wholePercents(fraction_)});
    } else if (running && passes_ > 1) {
        step = windowText("Win_stepOf", {pass_, passes_});
    }
    step_->setText(step);
    step_->setVisible(!step.isEmpty());
    const QString left = running && !paused ? leftWords() : QString();
    left_->setText(left);
    left_->setVisible(!left.isEmpty());
}

QString RunPanel::leftWords() const
{
    const BatchList& rows = controller_.model().encBatchArrayController;
    const std::optional<double> clip = estimate_.clipLeft(clock_.elapsed());
    if (!clip) {
        return {};
    }
    QList<ClipWork> waiting;
    for (int i = row_ + 1; i < rows.count(); ++i) {
        waiting << workOf(rows.row(i));
    }
    const std::optional<double> batch = estimate_.batchLeft(clock_.elapsed(), waiting);
    if (waiting.isEmpty() || !batch) {
        return windowText("Win_timeLeft", {durationWords(*clip)});
    }
    return windowText("Win_timeLeftOfBoth", {durationWords(*clip), durationWords(*batch)});
}

bool RunPanel::isRunning() const
{
    return controller_.model().batchEncGoBt.state() == 1;
}

bool RunPanel::isPaused() const
{
    return controller_.model().encStopBt.imageName(encStopSegmentPause) == controlImage::play;
}

void RunPanel::addButton(QWidget* button)
{
    lineLayout_->addWidget(button);
}

void RunPanel::removeButton(QWidget* button)
{
    lineLayout_->removeWidget(button);
}

void RunPanel::setLineShown(bool shown)
{
    line_->setVisible(shown);
}

QList<QWidget*> RunPanel::tabOrder() const
{
    QList<QWidget*> order;
    for (int i = 0; i < control_->segmentCount(); ++i) {
        order << control_->segment(i);
    }
    return order;
}

void RunPanel::focusPause()
{
    control_->segment(encStopSegmentPause)->setFocus(Qt::OtherFocusReason);
}

} // namespace tavrix
