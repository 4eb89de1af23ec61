// SPDX-License-Identifier: GPL-3.0-or-later
#include "controllertest.h"

#include "app/instancelock.h"
#include "app/logs.h"
#include "app/oldtools.h"
#include "app/outputguard.h"
#include "base/bundle/bundle.h"
#include "base/store/preferences.h"
#include "base/store/settings.h"
#include "base/text/listconversions.h"
#include "support/waituntil.h"
#include "sys/publication.h"
#include "testresources.h"

#include <QDir>
#include <QFile>
#include <QProcess>

#include <sys/stat.h>
#include <unistd.h>

using namespace tavrix;
using namespace tavrix::test;

namespace
{

// Goes through the real start; the checks that look at other processes only where a test asks for them.
class StartUp : public ControllerTest
{
protected:
    StartUp() : place(QDir::currentPath()) {}
    ~StartUp() override
    {
        controller.reset();
        QDir::setCurrent(place);
    }

    [[nodiscard]] bool start(bool withChecks = false)
    {
        setDEBUGDEVForTests(withChecks ? 0 : 1);
        const bool ready = controller->awakeFromNib();
        setDEBUGDEVForTests(0);
        return ready;
    }

    const QString place;
};

} // namespace

TEST_F(StartUp, MakesEverythingReady)
{
    setOPENPERM(0);
    ASSERT_TRUE(start());
    controller->applicationDidFinishLaunching();
    expectIdle();
    EXPECT_TEXT(model().versionStr.stringValue(), QStringLiteral("1.0"));
    EXPECT_EQ(face.count(QStringLiteral("localise")), 1);
    EXPECT_TEXT(model().menuDebug.title(), QStringLiteral("Detailed diagnostics: off"));
    EXPECT_EQ(model().menuDebug.state(), 0);
    EXPECT_TRUE(itemExists(logResumePathStr()));
    EXPECT_TEXT(QDir::currentPath(), QStringLiteral("/"));
    EXPECT_EQ(getAIC(), 1);
    EXPECT_EQ(getPRORES(), 1);
}

TEST_F(StartUp, TemporaryFolderIsMadeAnew)
{
    const QString expected = systemTemporaryFolder() + QStringLiteral("Tavrix/");
    ASSERT_TRUE(QDir().mkpath(expected + QStringLiteral("old")));
    ASSERT_TRUE(writeBytes(expected + QStringLiteral("old/frame.yuv"), "x"));
    const QString precious = folder.makeFile(QStringLiteral("precious/file"), "kept");
    ASSERT_TRUE(QFile::link(folder.path(QStringLiteral("precious")), expected + QStringLiteral("link")));
    ASSERT_TRUE(start());
    EXPECT_TEXT(getTMPFOLDER(), expected);
    EXPECT_TRUE(QDir(expected).isEmpty());
    EXPECT_TRUE(itemExists(precious));
    struct stat info = {};
    ASSERT_EQ(::stat(qPrintable(expected), &info), 0);
    EXPECT_EQ(info.st_mode & 0777U, 0700U);
}

TEST_F(StartUp, FlagsLeftByACrashAreCleanedAndNothingResumes)
{
    const QStringList sources = makeClips(2);
    prefWriteDico(pref::processEncDico, QVariantMap({{record::dstPathStr, QStringLiteral("/x")}}));
    for (const QString& key : {pref::encDeb, pref::encQtEnc, pref::encFin, pref::analysisDeb, pref::analysisFfmpeg,
                               pref::analysisFfmpegParse, pref::analysisFin, pref::analysisIStr, pref::imgPathStr,
                               pref::encCurrentProcessingFile, pref::replaceFilesCheck}) {
        prefWrite(key, 1);
    }
    prefWrite(pref::analysisSrcPathStr, sources.at(0));
    prefWriteDico(pref::analysisSrcPathesDico, QVariantMap({{QStringLiteral("0"), sources.at(1)}}));
    prefWrite(pref::prefCheckMatrix, 1);
    prefWrite(pref::prefColor, 2);
    prefWrite(pref::prefDefautDstPathStr, destination);
    prefWrite(QStringLiteral("NSNavLastRootDirectory"), QStringLiteral("~/Movies"));
    ASSERT_TRUE(prefSynchronize());
    prefReload();
    ASSERT_TRUE(start());
    QStringList keys = prefAllKeys();
    keys.sort();
    EXPECT_TEXTS(keys, QStringList({QStringLiteral("NSNavLastRootDirectory"), pref::analysisSrcPathStr,
                                    pref::analysisSrcPathesDico, pref::prefCheckMatrix, pref::prefColor,
                                    pref::prefDefautDstPathStr}));
    prefReload();
    EXPECT_EQ(prefAllKeys().size(), 6);
    settle();
    EXPECT_TRUE(tools.launches.isEmpty());

    // It is not read unasked.
    const QString fresh = clip(QStringLiteral("new.mts"));
    addRows({fresh});
    ASSERT_EQ(rows().count(), 1);
    EXPECT_TEXT(sourceOf(0), fresh);
}

