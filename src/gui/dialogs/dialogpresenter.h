// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/dialogue/alerts.h"

#include <QHash>
#include <QList>
#include <QPointer>

class QWidget;

namespace tavrix
{

class AlertDialog;

// Presents the program's alerts as dialogs. Modal ones return when answered; sheets belong to a window, never block,
// and wait for the sheet before them.
class DialogPresenter : public AlertPresenter
{
public:
    ~DialogPresenter() override;

    AlertOutcome runModal(const AlertRequest& request) override;
    void showSheet(const AlertRequest& request, QObject* window, std::function<void(AlertOutcome)> done) override;
    std::optional<QString> runTextInput(const AlertRequest& request, const QString& defaultValue) override;

    // Window that alerts without one of their own stand before; null: none.
    void setWindow(QWidget* window);
    // Answers every open modal alert by the button that changes nothing, so that the program can end.
    void dismissAll();
    // The same, and later modal alerts are answered so without being shown.
    void answerAllFromNowOn();
    // Length of a tenth of a second of the timed alerts; tests shorten it.
    void setTickMilliseconds(int milliseconds) { tickMilliseconds_ = milliseconds; }

private:
    struct Sheet {
        AlertRequest request;
        QPointer<QWidget> window;
        std::function<void(AlertOutcome)> done;
    };
    void execute(AlertDialog& dialog);
    void showNextSheet(QWidget* window);

    QPointer<QWidget> window_;
    QList<QPointer<AlertDialog>> running_;
    QHash<QWidget*, QList<Sheet>> sheets_; // first of each list is on the screen
    int tickMilliseconds_ = 100;
    bool ending_ = false;
};

} // namespace tavrix
