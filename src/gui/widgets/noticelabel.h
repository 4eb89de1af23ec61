// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "gui/widgets/elidedlabel.h"

namespace tavrix
{

class appDelegate;

// One line that tells what has just happened.
class NoticeLabel : public ElidedLabel
{
    Q_OBJECT
public:
    explicit NoticeLabel(appDelegate& controller, QWidget* parent = nullptr);

    // Nothing clears the line.
    void showNotice(const QString& text);

private:
    void listen();
    void sumUp(bool stopped);

    appDelegate& controller_;
};

} // namespace tavrix