TEST_F(StartUp, IntermediateOfARunKilledBetweenItsPassesIsRemoved)
{
    const QString output = folder.path(QStringLiteral("Movies/Tavrix events/clip-2026-01-02 03;04;05-00001.mov"));
    const QString master = oldSrcPathStr2DstPathStr(output);
    const auto leave = [&](const QString& purge, const QString& noted) {
        ASSERT_TRUE(QDir().mkpath(folder.path(QStringLiteral("Movies/Tavrix events"))));
        ASSERT_TRUE(writeBytes(master, "first pass"));
        const auto status = linkStatus(qPrintable(noted));
        ASSERT_TRUE(status);
        const QString own = QString::fromStdString(publication::replacesText(identityOf(*status)));
        prefWriteDico(pref::processEncDico,
                      QVariantMap({{record::dstPathStr, output}, {record::purgePathStr1, purge}, {ownFile, own}}));
        ASSERT_TRUE(prefSynchronize());
        prefReload();
        ASSERT_TRUE(start());
    };
    leave(folder.path(QStringLiteral("another.mov")), master);
    EXPECT_TRUE(itemExists(master)) << "only what the run has noted is its own";
    leave(master, folder.makeFile(QStringLiteral("another.mov")));
    EXPECT_TRUE(itemExists(master)) << "a stranger's file of that name";
    leave(master, master);
    EXPECT_FALSE(itemExists(master));
}

// After the disk was plugged in anew, its file systems without lasting numbers give the movie another one.
TEST_F(StartUp, IntermediateUnderAnotherNumberIsKnownByItsSizeAndTime)
{
    const QString output = folder.path(QStringLiteral("Movies/Tavrix events/clip-2026-01-02 03;04;05-00001.mov"));
    const QString master = oldSrcPathStr2DstPathStr(output);
    for (const bool same : {false, true}) {
        ASSERT_TRUE(QDir().mkpath(folder.path(QStringLiteral("Movies/Tavrix events"))));
        ASSERT_TRUE(writeBytes(master, "first pass"));
        const auto status = linkStatus(qPrintable(master));
        ASSERT_TRUE(status);
        FileIdentity noted = identityOf(*status);
        noted.device += 1;
        noted.inode += 1;
        noted.size += same ? 0 : 1;
        prefWriteDico(pref::processEncDico,
                      QVariantMap({{record::dstPathStr, output},
                                   {record::purgePathStr1, master},
                                   {ownFile, QString::fromStdString(publication::replacesText(noted))}}));
        ASSERT_TRUE(prefSynchronize());
        prefReload();
        ASSERT_TRUE(start());
        EXPECT_EQ(itemExists(master), !same);
    }
}

TEST_F(StartUp, SettingsAreRestored)
{
    prefWrite(pref::prefCheckMatrix, 0);
    prefWrite(pref::prefColor, 3);
    prefWrite(pref::prefDefautDstPathStr, destination);
    model().mainEncDstPathStr.setStringValue(QString());
    ASSERT_TRUE(start());
    EXPECT_EQ(model().prefCheckMatrix.selectedSegment(), 0);
    EXPECT_TRUE(model().prefCheckCaption.stringValue().startsWith(QLatin1String("MPEG-4 for small screens")));
    EXPECT_EQ(model().prefColor.selectedSegment(), 3);
    EXPECT_TEXT(model().prefColorImgView.imageName(), QStringLiteral("color3"));
    EXPECT_TEXT(model().prefDefautDstPathStr.stringValue(), destination);
    EXPECT_TEXT(model().mainEncDstPathStr.stringValue(), destination);
}

TEST_F(StartUp, DefaultFolderMayBeTypedWithATilde)
{
    prefWrite(pref::prefDefautDstPathStr, QStringLiteral("~"));
    ASSERT_TRUE(start());
    EXPECT_TEXT(model().mainEncDstPathStr.stringValue(), QStringLiteral("~"));
}

TEST_F(StartUp, DefaultsOfTheSettings)
{
    model().mainEncDstPathStr.setStringValue(QString());
    prefWrite(pref::prefDefautDstPathStr, folder.path(QStringLiteral("gone")));
    ASSERT_TRUE(start());
    EXPECT_EQ(model().prefCheckMatrix.selectedSegment(), 3);
    EXPECT_EQ(model().prefColor.selectedSegment(), 0);
    EXPECT_TRUE(model().mainEncDstPathStr.stringValue().isEmpty());
    EXPECT_TEXT(prefRead(pref::prefDefautDstPathStr), folder.path(QStringLiteral("gone")));
}

