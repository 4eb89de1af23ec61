#pragma once

#include "app/face.h"
#include "app/windowmodel.h"
#include "probe/intakelist.h"
#include "process/tasklauncher.h"

#include <QSet>
#include <QStringList>

#include <functional>
#include <memory>
#include <optional>

namespace tavrix
{

class InstanceLock;

// The application controller: takes sources in, analyses them one after the other, encodes the batch row by row, starts
// and quits. It knows no widget; it drives the window model and is driven by a face's actions and by its launchers'
// callbacks, all on the main thread. Its step flags, queues and current items live in the preferences store.
class appDelegate : public QObject, public TaskLauncherDelegate
{
    Q_OBJECT
public:
    // The face is not owned and must outlive the controller.
    explicit appDelegate(ApplicationFace* face, QObject* parent = nullptr);
    ~appDelegate() override;

    [[nodiscard]] WindowModel& model() { return model_; }

    // Start and end ---------------------------------------------------------------------------------------------------
    // False when a check failed: its alert has been shown and the program must end.
    [[nodiscard]] bool awakeFromNib();
    void applicationDidFinishLaunching();
    [[nodiscard]] bool applicationShouldTerminateAfterLastWindowClosed();
    void applicationWillTerminate();
    void iba_menuQuit();
    static void ac_iba_menuQuit();
    // Ends children, rows and temporary files without a question: session end and termination signals.
    void quitWithoutQuestion();
    [[nodiscard]] bool isQuitting() const { return quitting_; }

    // Intake ----------------------------------------------------------------------------------------------------------
    void dragNDropPerformDrag(QObject* view, const QStringList& paths);
    void applicationOpenFiles(const QStringList& paths);
    void performOpenFiles(const QStringList& paths);
    void draggedFiles(const QStringList& paths);

    // Analysis --------------------------------------------------------------------------------------------------------
    void analysis();
    [[nodiscard]] static QStringList analysisArray();
    bool taskLauncherAnalysisStart(const QStringList& arguments);
    void iba_analysisStopBt();

    // Encoding --------------------------------------------------------------------------------------------------------
    void iba_batchEncGoBt();
    void encSend(const QString& stepName);
    void enc(const QString& stepName);
    [[nodiscard]] static QStringList encArray();
    bool taskLauncherEncStart_progressMaxValueFloat_parseInt(const QStringList& arguments, float maximum, int parser);
    void iba_encStopBt(SegmentedControl* control);
    void deselectSelectedSeg(SegmentedControl* control);
    // The sender is the remove button, or null for an internal call.
    void encBatchRemove(Control* sender);
    void encBatchRemoveAll(Control* sender);
    [[nodiscard]] int encBatchInprogressRowIdentification() const;
    void encGoRazGui();
    [[nodiscard]] bool isEncoding() const { return encTaskClass_ != nullptr; }
    [[nodiscard]] bool isAnalysing() const { return analysisBatchRunning_; }

    // Launcher callbacks ----------------------------------------------------------------------------------------------
    void taskLauncherDidReceiveNewString(taskLauncher* launcher, const QString& text) override;
    void taskLauncherTaskDidEnd(taskLauncher* launcher) override;
    void taskLauncherTaskDidSuspend(taskLauncher* launcher) override;
    void taskLauncherTaskDidResume(taskLauncher* launcher) override;
    void taskLauncherDone(taskLauncher* launcher);

    // Menus, preferences sheet, folders -------------------------------------------------------------------------------
    void iba_menuPref();
    void iba_menuPrefClose();
    void prefCheckCaptions();
    void iba_setColor();
    void iba_drawerToggle();
    void windowWillClose();
    void iba_menuHelp(Control* sender);
    void iba_helpQtClose();
    void iba_openUrl();
    void iba_preview(int row);
    void iba_selectFolderBt(Control* sender);
    void iba_OpenFile(Control* sender);
    void iba_OpenFolder(Control* sender);
    void iba_menuDebugToggle();
    void iba_mail(Control* sender);

    // What the next answer to "keep or replace" is without asking: 1 replace, 0 keep, no value asks. A face that offers
    // the choice beforehand sets it; it is used for every batch.
    void setReplacePolicy(std::optional<int> policy) { replacePolicy_ = policy; }

    // Makes the launchers; each is owned by the controller. An empty function returns to real processes.
    using LauncherFactory = std::function<taskLauncher*()>;
    void setLauncherFactory(LauncherFactory factory);

Q_SIGNALS:
    // Observers only: nothing in the controller depends on them.
    void intakeRefused(const QStringList& paths);
    void intakeBegan();
    void sourcesQueued(int count);
    void nothingToAnalyse();
    void analysisStarted(const QString& path, int number, int total);
    void sourceAccepted(int row);
    void sourceRejected(const QString& path, const QString& reason);
    void analysisEnded();
    void analysisStalled(const QString& path);
    void rowStarted(int row);
    void rowProgress(int row, float value, float maximum);
    void rowFinished(int row, bool success);
    void rowVanished(const QString& path);
    void batchEnded(bool stopped);

private:
    struct EncodeLaunch {
        QStringList arguments;
        float maximum = 0;
        int parser = 0;
    };
    // Identity of a file, to tell an output of this run from one that stood there before.
    struct FileStamp {
        quint64 device = 0;
        quint64 inode = 0;
        qint64 size = 0;
        qint64 modified = 0; // nanoseconds
        bool operator==(const FileStamp&) const = default;
    };
    enum class EncodeAction { Idle, Finish, Launch, NextRow };

