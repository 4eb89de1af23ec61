// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QList>
#include <QPair>
#include <QPushButton>
#include <QString>

namespace tavrix
{

class appDelegate;

// How many of the files taken in last were left out; a press tells which and why. Not shown when there are none.
class LeftOutButton : public QPushButton
{
    Q_OBJECT
public:
    explicit LeftOutButton(appDelegate& controller, QWidget* parent = nullptr);

private:
    void refresh();
    void showList();

    QList<QPair<QString, QString>> leftOut_; // path, reason
};

} // namespace tavrix
