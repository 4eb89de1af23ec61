// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/dialogs/reportwindow.h"

#include "base/text/paths.h"
#include "gui/widgets/windowtext.h"

#include <QCheckBox>
#include <QFileDialog>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QSaveFile>
#include <QVBoxLayout>

namespace tavrix
{

ReportWindow::ReportWindow(std::function<void()> mail, QWidget* owner)
    : ToolWindow(QStringLiteral("reportWindow"), owner), words_(new QLabel(windowText("Win_reportWords"), this)),
      fullPaths_(new QCheckBox(windowText("Win_reportPaths"), this))
{
    setWindowTitle(windowText("Win_reportTitle"));
    auto* lines = static_cast<QVBoxLayout*>(layout());
    words_->setObjectName(QStringLiteral("reportWords"));
    words_->setTextFormat(Qt::PlainText);
    words_->setWordWrap(true);
    lines->insertWidget(0, words_);
    fullPaths_->setObjectName(QStringLiteral("reportPathsBt"));
    lines->insertWidget(2, fullPaths_);
    connect(fullPaths_, &QCheckBox::toggled, this, &ReportWindow::showReport);
    buildButtons(std::move(mail));
}

void ReportWindow::buildButtons(std::function<void()> mail)
{
    auto* saveAs = new QPushButton(windowText("Win_reportSave"), this);
    saveAs->setObjectName(QStringLiteral("reportSaveBt"));
    saveAs->setEnabled(false);
    connect(saveAs, &QPushButton::clicked, this, &ReportWindow::chooseFile);
    connect(this, &ToolWindow::finished, saveAs, [saveAs] { saveAs->setEnabled(true); });
    buttons().insertWidget(1, saveAs);
    auto* write = new QPushButton(windowText("Win_reportMail"), this);
    write->setObjectName(QStringLiteral("reportMailBt"));
    connect(write, &QPushButton::clicked, this, [mail = std::move(mail)] { mail(); });
    buttons().insertWidget(2, write);
}

void ReportWindow::showReport()
{
    QStringList arguments{QStringLiteral("--system")};
    if (fullPaths_->isChecked()) {
        arguments << QStringLiteral("--full-paths");
    }
    showOutput(QStringLiteral("tavrix-inspect"), arguments);
}

void ReportWindow::chooseFile()
{
    // It drives nothing, so that the batch goes on behind it.
    auto* chooser = new QFileDialog(this, windowText("Win_reportSave"), homeFolder());
    chooser->setObjectName(QStringLiteral("reportFileChooser"));
    chooser->setAttribute(Qt::WA_DeleteOnClose);
    chooser->setAcceptMode(QFileDialog::AcceptSave);
    chooser->selectFile(QStringLiteral("tavrix-report.txt"));
    connect(chooser, &QFileDialog::fileSelected, this, &ReportWindow::save);
    chooser->open();
}

void ReportWindow::save(const QString& path)
{
    QSaveFile file(path);
    const QByteArray bytes = text().toUtf8();
    if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size() || !file.commit()) {
        words_->setText(windowText("Win_reportNotSaved", {path, file.errorString()}));
        return;
    }
    words_->setText(windowText("Win_reportSaved", {path}));
}

} // namespace tavrix