    // start-up
    bool checkMachine();
    bool checkSingleInstance();
    bool checkInstallPath();
    void killOldTools();
    void resetDropArea();
    void makeTemporaryFolder();
    void takeCodecInventory();
    void restorePreferences();
    void removeLeftOverIntermediate();
    void endChildren();
    void finishQuit();

    // intake
    void refuseDrop(const QStringList& paths);
    void closeIntake();
    void pauseEncodingForDrop();
    void resumeEncodingAfterDrop();
    void deliverPendingEncoderEnd();
    [[nodiscard]] QStringList withoutKnownSources(const QStringList& paths) const;
    void tellSkipped(const QList<SkippedSource>& skipped);
    void nothingNewDropped();

    // analysis
    void analysisHonourStop();
    void analysisTakeNext();
    void analysisCaption();
    void analysisDecodeStep();
    void analysisParseStep();
    void analysisThumbnailStep(const MediaInfoRecord& infos);
    void analysisFinalStep();
    void analysisAddRow(MediaInfoRecord infos);
    void analysisBatchEnd();
    void analysisStall();
    void analysisPanelReset();
    void releaseAnalysisTask();
    [[nodiscard]] QString frameFile() const;

    // encoding
    void encHonourStop();
    void encBatchStep();
    void encBatchOver();
    void encStoppedEnd();
    void encRowVanished(int index);
    void encBeginRow(int index);
    void encProcessesStep();
    EncodeAction encDebStep();
    [[nodiscard]] QString encReplaceRefusal(const QString& destination);
    QString encLoggedRefusal(const QString& reason, const QString& destination);
    [[nodiscard]] QString encFailureReason() const;
    void makeEventsFolder();
    bool encHasSpace(int row, const QString& destination);
    EncodeAction encRefuseRow(int row, const QString& reason);
    EncodeAction encQtEncStep();
    void encFinStep();
    bool encWriteClosingBlock(int row, float duration);
    void encJudgeRow(int row, const QString& destination);
    [[nodiscard]] QString encDestination(int row) const;
    [[nodiscard]] bool isOneOfTheSources(const QString& path) const;
    [[nodiscard]] bool isOutputOfThisBatch(const QString& path) const;
    void encFailRow(int row, const QString& reason);
    [[nodiscard]] bool encEndedMeanwhile() const;
    void encLaunch();
    void encStopPressed();
    void removePartialOutput(const QString& destination);
    void removeIntermediate(const QString& destination);
    void encResetDisplay();
    [[nodiscard]] bool isAnalysisSender(taskLauncher* launcher) const;
    void releaseEncoderTask();
    void showProgress(float value);
    void removeThumbnail(int row);
    [[nodiscard]] static std::optional<FileStamp> stampOf(const QString& path);

    [[nodiscard]] taskLauncher* newLauncher();

    ApplicationFace* face_;
    LauncherFactory launcherFactory_;
    WindowModel model_;
    std::unique_ptr<InstanceLock> instanceLock_;
    std::unique_ptr<InstanceLock> temporaryLock_;

    using LauncherPointer = std::unique_ptr<taskLauncher, void (*)(taskLauncher*)>;

    // analysis
    LauncherPointer analysisTaskClass_;
    QString analysisTaskVerboseMStr_; // nothing = no text is being collected
    QString analysisRetainedStr_;     // nothing = no text kept for the final step
    QString analysisRejection_;       // why the current source makes no row
    bool analysisBatchRunning_ = false;
    int analysisQueueHead_ = 0; // where the stored queue begins
    int analysisTakes_ = 0;     // sources taken from long queues in this batch
    bool encPausedForDrop_ = false;
    bool encControlDisabledForDrop_ = false;

    // encoding
    LauncherPointer encTaskClass_;
    bool encoderEndPending_ = false; // it ended while an analysis was running
    float encTaskProgressMaxValue_ = 0;
    float encTaskPreviousTime_ = 0;
    int encTaskParseInt_ = 0;
    std::optional<EncodeLaunch> encArgsVArray_;
    qint64 encStartInt_ = 0;
    qint64 encStartVideoInt_ = 0;
    QString encTranscriptTail_; // last text of the encoder, for the reason of a failure
    std::optional<FileStamp> encPreviousOutput_;
    QSet<QString> encBatchOutputs_; // written by this batch: never overwritten by it
    std::optional<int> replacePolicy_;
    QStringList encSteps_;
    bool encStepsRunning_ = false;
    bool encRowWasVanished_ = false; // the finish step belongs to a row that never began
    bool quitting_ = false;
};

} // namespace tavrix
