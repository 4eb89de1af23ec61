// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "app/face.h"

#include <functional>
#include <memory>

namespace tavrix
{

class HelpWindow;
class MainWindow;
class PreviewWindow;

// What the controller asks of the desktop program: its windows, sheets and choosers.
class WindowFace : public ApplicationFace
{
public:
    // `end` leaves the event loop with status 0.
    explicit WindowFace(std::function<void()> end);
    ~WindowFace() override;

    // Not owned. The controller, which the window shows, needs this face first.
    void setWindow(MainWindow* window);
    [[nodiscard]] PreviewWindow* previewWindow() const { return preview_.get(); }
    [[nodiscard]] HelpWindow* helpWindow() const { return help_.get(); }
    void closeWindows();
    // Tests and benchmarks keep their own output.
    void setRedirectsOutput(bool redirects) { redirectsOutput_ = redirects; }

    QObject* window() override;
    QString selectFolder(const QString& title) override;
    void beep() override;
    void ecran(const QString& side, float delta) override;
    void localise() override;
    void openPreferencesSheet() override;
    void closePreferencesSheet() override;
    bool offersLeftOver() override { return true; }
    bool isHelpVisible() override;
    void showHelp() override;
    void hideHelp() override;
    void preview(const QString& path) override;
    bool redirectsOutput() override { return redirectsOutput_; }
    void terminate() override;

private:
    std::function<void()> end_;
    MainWindow* window_ = nullptr;
    bool redirectsOutput_ = true;
    std::unique_ptr<PreviewWindow> preview_;
    std::unique_ptr<HelpWindow> help_;
};

} // namespace tavrix
