// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/dialogue/alerts.h"

namespace tavrix::test
{

// Presents alerts while it lives: notes "<title>: <text>" of each and answers the default.
class AlertRecorder : public AlertPresenter
{
public:
    AlertRecorder() { setAlertPresenter(this); }
    ~AlertRecorder() override { setAlertPresenter(nullptr); }
    AlertRecorder(const AlertRecorder&) = delete;
    AlertRecorder& operator=(const AlertRecorder&) = delete;

    [[nodiscard]] const QStringList& shown() const { return shown_; }

    AlertOutcome runModal(const AlertRequest& request) override
    {
        note(request);
        return {};
    }
    void showSheet(const AlertRequest& request, QObject*, std::function<void(AlertOutcome)>) override { note(request); }
    std::optional<QString> runTextInput(const AlertRequest& request, const QString&) override
    {
        note(request);
        return std::nullopt;
    }

private:
    void note(const AlertRequest& request) { shown_ << request.title + QStringLiteral(": ") + request.text; }

    QStringList shown_;
};

} // namespace tavrix::test
