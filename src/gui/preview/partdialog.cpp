// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/preview/partdialog.h"

#include "app/partfile.h"
#include "app/verdictwords.h"
#include "base/dialogue/shownvalues.h"
#include "base/text/paths.h"
#include "base/text/shownname.h"
#include "encode/progress.h"
#include "gui/preview/toolprocess.h"
#include "gui/widgets/windowtext.h"
#include "judge/verdictline.h"

#include <QComboBox>
#include <QFileDialog>
#include <QFileInfo>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QProgressBar>
#include <QPushButton>
#include <QStyle>
#include <QVBoxLayout>

namespace tavrix
{

namespace
{

constexpr int wholePercent = 100;

QString numberText(double seconds)
{
    constexpr int decimals = 6;
    return QString::number(seconds, 'f', decimals);
}

} // namespace

PartDialog::PartDialog(const QString& clip, const std::optional<ClipPart>& part, QWidget* parent)
    : QDialog(parent), clip_(clip), part_(part), tool_(new ToolProcess(this))
{
    setObjectName(QStringLiteral("partDialog"));
    setWindowTitle(windowText(part ? "Win_partDialog" : "Win_clipDialog", {lastPathComponent(clip)}));
    setAttribute(Qt::WA_DeleteOnClose);
    setWindowModality(Qt::WindowModal);
    new QVBoxLayout(this);
    buildChoice();
    buildWork();
    connect(tool_, &ToolProcess::wrote, this, &PartDialog::takeOutput);
    connect(tool_, &ToolProcess::ended, this, &PartDialog::takeEnd);
    showWork(false);
    say(part ? windowText("Win_partLength", {shownClipTime(part->from), shownClipTime(part->to.value_or(part->from))})
             : windowText("Win_partWhole"),
        false);
    setMinimumWidth(460);
}

PartDialog::~PartDialog() = default;

void PartDialog::buildChoice()
{
    auto* form = new QFormLayout;
    kind_ = new QComboBox(this);
    kind_->setObjectName(QStringLiteral("partKind"));
    kind_->addItem(windowText("Win_partMovie"), QStringLiteral("mov"));
    kind_->addItem(windowText("Win_partFastMovie"), QStringLiteral("mov-fast"));
    kind_->addItem(windowText("Win_partSound"), QStringLiteral("wav"));
    form->addRow(windowText("Win_partKind"), kind_);
    size_ = new QComboBox(this);
    size_->setObjectName(QStringLiteral("partSize"));
    size_->setToolTip(wrappedTip(windowText("Win_tip_partSize")));
    size_->addItem(windowText("Win_partSameSize"), QString());
    for (const char* size : {"1920x1080", "1280x720", "960x540", "640x480", "640x360", "320x180"}) {
        size_->addItem(QString::fromLatin1(size).replace(QLatin1Char('x'), QStringLiteral(" × ")),
                       QString::fromLatin1(size));
    }
    form->addRow(windowText("Win_partSize"), size_);
    connect(kind_, &QComboBox::currentIndexChanged, this, [this] { size_->setEnabled(!isSound()); });
    static_cast<QVBoxLayout*>(layout())->addLayout(form);
}

void PartDialog::buildWork()
{
    auto* lines = static_cast<QVBoxLayout*>(layout());
    words_ = new QLabel(this);
    words_->setObjectName(QStringLiteral("partWords"));
    words_->setTextFormat(Qt::PlainText);
    words_->setWordWrap(true);
    lines->addWidget(words_);
    progress_ = new QProgressBar(this);
    progress_->setObjectName(QStringLiteral("partProgress"));
    progress_->setAccessibleName(windowText("Win_acc_partProgress"));
    progress_->setRange(0, wholePercent);
    progress_->setTextVisible(false);
    lines->addWidget(progress_);
    auto* buttons = new QHBoxLayout;
    buttons->addStretch(1);
    cancel_ = new QPushButton(this);
    cancel_->setObjectName(QStringLiteral("partCancelBt"));
    connect(cancel_, &QPushButton::clicked, this, &PartDialog::reject);
    buttons->addWidget(cancel_);
    save_ = new QPushButton(windowText("Win_partSave"), this);
    save_->setObjectName(QStringLiteral("partSaveBt"));
    save_->setProperty("role", QStringLiteral("primary"));
    save_->setDefault(true);
    connect(save_, &QPushButton::clicked, this, &PartDialog::chooseFile);
    buttons->addWidget(save_);
    lines->addLayout(buttons);
}

bool PartDialog::isSound() const
{
    return kind_->currentData().toString() == QLatin1String("wav");
}

bool PartDialog::isWorking() const
{
    return tool_->isRunning();
}

void PartDialog::showWork(bool working)
{
    kind_->setEnabled(!working);
    size_->setEnabled(!working && !isSound());
    save_->setEnabled(!working);
    progress_->setVisible(working);
    cancel_->setText(windowText(working ? "Win_partStop" : "Win_done"));
}

void PartDialog::say(const QString& words, bool warns)
{
    words_->setText(words);
    words_->setProperty("role", warns ? QStringLiteral("warning") : QStringLiteral("caption"));
    words_->style()->unpolish(words_);
    words_->style()->polish(words_);
}

void PartDialog::chooseFile()
{
    // It drives nothing, so that the batch goes on behind it. It asks before a file is chosen that exists.
    auto* chooser = new QFileDialog(this, windowText("Win_partSave"), stringByDeletingLastPathComponent(clip_));
    chooser->setObjectName(QStringLiteral("partFileChooser"));
    chooser->setAttribute(Qt::WA_DeleteOnClose);
    chooser->setAcceptMode(QFileDialog::AcceptSave);
    const QString extension = isSound() ? QStringLiteral("wav") : QStringLiteral("mov");
    chooser->setDefaultSuffix(extension);
    chooser->setNameFilter(QStringLiteral("*.") + extension);
    const QString base = stringByDeletingPathExtension(lastPathComponent(clip_));
    const QString name = part_ ? windowText("Win_partName", {base}) : windowText("Win_copyName", {base});
    chooser->selectFile(name + QLatin1Char('.') + extension);
    connect(chooser, &QFileDialog::fileSelected, this, &PartDialog::save);
    chooser->open();
}

void PartDialog::save(const QString& path)
{
    destination_ = path;
    QStringList arguments{QStringLiteral("--export"), kind_->currentData().toString(), QStringLiteral("--progress"),
                          QStringLiteral("--output"), path};
    if (part_) {
        arguments << QStringLiteral("--from") << numberText(part_->from);
    }
    if (part_ && part_->to) {
        arguments << QStringLiteral("--to") << numberText(*part_->to);
    }
    if (const QString size = size_->currentData().toString(); !size.isEmpty() && !isSound()) {
        arguments << QStringLiteral("--size") << size;
    }
    if (QFileInfo::exists(path)) {
        arguments << QStringLiteral("--replace");
    }
    open_.clear();
    lastLine_.clear();
    warning_.clear();
    asked_ = false;
    progress_->setValue(0);
    if (!tool_->start(QStringLiteral("tavrix-inspect"), arguments << QStringLiteral("--") << clip_)) {
        say(windowText("Win_toolFailed", {QStringLiteral("tavrix-inspect")}), true);
        return;
    }
    say(windowText("Win_partSaving", {lastPathComponent(path)}), false);
    showWork(true);
}

void PartDialog::takeOutput(const QByteArray& bytes)
{
    constexpr qsizetype longestLine = 4096;
    for (const char character : bytes) {
        if (character == '\n') {
            takeLine(QString::fromUtf8(open_));
            open_.clear();
        } else if (open_.size() < longestLine) {
            open_ += character;
        }
    }
}

void PartDialog::takeLine(const QString& line)
{
    if (const auto verdict = judge::parseVerdictLine(line.toStdString())) {
        warning_ = verdictWords(*verdict);
    } else if (const float percent = progressMovencoder(line); percent > 0) {
        progress_->setValue(static_cast<int>(percent));
    } else if (!line.isEmpty()) {
        lastLine_ = line;
    }
}

void PartDialog::takeEnd(int status)
{
    showWork(false);
    if (asked_) {
        say(windowText("Win_partStopped"), false);
    } else if (status == 0) {
        const QString saved = windowText("Win_partSaved", {lastPathComponent(destination_)});
        say(warning_.isEmpty() ? saved : saved + QLatin1Char('\n') + shownText(warning_), !warning_.isEmpty());
    } else {
        const QString reason = lastLine_.mid(lastLine_.indexOf(QLatin1Char(' ')) + 1);
        say(windowText("Win_partFailed", {reason.isEmpty() ? QString::number(status) : reason}), true);
    }
}

void PartDialog::reject()
{
    if (isWorking()) {
        asked_ = true;
        tool_->askToEnd();
        return;
    }
    QDialog::reject();
}

} // namespace tavrix
