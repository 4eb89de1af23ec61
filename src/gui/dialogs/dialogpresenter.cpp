// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/dialogs/dialogpresenter.h"

#include "gui/dialogs/alertdialog.h"

namespace tavrix
{

DialogPresenter::~DialogPresenter() = default;

void DialogPresenter::setWindow(QWidget* window)
{
    window_ = window;
}

void DialogPresenter::execute(AlertDialog& dialog)
{
    if (ending_) {
        dialog.dismiss();
        return;
    }
    dialog.setWindowModality(Qt::ApplicationModal);
    running_ << QPointer<AlertDialog>(&dialog);
    dialog.exec();
    running_.removeAll(QPointer<AlertDialog>(&dialog));
}

AlertOutcome DialogPresenter::runModal(const AlertRequest& request)
{
    AlertDialog dialog(request, tickMilliseconds_, window_);
    execute(dialog);
    return dialog.outcome();
}

std::optional<QString> DialogPresenter::runTextInput(const AlertRequest& request, const QString& defaultValue)
{
    AlertDialog dialog(request, tickMilliseconds_, window_);
    dialog.addTextField(defaultValue);
    execute(dialog);
    if (dialog.outcome().button != 0) {
        return std::nullopt;
    }
    // A null text would stand for "nothing typed" further up.
    return dialog.typedText().isNull() ? QStringLiteral("") : dialog.typedText();
}

void DialogPresenter::dismissAll()
{
    const QList<QPointer<AlertDialog>> dialogs = running_;
    for (auto dialog = dialogs.crbegin(); dialog != dialogs.crend(); ++dialog) {
        if (*dialog) {
            (*dialog)->dismiss();
        }
    }
}

void DialogPresenter::answerAllFromNowOn()
{
    ending_ = true;
    dismissAll();
}

void DialogPresenter::showSheet(const AlertRequest& request, QObject* window, std::function<void(AlertOutcome)> done)
{
    auto* owner = qobject_cast<QWidget*>(window);
    if (owner == nullptr) {
        owner = window_;
    }
    QList<Sheet>& queue = sheets_[owner];
    queue.append({request, owner, std::move(done)});
    if (queue.size() == 1) {
        showNextSheet(owner);
    }
}

void DialogPresenter::showNextSheet(QWidget* window)
{
    const Sheet sheet = sheets_[window].first();
    auto* dialog = new AlertDialog(sheet.request, tickMilliseconds_, sheet.window);
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->setModal(true);
    dialog->setWindowModality(Qt::WindowModal);
    dialog->setWindowFlag(Qt::Sheet, true);
    QObject::connect(dialog, &QDialog::finished, dialog, [this, window, dialog, done = sheet.done] {
        const AlertOutcome outcome = dialog->outcome();
        QList<Sheet>& queue = sheets_[window];
        if (!queue.isEmpty()) {
            queue.removeFirst();
        }
        if (!queue.isEmpty()) {
            showNextSheet(window);
        }
        if (done) {
            done(outcome);
        }
    });
    dialog->open();
}

} // namespace tavrix
