// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/window/leftoutbutton.h"

#include "app/appdelegate.h"
#include "base/text/paths.h"
#include "base/text/shownname.h"
#include "gui/widgets/windowtext.h"

#include <QDialog>
#include <QDialogButtonBox>
#include <QLabel>
#include <QListWidget>
#include <QVBoxLayout>

namespace tavrix
{

namespace
{

constexpr int nameWidth = 440;

} // namespace

LeftOutButton::LeftOutButton(appDelegate& controller, QWidget* parent) : QPushButton(parent)
{
    setObjectName(QStringLiteral("leftOutBt"));
    setProperty("role", QStringLiteral("link"));
    setCursor(Qt::PointingHandCursor);
    connect(this, &QPushButton::clicked, this, &LeftOutButton::showList);
    connect(&controller, &appDelegate::intakeBegan, this, [this] {
        leftOut_.clear();
        refresh();
    });
    connect(&controller, &appDelegate::sourceRejected, this, [this](const QString& path, const QString& reason) {
        leftOut_.append({path, reason});
        refresh();
    });
    refresh();
}

void LeftOutButton::refresh()
{
    setVisible(!leftOut_.isEmpty());
    setText(leftOut_.size() == 1 ? windowText("Win_oneLeftOut") : windowText("Win_leftOut", {qint64(leftOut_.size())}));
}

void LeftOutButton::showList()
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
        item->setToolTip(wrappedTip(path));
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