TEST_F(StartUp, SettingsOutOfRangeGiveTheDefaults)
{
    prefWrite(pref::prefCheckMatrix, 99);
    prefWrite(pref::prefColor, QStringLiteral("-7"));
    ASSERT_TRUE(start());
    EXPECT_EQ(model().prefCheckMatrix.selectedSegment(), 3);
    EXPECT_EQ(model().prefColor.selectedSegment(), 0);
}

TEST_F(StartUp, SecondCopyIsRefusedAndTheFirstIsUntouched)
{
    const TestResources resources;
    ASSERT_TRUE(start(true));
    logResume(QStringLiteral("first"));
    const QString temporary = getTMPFOLDER();
    ASSERT_TRUE(writeBytes(temporary + QStringLiteral("kept"), "x"));
    addRows(makeClips(1));
    prefWrite(pref::encDeb, 1);
    face.events.clear();

    appDelegate second(&face);
    EXPECT_FALSE(second.awakeFromNib());
    EXPECT_TEXTS(face.events, QStringList(alertEvent("D_appAlreadyOpened_1")));
    EXPECT_TRUE(log.contains(QStringLiteral("TVX's number of copy :-( 2")));
    EXPECT_TRUE(itemExists(temporary + QStringLiteral("kept")));
    EXPECT_TRUE(resumeLog().endsWith(QLatin1String("first")));
    EXPECT_TEXT(prefRead(pref::encDeb), QStringLiteral("1"));
    EXPECT_EQ(rows().count(), 1);
}

TEST_F(StartUp, CopyStartsAgainAfterTheFirstHasEnded)
{
    const TestResources resources;
    ASSERT_TRUE(start(true));
    makeController();
    EXPECT_TRUE(start(true));
}

TEST_F(StartUp, InstallPathWithABackslashIsRefusedBeforeAnyToolRuns)
{
    const TestResources resources(QStringLiteral("back\\slash"));
    const QString proof = folder.path(QStringLiteral("ran"));
    resources.makeTool(QStringLiteral("ffmpeg"), "touch '" + proof.toUtf8() + "'\n");
    prefWrite(pref::encDeb, 1);
    EXPECT_FALSE(start(true));
    EXPECT_TEXTS(face.events, QStringList(alertEvent("D_TXpref_ouvert_2")));
    EXPECT_TRUE(log.contains(QStringLiteral("TVX's path contains character '\\' :-( ") + resources.root()));
    EXPECT_FALSE(itemExists(proof));
    EXPECT_TEXT(prefRead(pref::encDeb), QStringLiteral("1"));
}

TEST_F(StartUp, ToolsOfAnEarlierRunAreKilled)
{
    const TestResources resources;
    const QString tool = resources.root() + QStringLiteral("/tools/ffmpeg");
    ASSERT_TRUE(QFile::copy(QStringLiteral("/usr/bin/sleep"), tool));
    ASSERT_TRUE(QFile::setPermissions(tool, QFileDevice::ReadOwner | QFileDevice::ExeOwner));
    QProcess ended;
    ended.start(QStringLiteral("/usr/bin/true"), {});
    const qint64 earlierRun = ended.processId();
    ASSERT_TRUE(ended.waitForFinished());
    QProcess process;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QString::fromLatin1(ownerVariable), QString::number(earlierRun));
    process.setProcessEnvironment(environment);
    process.start(tool, {QStringLiteral("1000")});
    ASSERT_TRUE(process.waitForStarted());
    const qint64 pid = process.processId();
    ASSERT_TRUE(start(true));
    ASSERT_TRUE(process.waitForFinished());
    EXPECT_EQ(process.exitStatus(), QProcess::CrashExit);
    EXPECT_TRUE(
        log.contains(QStringLiteral("vieux process       :-/ ") + QString::number(pid) + QStringLiteral(" - ffmpeg")));
}

TEST_F(StartUp, LogsOfTheRunBeforeAreKept)
{
    ASSERT_TRUE(start());
    logResume(QStringLiteral("\nfirst run"));
    makeController();
    ASSERT_TRUE(start());
    EXPECT_FALSE(resumeLog().contains(QStringLiteral("first run")));
    EXPECT_TRUE(readBytes(logsFolder() + QStringLiteral("/Previous-Resume.log"))->endsWith("first run"));
}

TEST_F(StartUp, CleanedPreferencesReachTheFile)
{
    prefWrite(pref::encDeb, 1);
    prefSynchronize();
    ASSERT_TRUE(start());
    EXPECT_FALSE(readBytes(preferencesPath()).value_or(QByteArray()).contains("encDeb"));
}
