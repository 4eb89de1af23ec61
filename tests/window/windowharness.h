// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "app/appdelegate.h"
#include "gui/window/mainwindow.h"
#include "gui/window/windowprogram.h"
#include "platform/desktop.h"
#include "support/temphome.h"
#include "support/waituntil.h"
#include "support_app/faketools.h"

#include <QAbstractButton>
#include <QAction>
#include <QDialog>
#include <QMenu>
#include <QPointer>
#include <QTest>
#include <QTimer>

#include <gtest/gtest.h>

#include <deque>
#include <memory>

class QFileDialog;

namespace tavrix::test
{

// Writes down what the desktop is asked to open.
class RecordingDesktop : public DesktopServices
{
public:
    bool openUrl(const QUrl& url) override
    {
        opened << url;
        return true;
    }
    bool openFileWith(const QString& path, const QString& /*application*/) override
    {
        opened << QUrl::fromLocalFile(path);
        return true;
    }
    bool reveal(const QString& path) override
    {
        revealed << path;
        return true;
    }
    void noteFileSystemChanged(const QString& /*path*/) override {}

    QList<QUrl> opened;
    QStringList revealed;
};

// Answers the dialogs that come up, each in its turn, by pressing their real buttons.
class DialogRobot : public QObject
{
public:
    DialogRobot();
    // Presses the button of that object name in the next alert, after ticking the check box when asked to.
    void press(const QString& button, bool tick = false);
    // Leaves the next alert to its own time-out.
    void waitForTimeOut();
    // Chooses the path in the next file chooser.
    void choose(const QString& path);
    // Runs when the next alert is on the screen; the alert stays.
    void look(std::function<void(QDialog&)> looker);
    // Runs when the next file chooser is on the screen; the chooser stays.
    void lookAtChooser(std::function<void(QDialog&)> looker);

    QStringList titles; // of the alerts seen, in order
    [[nodiscard]] bool isDone() const { return steps_.empty(); }

private:
    struct Step {
        QString button;
        bool tick = false;
        bool timeOut = false;
        QString path;
        std::function<void(QDialog&)> looker;
        bool atChooser = false;
    };
    void tick();
    void answerAlert(QDialog& dialog);
    void answerChooser(QFileDialog& dialog);

    std::deque<Step> steps_;
    QTimer timer_;
    QPointer<QDialog> answered_;
};

// A fresh program in a fresh home for each test, driven by the object names of its widgets.
class WindowTest : public testing::Test
{
protected:
    void SetUp() override;
    void TearDown() override;

    // Makes and starts the program, with pretended tools unless `realTools`.
    void startProgram(bool realTools = false);
    void endProgram();
    // The end that the user has not asked for.
    void killProgram();

    template <class Widget> Widget* find(const char* name)
    {
        auto* widget = window().findChild<Widget*>(QLatin1String(name));
        if (widget == nullptr) {
            ADD_FAILURE() << "no widget " << name;
        }
        return widget;
    }
    void click(const char* name);
    void trigger(const char* action);
    void type(const char* name, const QString& text);
    // A drop of files by the drag and drop events of the toolkit; answers the action that was taken.
    Qt::DropAction drop(const QStringList& paths, Qt::DropActions offered = Qt::CopyAction,
                        Qt::DropAction proposed = Qt::CopyAction);
    // Drops files of that many pretended clips and ends their analysis.
    QStringList analysedClips(int count);
    [[nodiscard]] QStringList states();
    void useDestination();
    [[nodiscard]] static bool waitFor(const std::function<bool()>& condition) { return waitUntil(condition, 30000); }

    [[nodiscard]] MainWindow& window() { return program_->window(); }
    [[nodiscard]] appDelegate& controller() { return program_->controller(); }
    [[nodiscard]] WindowModel& model() { return program_->controller().model(); }
    [[nodiscard]] BatchList& rows() { return model().encBatchArrayController; }

    TempFolder folder_;
    QString destination_;
    FakeTools tools_;
    RecordingDesktop desktop_;
    std::unique_ptr<WindowProgram> program_;
    std::unique_ptr<DialogRobot> robot_;
    int terminations_ = 0;
};

} // namespace tavrix::test
