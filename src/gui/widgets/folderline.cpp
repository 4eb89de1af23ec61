// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/widgets/folderline.h"

#include "app/appdelegate.h"
#include "gui/widgets/binding.h"
#include "gui/widgets/folderedit.h"
#include "gui/widgets/windowtext.h"

#include <QHBoxLayout>
#include <QPushButton>

namespace tavrix
{

FolderLine::FolderLine(appDelegate& controller, TextField& field, StateButton& select, StateButton& reveal,
                       const char* name, QWidget* parent)
    : QWidget(parent)
{
    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(6);
    auto* edit = new FolderEdit(this);
    edit->setPlaceholderText(QStringLiteral("@@Win_folderPlaceholder"));
    edit->setAccessibleName(QLatin1String(name));
    edit->setMinimumWidth(150);
    bindText(edit, field);
    follow(field, edit, [edit, &field] { setTip(edit, field.stringValue()); });
    layout->addWidget(edit, 1);

    auto* choose = new QPushButton(QStringLiteral("@@Win_choose"), this);
    choose->setAccessibleName(QStringLiteral("@@Win_acc_choose"));
    choose->setToolTip(QStringLiteral("@@Win_acc_choose"));
    bindControl(choose, select);
    connect(choose, &QPushButton::clicked, this, [&controller, &select] { controller.iba_selectFolderBt(&select); });
    layout->addWidget(choose);

    auto* show = new QPushButton(QStringLiteral("@@Win_reveal"), this);
    show->setAccessibleName(QStringLiteral("@@Win_acc_reveal"));
    show->setToolTip(QStringLiteral("@@Win_acc_reveal"));
    bindControl(show, reveal);
    const auto enable = [show, &field, &reveal] {
        show->setEnabled(reveal.isEnabled() && !field.stringValue().isEmpty());
    };
    follow(field, show, enable);
    follow(reveal, show, enable);
    connect(show, &QPushButton::clicked, this, [&controller, &reveal] { controller.iba_OpenFolder(&reveal); });
    layout->addWidget(show);
    order_ = {edit, choose, show};
    setFocusProxy(edit);
}

} // namespace tavrix
