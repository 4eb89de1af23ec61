// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/window/encodepanel.h"

#include "app/appdelegate.h"
#include "gui/widgets/binding.h"
#include "gui/widgets/folderline.h"
#include "gui/widgets/steplabel.h"
#include "gui/widgets/windowtext.h"
#include "gui/window/runpanel.h"

#include <QCheckBox>
#include <QComboBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QSignalBlocker>
#include <QVBoxLayout>

namespace tavrix
{

EncodePanel::EncodePanel(appDelegate& controller, QWidget* parent) : QWidget(parent), controller_(controller)
{
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(6);
    buildDestination(layout);
    buildStart();
    buildFormat(layout);
    run_ = new RunPanel(controller_, this);
    layout->addWidget(run_);
    run_->setLineShown(false);
    connect(&controller_, &appDelegate::rowStarted, this, [this](int row) {
        if (row == 0) {
            run_->focusPause();
        }
    });
}

void EncodePanel::buildDestination(QVBoxLayout* layout)
{
    WindowModel& model = controller_.model();
    auto* line = new QHBoxLayout;
    line->setSpacing(8);
    auto* folder = new FolderLine(controller_, model.mainEncDstPathStr, model.mainEncDstSelectBt,
                                  model.mainEncDstRevealBt, "@@Win_acc_folder", this);
    QLabel* caption = stepLabel("@@Win_destination", this);
    caption->setBuddy(folder);
    line->addWidget(caption);
    line->addWidget(folder, 1);
    order_ << folder->tabOrder();
    buildEveryTime(line);
    layout->addLayout(line);
}

void EncodePanel::buildEveryTime(QHBoxLayout* line)
{
    WindowModel& model = controller_.model();
    auto* every = new QCheckBox(QStringLiteral("@@Win_everyTime"), this);
    every->setObjectName(QStringLiteral("everyTimeBt"));
    every->setToolTip(QStringLiteral("@@Win_tip_everyTime"));
    const auto show = [every, &model] {
        const QString folder = model.mainEncDstPathStr.stringValue();
        every->setEnabled(!folder.isEmpty());
        every->setChecked(!folder.isEmpty() && folder == model.prefDefautDstPathStr.stringValue());
    };
    follow(model.mainEncDstPathStr, every, show);
    follow(model.prefDefautDstPathStr, every, show);
    connect(every, &QCheckBox::clicked, this, [this](bool checked) { controller_.useDestinationEveryTime(checked); });
    line->addWidget(every);
    order_ << every;
}

void EncodePanel::buildFormat(QVBoxLayout* layout)
{
    WindowModel& model = controller_.model();
    formatLine_ = new QHBoxLayout;
    formatLine_->setSpacing(8);
    QLabel* caption = stepLabel("@@Win_format", this);
    formatLine_->addWidget(caption);
    format_ = new QComboBox(this);
    format_->setObjectName(QStringLiteral("formatBt"));
    format_->setAccessibleName(QStringLiteral("@@Win_acc_format"));
    format_->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    format_->setMinimumContentsLength(34);
    for (int out = 0; out < outputFormatCount; ++out) {
        format_->addItem(formatText(QStringLiteral("@@Win_formatUse%d"), {out}));
        format_->setItemData(out, wrappedTip(formatCaption(out)), Qt::ToolTipRole);
    }
    caption->setBuddy(format_);
    follow(model.prefCheckMatrix, format_, [this, &model] {
        const int out = model.prefCheckMatrix.selectedSegment();
        format_->setCurrentIndex(out);
        setTip(format_, out < 0 ? QString() : formatCaption(out));
    });
    connect(format_, &QComboBox::activated, this, [this](int out) { controller_.chooseFormat(out); });
    formatLine_->addWidget(format_);
    order_ << format_;
    buildWaiting();
    formatLine_->addStretch(1);
    formatLine_->addWidget(goOn_);
    formatLine_->addWidget(start_);
    layout->addLayout(formatLine_);
}

// A row keeps the format that it was given when it came: who changes the format of new clips is told so.
void EncodePanel::buildWaiting()
{
    WindowModel& model = controller_.model();
    waiting_ = new QLabel(this);
    waiting_->setObjectName(QStringLiteral("waitingFormatStr"));
    waiting_->setProperty("role", QStringLiteral("caption"));
    formatLine_->addWidget(waiting_);
    useForWaiting_ = new QPushButton(this);
    useForWaiting_->setObjectName(QStringLiteral("useForWaitingBt"));
    connect(useForWaiting_, &QPushButton::clicked, this, &EncodePanel::useFormatForWaiting);
    formatLine_->addWidget(useForWaiting_);
    order_ << useForWaiting_;
    follow(model.prefCheckMatrix, this, [this] { showWaiting(); });
    followRows(model.encBatchArrayController, this, [this] {
        showWaiting();
        showGoOn();
    });
}

void EncodePanel::showWaiting()
{
    const BatchList& rows = controller_.model().encBatchArrayController;
    const int wanted = controller_.model().prefCheckMatrix.selectedSegment();
    int others = 0;
    int other = -1;
    bool mixed = false;
    for (int i = 0; i < rows.count(); ++i) {
        const BatchRow& row = rows.row(i);
        if (row.isWaiting() && row.out != wanted) {
            mixed = mixed || (other >= 0 && row.out != other);
            other = row.out;
            ++others;
        }
    }
    waiting_->setVisible(others > 0);
    useForWaiting_->setVisible(others > 0);
    if (others == 0) {
        return;
    }
    const QString kept = mixed ? windowText("Win_otherFormats") : formatName(other);
    waiting_->setText(others == 1 ? windowText("Win_oneWaitingKeeps", {kept})
                                  : windowText("Win_waitingKeep", {others, kept}));
    useForWaiting_->setText(others == 1 ? windowText("Win_useForOne", {formatName(wanted)})
                                        : windowText("Win_useForWaiting", {formatName(wanted)}));
}

void EncodePanel::useFormatForWaiting()
{
    BatchList& rows = controller_.model().encBatchArrayController;
    const int wanted = controller_.model().prefCheckMatrix.selectedSegment();
    for (int i = 0; i < rows.count(); ++i) {
        if (rows.row(i).isWaiting() && rows.row(i).out != wanted) {
            rows.setOut(i, wanted);
        }
    }
    format_->setFocus(Qt::OtherFocusReason);
}

void EncodePanel::buildStart()
{
    WindowModel& model = controller_.model();
    goOn_ = new QPushButton(QStringLiteral("@@Win_goOn"), this);
    goOn_->setObjectName(QStringLiteral("goOnBt"));
    goOn_->setToolTip(QStringLiteral("@@Win_tip_goOn"));
    connect(goOn_, &QPushButton::clicked, this, [this] { controller_.goOnWithTheRest(); });
    start_ = new QPushButton(QStringLiteral("@@Win_start"), this);
    start_->setProperty("role", QStringLiteral("primary"));
    start_->setAccessibleName(QStringLiteral("@@Win_acc_start"));
    start_->setToolTip(QStringLiteral("@@Win_tip_start"));
    start_->setMinimumSize(130, 32);
    bindControl(start_, model.batchEncGoBt);
    connect(start_, &QPushButton::clicked, this, [this] { controller_.iba_batchEncGoBt(); });
    follow(model.batchEncGoBt, this, [this] { showGoOn(); });
}

// Start begins at the first row again; after a stop the rows that are done should not run twice.
void EncodePanel::showGoOn()
{
    const BatchList& rows = controller_.model().encBatchArrayController;
    int converted = 0;
    for (int i = 0; i < rows.count(); ++i) {
        converted += rows.row(i).isConverted() ? 1 : 0;
    }
    const StateButton& start = controller_.model().batchEncGoBt;
    goOn_->setVisible(start.state() == 0 && start.isEnabled() && converted > 0 && converted < rows.count());
}

void EncodePanel::setClipsShown(bool shown)
{
    if (shown == clipsShown_) {
        return;
    }
    clipsShown_ = shown;
    for (QPushButton* button : {goOn_, start_}) {
        if (shown) {
            formatLine_->removeWidget(button);
            run_->addButton(button);
        } else {
            run_->removeButton(button);
            formatLine_->addWidget(button);
        }
    }
    run_->setLineShown(shown);
}

QList<QWidget*> EncodePanel::tabOrder() const
{
    return order_ + run_->tabOrder() + QList<QWidget*>{goOn_, start_};
}

} // namespace tavrix
