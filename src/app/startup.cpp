// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/startup.h"

#include "app/alerttext.h"
#include "app/currentrow.h"
#include "app/droparea.h"
#include "app/face.h"
#include "app/instancelock.h"
#include "app/logs.h"
#include "app/oldtools.h"
#include "app/outputguard.h"
#include "app/privatefiles.h"
#include "app/session.h"
#include "app/settingstable.h"
#include "app/stepflags.h"
#include "app/windowmodel.h"
#include "app/workfolder.h"
#include "base/bundle/bundle.h"
#include "base/files/filedelete.h"
#include "base/files/fileinfo.h"
#include "base/files/fileops.h"
#include "base/store/preferences.h"
#include "base/store/settings.h"
#include "base/text/format.h"
#include "base/text/log.h"
#include "base/text/paths.h"
#include "base/text/shownname.h"
#include "encode/outputname.h"
#include "platform/systeminfo.h"
#include "process/capturedrun.h"
#include "quicktime/av/codecinventory.h"
#include "sys/publication.h"

#include <QDir>

#include <csignal>

namespace tavrix
{

StartUp::StartUp(Session& session, DropArea& dropArea) : session_(session), dropArea_(dropArea) {}

StartUp::~StartUp() = default;

bool StartUp::run()
{
    // A file that would become larger than the system allows is told by the call that writes it.
    std::signal(SIGXFSZ, SIG_IGN);
    if (!mayRun()) {
        return false;
    }
    // Relative names such as "presets" must never be found in a folder of the user's.
    QDir::setCurrent(QStringLiteral("/"));
    dropArea_.open();
    session_.face().localise();
    session_.model().versionStr.setStringValue(bundleVersion());
    startLogs();
    if (!makeTemporaryFolder()) {
        return false;
    }
    takeCodecInventory();
    clearDisplay();
    restorePreferences();
    return true;
}

bool StartUp::mayRun()
{
    if (cpuG3()) {
        return refuse("D_check_CPU");
    }
    if (getDEBUGDEV() != 0) {
        return true;
    }
    if (!isSingleInstance() || !isInstallPathUsable()) {
        return false;
    }
    killOldTools();
    return true;
}

bool StartUp::refuse(const char* titleKey, const char* textKey)
{
    // Whatever has become of the work under this alert: there is none yet, and the program ends.
    (void)session_.tell(alertText(titleKey), textKey != nullptr ? alertText(textKey) : QString());
    return false;
}

bool StartUp::isSingleInstance()
{
    instanceLock_ = std::make_unique<InstanceLock>();
    const InstanceLock::Result result = instanceLock_->take(cachesFolder());
    if (result == InstanceLock::Result::Unavailable) {
        logLine(QStringLiteral("instance lock       :-( %@"), {cachesFolder()});
    }
    if (result != InstanceLock::Result::HeldByAnother) {
        return true;
    }
    logLine(QStringLiteral("TVX's number of copy :-( %d"), {2});
    return refuse("D_appAlreadyOpened_1", "D_appAlreadyOpened_2");
}

bool StartUp::isInstallPathUsable()
{
    if (!resourcePath().contains(QLatin1Char('\\'))) {
        return true;
    }
    logLine(QStringLiteral("TVX's path contains character '\\' :-( %@"), {resourcePath()});
    return refuse("D_TXpref_ouvert_2", "D_appAlreadyOpened_3");
}

void StartUp::killOldTools()
{
    for (const QString& tool : {QStringLiteral("movencoder"), QStringLiteral("ffmpeg")}) {
        for (const int pid : leftOverToolPids(tool)) {
            logLine(QStringLiteral("vieux process       :-/ %d - %@"), {pid, tool});
            killLeftOverTool(pid);
        }
    }
}

void StartUp::startLogs()
{
    rotateLogs();
    logResume(QStringLiteral(""));
    if (session_.face().redirectsOutput()) {
        redirectLogs2File(detailsLogPath());
    }
}

// False when there is no place for temporary files: its alert has been shown. Without one every clip would look
// unreadable.
bool StartUp::makeTemporaryFolder()
{
    mkdirCocoa(cachesFolder());
    keepPrivate(cachesFolder(), 0700);
    const QString base = systemTemporaryFolder();
    temporaryLock_ = std::make_unique<InstanceLock>();
    // A copy of the same user with another home may be working there.
    const bool shared = !base.isNull() && temporaryLock_->take(base + bundleName() + QStringLiteral(".lock")) ==
                                              InstanceLock::Result::HeldByAnother;
    const WorkFolder work = makeWorkFolder(base, shared);
    for (const QString& obstacle : work.obstacles) {
        logLine(QStringLiteral("temporary folder    :-( %@"), {obstacle});
    }
    if (work.path.isNull()) {
        (void)session_.tell(alertText("D_noTemporary_1"),
                            formatText(alertText("D_noTemporary_2"), {shownLines(work.obstacles.join(u'\n'))}));
        return false;
    }
    setTMPFOLDER(work.path);
    return true;
}

void StartUp::takeCodecInventory()
{
    const QList<int> answers = codecsCheck({QStringLiteral("WMV "), QStringLiteral("DIV6"), QStringLiteral("ICOD")});
    setWMV(answers.value(0));
    setDIVX(answers.value(1));
    setAIC(answers.value(2));
    setPRORES(0);
    if (!codecsProresCheck().isEmpty()) {
        setPRORES(1);
    }
}

void StartUp::clearDisplay()
{
    WindowModel& model = session_.model();
    model.batchEncGoBt.setEnabled(false);
    model.mainEncProgressCaptionStr.setStringValue(QString());
    model.mainEncProgressPercentStr.setStringValue(QString());
    model.encStopBt.setHidden(true);
    model.analyseStopBt.setHidden(true);
    model.analyseCaptionStr.setStringValue(QString());
}

void StartUp::restorePreferences()
{
    prefSynchronize();
    removeLeftOverIntermediate();
    for (const QString& key : prefAllKeys()) {
        if (!isKeptAtStart(key)) {
            prefDelete(key);
        }
    }
    WindowModel& model = session_.model();
    // What is out of range is not taken, and the default stays.
    model.prefCheckMatrix.setSelectedSegment(defaultOutputFormat);
    model.prefCheckMatrix.setSelectedSegment(storedNumber(pref::prefCheckMatrix));
    model.showFormatCaption();
    model.prefColor.setSelectedSegment(0);
    model.prefColor.setSelectedSegment(storedNumber(pref::prefColor));
    model.showColorImage();
    const QString folder = prefRead(pref::prefDefautDstPathStr);
    if (isFolder(stringByExpandingTildeInPath(folder))) {
        model.prefDefautDstPathStr.setStringValue(folder);
        model.mainEncDstPathStr.setStringValue(folder);
    }
    // Of what the program itself waits for, a clip's play lists among it.
    setCapturedSilence(silenceLimit(pref::silenceAnalysis));
    prefSynchronize();
}

// A run that was killed between its two passes has left the first one's movie under its master name.
void StartUp::removeLeftOverIntermediate()
{
    const QString output = currentValue(record::dstPathStr);
    const QString intermediate = currentValue(record::purgePathStr1);
    if (!intermediate.isEmpty() && intermediate == intermediateName(output)) {
        OutputGuard guard(session_.model().encBatchArrayController);
        const QByteArray file = currentValue(ownFile).toUtf8();
        if (const auto own = publication::readTerms(file.constData(), nullptr).replaceable) {
            guard.noteOwn(*own);
            // Disks of cameras and sticks number their files anew when they are plugged in again.
            const std::optional<FileIdentity> now = OutputGuard::intermediateOf(output);
            if (now && own->size > 0 && now->size == own->size && now->modified == own->modified) {
                guard.noteOwn(*now);
            }
        }
        guard.removeIntermediate(output);
    }
}

} // namespace tavrix
