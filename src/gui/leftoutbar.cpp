#include "gui/leftoutbar.h"

#include "app/appdelegate.h"
#include "base/paths.h"
#include "base/shownname.h"
#include "gui/elidedlabel.h"
#include "gui/windowtext.h"

#include <QDialog>
#include <QDialogButtonBox>
#include <QHBoxLayout>
#include <QListWidget>
#include <QPushButton>
#include <QVBoxLayout>

namespace tavrix
{

namespace
{

constexpr int nameWidth = 440;

} // namespace

LeftOutBar::LeftOutBar(appDelegate& controller, QWidget* parent)
    : QWidget(parent), controller_(controller), notice_(new ElidedLabel(this)), button_(new QPushButton(this))
{
    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    notice_->setObjectName(QStringLiteral("noticeStr"));
    notice_->setProperty("role", QStringLiteral("caption"));
    notice_->setTextFormat(Qt::PlainText);
    notice_->setAccessibleName(QStringLiteral("@@Win_acc_notice"));
    layout->addWidget(notice_, 1);
    button_->setObjectName(QStringLiteral("leftOutBt"));
    button_->setProperty("role", QStringLiteral("link"));
    button_->setCursor(Qt::PointingHandCursor);
    connect(button_, &QPushButton::clicked, this, &LeftOutBar::showList);
    layout->addWidget(button_);
    listen();
    refresh();
    showNotice(QStringLiteral("@@Win_welcome"));
}

QList<QWidget*> LeftOutBar::tabOrder() const
{
    return {button_};
}

void LeftOutBar::listen()
{
    connect(&controller_, &appDelegate::intakeBegan, this, [this] {
        leftOut_.clear();
        showNotice(QString());
        refresh();
    });
    connect(&controller_, &appDelegate::sourceRejected, this, [this](const QString& path, const QString& reason) {
        leftOut_.append({path, reason});
        refresh();
    });
    connect(&controller_, &appDelegate::nothingToAnalyse, this, [this] { showNotice(windowText("Win_nothingNew")); });
    connect(&controller_, &appDelegate::intakeRefused, this, [this] { showNotice(windowText("Win_stillReading")); });
    connect(&controller_, &appDelegate::analysisStalled, this,
            [this](const QString& path) { showNotice(windowText("Win_stalled", {lastPathComponent(path)})); });
    connect(&controller_, &appDelegate::rowStarted, this, [this](int row) {
        if (row == 0) {
            tally_ = {};
        }
        showNotice(QString());
    });
    connect(&controller_, &appDelegate::rowFinished, this,
            [this](int row) { tally_.count(controller_.model().encBatchArrayController.row(row)); });
    connect(&controller_, &appDelegate::batchEnded, this, &LeftOutBar::sumUp);
}

void LeftOutBar::sumUp(bool stopped)
{
    showNotice(stopped ? windowText("Win_batchStopped") : tallyWords(tally_));
    tally_ = {};
}

void LeftOutBar::showNotice(const QString& text)
{
    notice_->setText(text);
    notice_->setToolTip(text.toHtmlEscaped());
}

void LeftOutBar::refresh()
{
    button_->setVisible(!leftOut_.isEmpty());
    button_->setText(leftOut_.size() == 1 ? windowText("Win_oneLeftOut")
                                          : windowText("Win_leftOut", {qint64(leftOut_.size())}));
}

void LeftOutBar::showList()
{
    auto* dialog = new QDialog(window());
    dialog->setObjectName(QStringLiteral("leftOutDialog"));
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->setWindowModality(Qt::WindowModal);
    dialog->setWindowTitle(windowText("Win_leftOutTitle"));
    dialog->resize(520, 300);
    auto* layout = new QVBoxLayout(dialog);
    auto* words = new QLabel(windowText("Win_leftOutWords"), dialog);
    words->setWordWrap(true);
    layout->addWidget(words);
    auto* list = new QListWidget(dialog);
    list->setObjectName(QStringLiteral("leftOutList"));
    list->setAccessibleName(windowText("Win_leftOutTitle"));
    list->setWordWrap(true);
    for (const auto& [path, reason] : leftOut_) {
        // A name without blanks cannot be broken into lines.
        const QString shown = shownText(lastPathComponent(path));
        const QString name = list->fontMetrics().elidedText(shown, Qt::ElideMiddle, nameWidth);
        auto* item = new QListWidgetItem(name + QLatin1Char('\n') + shownText(reason), list);
        item->setToolTip(shownText(path).toHtmlEscaped());
    }
    list->setCurrentRow(0);
    layout->addWidget(list, 1);
    auto* buttons = new QDialogButtonBox(dialog);
    buttons->addButton(windowText("Win_done"), QDialogButtonBox::AcceptRole);
    connect(buttons, &QDialogButtonBox::accepted, dialog, &QDialog::accept);
    layout->addWidget(buttons);
    dialog->open();
}

} // namespace tavrix
