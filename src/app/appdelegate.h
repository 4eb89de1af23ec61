// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// The application controller: every name that a face or a launcher calls.

#include "app/beat.h"
#include "app/session.h"
#include "app/windowmodel.h"
#include "process/tasklauncher.h"

#include <QStringList>

#include <functional>
#include <memory>
#include <optional>

namespace tavrix
{

struct Machines;

// The desk in front of the machines that take sources in, analyse them one after the other, encode the batch row by
// row, and start the program. It knows no widget: it owns the window model, is driven by a face's actions and by its
// launchers' callbacks, all on the main thread, hands each to its machine and relays what the machines tell.
class appDelegate : public QObject, public TaskLauncherDelegate
{
    Q_OBJECT
public:
    // The face is not owned and must outlive the controller.
    explicit appDelegate(ApplicationFace* face, QObject* parent = nullptr);
    ~appDelegate() override;

    [[nodiscard]] WindowModel& model() { return model_; }

    // False when a check failed: its alert has been shown and the program must end.
    [[nodiscard]] bool awakeFromNib();
    // Sets what needs the whole window: the debug item of the menu.
    void applicationDidFinishLaunching();
    // Always false: the quit that it starts ends the program, or not.
    [[nodiscard]] bool applicationShouldTerminateAfterLastWindowClosed();
    // The event loop has ended, with or without a quit.
    void applicationWillTerminate();
    // Asks first while a child encodes.
    void iba_menuQuit();
    // The same for the controller made last; nothing without one.
    static void ac_iba_menuQuit();
    // Ends children, rows and temporary files without a question: session end and termination signals.
    void quitWithoutQuestion();
    [[nodiscard]] bool isQuitting() const { return session_.isEnding(); }

    // A drop on a view, kept back while an alert is open; full paths of files and folders.
    void dragNDropPerformDrag(QObject* view, const QStringList& paths);
    // The system's open request: it returns before the intake runs.
    void applicationOpenFiles(const QStringList& paths);
    void performOpenFiles(const QStringList& paths);
    // The intake itself.
    void draggedFiles(const QStringList& paths);

    // One step of the analysis.
    void analysis();
    // Its step flags, in order.
    [[nodiscard]] static QStringList analysisArray();
    // Program and arguments; false when no child runs.
    bool taskLauncherAnalysisStart(const QStringList& arguments);
    void iba_analysisStopBt();
    [[nodiscard]] bool isAnalysing() const;

    // The start button.
    void iba_batchEncGoBt();
    // Queues a step of the batch and runs the queue, unless it runs already.
    void encSend(const QString& stepName);
    // Runs a step at once.
    void enc(const QString& stepName);
    // Step flags of the batch, in order.
    [[nodiscard]] static QStringList encArray();
    // Maximum of the progress in what the child counts, 0 or less for none; parser selector of encode/progress.h.
    bool taskLauncherEncStart_progressMaxValueFloat_parseInt(const QStringList& arguments, float maximum, int parser);
    // Takes the selected segment of the control for pressed.
    void iba_encStopBt(SegmentedControl* control);
    void deselectSelectedSeg(SegmentedControl* control);
    // The sender is the remove button, or null for an internal call.
    void encBatchRemove(Control* sender);
    void encBatchRemoveAll(Control* sender);
    // Takes the converted clips off the list.
    void removeConverted();
    // The same, and starts the batch with what is left.
    void goOnWithTheRest();
    // Index of the row being encoded; -1 when none is.
    [[nodiscard]] int encBatchInprogressRowIdentification() const;
    // Empties the display of analysis and encode.
    void encGoRazGui();
    // True while an encoder's child is held, a paused one included.
    [[nodiscard]] bool isEncoding() const;

    void taskLauncherDidReceiveNewString(taskLauncher* launcher, const QString& text) override;
    void taskLauncherTaskDidEnd(taskLauncher* launcher) override;
    void taskLauncherTaskDidSuspend(taskLauncher* launcher) override;
    void taskLauncherTaskDidResume(taskLauncher* launcher) override;
    // A launcher has ended, or (null) could not be started.
    void taskLauncherDone(taskLauncher* launcher);

    // The preferences sheet; closing it stores what it shows.
    void iba_menuPref();
    void iba_menuPrefClose();
    // Shows the words of the selected output format.
    void prefCheckCaptions();
    // Makes the format the one of new clips, now and at the next start; a number that is none is ignored.
    void chooseFormat(int out);
    // Makes the destination typed now the one of every start, or of this one only.
    void useDestinationEveryTime(bool every);
    // Stores the selected colour and shows its image.
    void iba_setColor();
    void iba_drawerToggle();
    void windowWillClose();
    // Shows the help; no sender hides it.
    void iba_menuHelp(Control* sender);
    void iba_helpQtClose();
    void iba_openUrl();
    // Out of range is ignored.
    void iba_preview(int row);
    // The sender is one of the model's choose or reveal buttons, or a log's menu item.
    void iba_selectFolderBt(Control* sender);
    void iba_OpenFile(Control* sender);
    void iba_OpenFolder(Control* sender);
    void iba_menuDebugToggle();
    // Writes a mail to the maker: a bug report when its menu item is the sender, else a plain one.
    void iba_mail(Control* sender);

    // The clock's call: so many milliseconds have passed in which the program could run.
    void passTime(qint64 milliseconds);

    // What the next answer to "keep or replace" is without asking: 1 replace, 0 keep, no value asks. A face that offers
    // the choice beforehand sets it; it is used for every batch.
    void setReplacePolicy(std::optional<int> policy);

    // Makes the launchers; each is owned by the controller. An empty function returns to real processes.
    using LauncherFactory = std::function<taskLauncher*()>;
    void setLauncherFactory(LauncherFactory factory);

Q_SIGNALS:
    // Observers only: nothing in the controller depends on them. Rows count from 0, sources from 1.
    void intakeRefused(const QStringList& paths);
    void intakeBegan();
    void sourcesQueued(int count);
    void nothingToAnalyse();
    // What an earlier run has left unread, when this one is given sources of its own.
    void leftOverDropped(const QStringList& sources);
    void analysisStarted(const QString& path, int number, int total);
    void sourceAccepted(int row);
    void sourceRejected(const QString& path, const QString& reason);
    void analysisEnded();
    void analysisStalled(const QString& path);
    void rowStarted(int row);
    void rowProgress(int row, float value, float maximum);
    // How much of a pass is done, 0 to 1, by what its tool says of itself; passes count from 1. It follows rowProgress.
    void rowStep(int row, int pass, int passes, double fraction);
    void rowFinished(int row, bool success);
    void rowVanished(const QString& path);
    void batchEnded(bool stopped);

private:
    // Does the work unless the program ends.
    template <typename Work> void drive(Work work);
    void connectMachines();
    [[nodiscard]] bool isAnalysisSender(const taskLauncher* launcher) const;

    WindowModel model_;
    Session session_;
    std::unique_ptr<Machines> machines_;
    Beat beat_;
};

template <typename Work> void appDelegate::drive(Work work)
{
    if (!session_.isEnding()) {
        work();
    }
}

} // namespace tavrix
