// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "app/face.h"
#include "base/dialogue/alerts.h"
#include "console/options.h"
#include "console/reporter.h"
#include "platform/desktop.h"

namespace tavrix
{

// The terminal as a face: alerts become lines; the replace question is asked when a person can answer it.
class ConsoleFace : public ApplicationFace, public AlertPresenter, public DesktopServices
{
public:
    // `mayAsk`: standard input is a terminal. The reporter is not owned.
    ConsoleFace(Reporter* reporter, bool mayAsk);

    void terminate() override;
    AlertOutcome runModal(const AlertRequest& request) override;
    void showSheet(const AlertRequest& request, QObject* window, std::function<void(AlertOutcome)> done) override;
    std::optional<QString> runTextInput(const AlertRequest& request, const QString& defaultValue) override;

    // The console prints where things are; it opens nothing.
    bool openUrl(const QUrl& url) override;
    bool openFileWith(const QString& path, const QString& application) override;
    bool reveal(const QString& path) override;
    void noteFileSystemChanged(const QString& path) override;

    void setExitCode(int code) { exitCode_ = code; }
    [[nodiscard]] int exitCode() const { return exitCode_; }

private:
    AlertOutcome ask(const AlertRequest& request);

    Reporter* reporter_;
    bool mayAsk_;
    int exitCode_ = 0;
};

// The choice that a typed line makes among the buttons: a number from 1, with "*" beside it for the check box. Button
// -1 when it is none of them; an empty line chooses the default.
[[nodiscard]] AlertOutcome typedAnswer(const QString& line, const QStringList& buttons, bool hasCheckBox);

} // namespace tavrix
