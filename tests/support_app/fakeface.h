// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "app/face.h"
#include "base/dialogue/alerts.h"
#include "platform/desktop.h"

#include <QList>
#include <QStringList>

#include <deque>
#include <functional>

namespace tavrix::test
{

// A face, alert presenter and desktop in one: writes down everything that it is asked, in order, and answers as
// prepared. It installs itself for its life.
class FakeFace : public ApplicationFace, public AlertPresenter, public DesktopServices
{
public:
    FakeFace();
    ~FakeFace() override;
    FakeFace(const FakeFace&) = delete;
    FakeFace& operator=(const FakeFace&) = delete;

    // What was asked, as "alert:<title>", "sheet:<title>", "open:<path or address>", "reveal:<path>", "beep",
    // "ecran:<side>", "choose", "help shown", "help hidden", "preferences opened", "preferences closed",
    // "preview:<path>", "terminate".
    QStringList events;
    QList<AlertRequest> alerts; // modal ones and sheets
    [[nodiscard]] int count(const QString& event) const { return static_cast<int>(events.count(event)); }

    // Answers of the next modal alerts, then `otherwise`. A handler runs while its alert is open.
    using Answer = std::function<AlertOutcome(const AlertRequest&)>;
    std::deque<Answer> answers;
    Answer otherwise;
    void answer(int button, bool checked = false);
    // Runs in every modal alert, before the answer.
    std::function<void(const AlertRequest&)> whileOpen;
    // The next answers of the folder chooser, then nothing.
    QStringList folders;
    bool helpVisible = false;
    bool offers = false; // to go on with what an earlier run has left
    bool desktopWorks = true;

    QObject* window() override { return &window_; }
    QString selectFolder(const QString& title) override;
    bool offersLeftOver() override { return offers; }
    void beep() override { events << QStringLiteral("beep"); }
    void ecran(const QString& side, float delta) override;
    void localise() override { events << QStringLiteral("localise"); }
    void openPreferencesSheet() override { events << QStringLiteral("preferences opened"); }
    void closePreferencesSheet() override { events << QStringLiteral("preferences closed"); }
    bool isHelpVisible() override { return helpVisible; }
    void showHelp() override;
    void hideHelp() override;
    void preview(const QString& path) override { events << QStringLiteral("preview:") + path; }
    // The test program keeps its own output.
    bool redirectsOutput() override { return false; }
    void terminate() override { events << QStringLiteral("terminate"); }

    AlertOutcome runModal(const AlertRequest& request) override;
    void showSheet(const AlertRequest& request, QObject* window, std::function<void(AlertOutcome)> done) override;
    std::optional<QString> runTextInput(const AlertRequest& request, const QString& defaultValue) override;

    bool openUrl(const QUrl& url) override;
    bool openFileWith(const QString& path, const QString& application) override;
    bool reveal(const QString& path) override;
    void noteFileSystemChanged(const QString& /*path*/) override {}

private:
    QObject window_;
};

} // namespace tavrix::test
