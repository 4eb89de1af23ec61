// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QWidget>

namespace tavrix
{

class appDelegate;
class StateButton;
class TextField;

// A folder field with its two buttons. The main window and the preferences sheet have one each.
class FolderLine : public QWidget
{
    Q_OBJECT
public:
    // The name is that of the field for assistive technology, a marked text.
    FolderLine(appDelegate& controller, TextField& field, StateButton& select, StateButton& reveal, const char* name,
               QWidget* parent = nullptr);

    // The widgets that take the focus, in the order of the Tab key.
    [[nodiscard]] QList<QWidget*> tabOrder() const { return order_; }

private:
    QList<QWidget*> order_;
};

} // namespace tavrix
