#include "app/appdelegate.h"

#include "app/instancelock.h"
#include "app/logs.h"
#include "app/oldtools.h"
#include "app/stepflags.h"
#include "base/alerts.h"
#include "base/bundle.h"
#include "base/conversions.h"
#include "base/filedelete.h"
#include "base/fileops.h"
#include "base/filesizes.h"
#include "base/format.h"
#include "base/localisation.h"
#include "base/log.h"
#include "base/paths.h"
#include "base/preferences.h"
#include "base/runloopgate.h"
#include "base/settings.h"
#include "base/text.h"
#include "encode/outputname.h"
#include "platform/systeminfo.h"
#include "quicktime/codecinventory.h"

#include <QCoreApplication>
#include <QDir>

#include <sys/stat.h>

// The start of the program.
namespace tavrix
{

namespace
{

constexpr int defaultOutputFormat = 3;

QString alertText(const char* key)
{
    return localizedString(QLatin1String(key));
}

bool isKeptAtStart(const QString& key)
{
    static const QStringList kept = {pref::prefCheckMatrix, pref::prefDefautDstPathStr, pref::prefColor,
                                     pref::analysisSrcPathesDico, pref::analysisSrcPathStr};
    return kept.contains(key) || key.startsWith(QLatin1String("NSNav"));
}

} // namespace

bool appDelegate::awakeFromNib()
{
    if (!checkMachine()) {
        return false;
    }
    if (getDEBUGDEV() == 0) {
        if (!checkSingleInstance() || !checkInstallPath()) {
            return false;
        }
        killOldTools();
    }
    // Relative names such as "presets" must never be found in a folder of the user's.
    QDir::setCurrent(QStringLiteral("/"));
    resetDropArea();
    face_->localise();
    model_.versionStr.setStringValue(bundleVersion());
    rotateLogs();
    logResume(QStringLiteral(""));
    if (face_->redirectsOutput()) {
        redirectLogs2File(detailsLogPath());
    }
    makeTemporaryFolder();
    takeCodecInventory();
    encGoRazGui();
    restorePreferences();
    return true;
}

bool appDelegate::checkMachine()
{
    if (!cpuG3()) {
        return true;
    }
    displayAlert(alertText("D_check_CPU"), QString(), 0, nullptr);
    return false;
}

bool appDelegate::checkSingleInstance()
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
    displayAlert(alertText("D_appAlreadyOpened_1"), alertText("D_appAlreadyOpened_2"), 0, nullptr);
    return false;
}

bool appDelegate::checkInstallPath()
{
    if (!resourcePath().contains(QLatin1Char('\\'))) {
        return true;
    }
    logLine(QStringLiteral("TVX's path contains character '\\' :-( %@"), {resourcePath()});
    displayAlert(alertText("D_TXpref_ouvert_2"), alertText("D_appAlreadyOpened_3"), 0, nullptr);
    return false;
}

void appDelegate::killOldTools()
{
    for (const QString& tool : {QStringLiteral("movencoder"), QStringLiteral("ffmpeg")}) {
        for (const int pid : leftOverToolPids(tool)) {
            logLine(QStringLiteral("vieux process       :-/ %d - %@"), {pid, tool});
            killLeftOverTool(pid);
        }
    }
}

void appDelegate::makeTemporaryFolder()
{
    const QString base = systemTemporaryFolder();
    mkdirCocoa(cachesFolder());
    ::chmod(cachesFolder().toUtf8().constData(), 0700);
    QString folder = formatText(QStringLiteral("%@%@/"), {base, bundleName()});
    // A copy of the same user with another home may be working there.
    temporaryLock_ = std::make_unique<InstanceLock>();
    if (temporaryLock_->take(base + bundleName() + QStringLiteral(".lock")) == InstanceLock::Result::HeldByAnother) {
        folder =
            formatText(QStringLiteral("%@%@-%d/"), {base, bundleName(), qint64(QCoreApplication::applicationPid())});
    }
    if (!base.isNull() && removeOwnFolder(folder) && mkdirCocoa(folder)) {
        ::chmod(folder.toUtf8().constData(), 0700);
        setTMPFOLDER(folder);
        return;
    }
    setTMPFOLDER(QString());
    if (!mkdirCocoa(getTMPFOLDER())) {
        logLine(QStringLiteral("temporary folder    :-( %@"), {getTMPFOLDER()});
    }
}

void appDelegate::takeCodecInventory()
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

void appDelegate::encGoRazGui()
{
    model_.batchEncGoBt.setEnabled(false);
    model_.mainEncProgressCaptionStr.setStringValue(QString());
    model_.mainEncProgressPercentStr.setStringValue(QString());
    model_.encStopBt.setHidden(true);
    model_.analyseStopBt.setHidden(true);
    model_.analyseCaptionStr.setStringValue(QString());
}

void appDelegate::restorePreferences()
{
    prefSynchronize();
    removeLeftOverIntermediate();
    for (const QString& key : prefAllKeys()) {
        if (!isKeptAtStart(key)) {
            prefDelete(key);
        }
    }
    const QString format = prefRead(pref::prefCheckMatrix);
    model_.prefCheckMatrix.setSelectedSegment(defaultOutputFormat);
    if (!format.isEmpty()) {
        model_.prefCheckMatrix.setSelectedSegment(leadingInteger(format));
    }
    prefCheckCaptions();
    model_.prefColor.setSelectedSegment(0);
    model_.prefColor.setSelectedSegment(leadingInteger(prefRead(pref::prefColor)));
    model_.prefColorImgView.setImageName(model_.prefColor.imageName(model_.prefColor.selectedSegment()));
    const QString folder = prefRead(pref::prefDefautDstPathStr);
    if (isFolder(stringByExpandingTildeInPath(folder))) {
        model_.prefDefautDstPathStr.setStringValue(folder);
        model_.mainEncDstPathStr.setStringValue(folder);
    }
    prefSynchronize();
}

// A run that was killed in its second pass has left the first pass's movie under its master name.
void appDelegate::removeLeftOverIntermediate()
{
    const QString destination = prefReadChildDico(pref::processEncDico, record::dstPathStr);
    const QString intermediate = prefReadChildDico(pref::processEncDico, record::purgePathStr1);
    if (!intermediate.isEmpty() && intermediate == intermediateName(destination)) {
        removeIntermediate(destination);
    }
}

void appDelegate::applicationDidFinishLaunching()
{
    model_.menuDebug.setTitle(alertText("Menu_Debug1"));
    model_.menuDebug.setState(getDEBUG());
}

} // namespace tavrix
