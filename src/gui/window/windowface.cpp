// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/window/windowface.h"

#include "base/dialogue/alerts.h"
#include "gui/dialogs/helpwindow.h"
#include "gui/dialogs/pickers.h"
#include "gui/dialogs/preferencessheet.h"
#include "gui/preview/previewwindow.h"
#include "gui/widgets/windowtext.h"
#include "gui/window/mainwindow.h"

#include <QApplication>

namespace tavrix
{

WindowFace::WindowFace(std::function<void()> end) : end_(std::move(end)) {}

WindowFace::~WindowFace() = default;

void WindowFace::setWindow(MainWindow* window)
{
    window_ = window;
}

QObject* WindowFace::window()
{
    return window_;
}

QString WindowFace::selectFolder(const QString& title)
{
    return tavrix::selectFolder(
        title.isNull() ? windowText("Win_chooseDestination") : title, [](const QString& folder) {
            displayAlert(windowText("Win_folderClosed"), windowText("Win_folderClosedWords", {folder}), 0, nullptr);
        });
}

void WindowFace::beep()
{
    QApplication::beep();
}

void WindowFace::ecran(const QString& side, float delta)
{
    if (window_ != nullptr) {
        window_->growToward(side, delta);
    }
}

void WindowFace::localise()
{
    if (window_ != nullptr) {
        window_->localise();
    }
}

void WindowFace::openPreferencesSheet()
{
    if (window_ != nullptr) {
        window_->preferences().open();
    }
}

void WindowFace::closePreferencesSheet()
{
    if (window_ != nullptr) {
        window_->preferences().done(QDialog::Accepted);
    }
}

bool WindowFace::isHelpVisible()
{
    return help_ && help_->isVisible();
}

void WindowFace::showHelp()
{
    if (!help_) {
        help_ = std::make_unique<HelpWindow>();
    }
    help_->showHelp();
}

void WindowFace::hideHelp()
{
    if (help_) {
        help_->hide();
    }
}

void WindowFace::preview(const QString& path)
{
    if (!preview_) {
        preview_ = std::make_unique<PreviewWindow>(window_->rows());
    }
    preview_->showMovie(path);
}

void WindowFace::closeWindows()
{
    preview_.reset();
    help_.reset();
}

void WindowFace::terminate()
{
    closeWindows();
    end_();
}

} // namespace tavrix
