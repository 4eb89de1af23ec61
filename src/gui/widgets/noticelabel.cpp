// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/widgets/noticelabel.h"

#include "app/appdelegate.h"
#include "app/batchtally.h"
#include "base/text/paths.h"
#include "gui/widgets/spokenwords.h"
#include "gui/widgets/windowtext.h"

namespace tavrix
{

NoticeLabel::NoticeLabel(appDelegate& controller, QWidget* parent) : ElidedLabel(parent), controller_(controller)
{
    setObjectName(QStringLiteral("noticeStr"));
    setProperty("role", QStringLiteral("caption"));
    setTextFormat(Qt::PlainText);
    QSizePolicy policy = sizePolicy();
    policy.setRetainSizeWhenHidden(true);
    setSizePolicy(policy);
    listen();
    setText(QStringLiteral("@@Win_welcome"));
}

void NoticeLabel::listen()
{
    connect(&controller_, &appDelegate::intakeBegan, this, [this] { showNotice(QString()); });
    connect(&controller_, &appDelegate::nothingToAnalyse, this, [this] { showNotice(windowText("Win_nothingNew")); });
    connect(&controller_, &appDelegate::intakeRefused, this, [this] { showNotice(windowText("Win_stillReading")); });
    connect(&controller_, &appDelegate::analysisStalled, this,
            [this](const QString& path) { showNotice(windowText("Win_stalled", {lastPathComponent(path)})); });
    connect(&controller_, &appDelegate::rowStarted, this, [this](int row) {
        if (row == 0) {
            showNotice(QString());
        }
    });
    connect(&controller_, &appDelegate::rowFinished, this, [this](int row) {
        const BatchRow& over = controller_.model().encBatchArrayController.row(row);
        showNotice(windowText("Win_rowOver", {over.src, stateWords(over)}));
    });
    connect(&controller_, &appDelegate::batchEnded, this, &NoticeLabel::sumUp);
}

void NoticeLabel::sumUp(bool stopped)
{
    const QString tally = tallyText(tallyOf(controller_.model().encBatchArrayController));
    showNotice(stopped ? windowText("Win_rowOver", {windowText("Win_batchStopped"), tally}) : tally);
}

void NoticeLabel::showNotice(const QString& text)
{
    setText(text);
    setTip(this, text);
    setVisible(!text.isEmpty());
    announce(this, text);
}

} // namespace tavrix
