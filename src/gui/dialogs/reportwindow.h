// SPDX-License-Identifier: GPL-3.0-or-later
// The report of a problem: all of it is shown before anything leaves the machine.
#pragma once

#include "gui/dialogs/toolwindow.h"

#include <functional>

class QCheckBox;
class QLabel;

namespace tavrix
{

class ReportWindow : public ToolWindow
{
    Q_OBJECT
public:
    // `mail` opens the mail program.
    ReportWindow(std::function<void()> mail, QWidget* owner);

    // Gathers the report and shows it.
    void showReport();

private:
    void buildButtons(std::function<void()> mail);
    void chooseFile();
    void save(const QString& path);

    QLabel* words_;
    QCheckBox* fullPaths_;
};

} // namespace tavrix
