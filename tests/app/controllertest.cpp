// SPDX-License-Identifier: GPL-3.0-or-later
#include "controllertest.h"

#include "app/logs.h"
#include "base/bundle/bundle.h"
#include "base/dialogue/localisation.h"
#include "base/dialogue/runloopgate.h"
#include "base/files/fileinfo.h"
#include "base/store/preferences.h"
#include "base/store/settings.h"
#include "base/text/format.h"
#include "encode/encoderarguments.h"
#include "probe/recordersources.h"
#include "testpaths.h"

#include <QFile>

#include <fcntl.h>
#include <unistd.h>

namespace tavrix::test
{

QuietErrorStream::QuietErrorStream() : kept_(::fcntl(STDERR_FILENO, F_DUPFD_CLOEXEC, 3))
{
    const int nowhere = ::open("/dev/null", O_WRONLY | O_CLOEXEC);
    if (nowhere >= 0) {
        ::dup2(nowhere, STDERR_FILENO);
        ::close(nowhere);
    }
}

QuietErrorStream::~QuietErrorStream()
{
    ::dup2(kept_, STDERR_FILENO);
    ::close(kept_);
}

void resetProcessState(const QString& temporaryFolder)
{
    // Setting the folder forgets what was read from it.
    if (resourcePath() != QStringLiteral(TAVRIX_BUILD_RESOURCES)) {
        setResourcePath(QStringLiteral(TAVRIX_BUILD_RESOURCES));
    }
    // Choosing a language forgets the texts that were read.
    if (currentLanguage() != QStringLiteral("en")) {
        setLanguage(QStringLiteral("en"));
    }
    for (const QString& key : prefAllKeys()) {
        prefDelete(key);
    }
    setTMPFOLDER(temporaryFolder);
    setOPENPERM(1);
    setDEBUG(0);
    setDEBUGDEVForTests(0);
    setAIC(0);
    setPRORES(0);
    setFreeSpaceForTests(1000000);
}

QString alertEvent(const char* key)
{
    return QStringLiteral("alert:") + localizedString(QLatin1String(key));
}

QString sheetEvent(const char* key)
{
    return QStringLiteral("sheet:") + localizedString(QLatin1String(key));
}

ControllerTest::ControllerTest()
{
    resetProcessState(folder.makeFolder(QStringLiteral("temporary")) + u'/');
    rotateLogs();
    makeController();
}

ControllerTest::~ControllerTest()
{
    controller.reset();
    settle();
    EXPECT_FALSE(RunLoopGate::instance().isClosed());
    setFreeSpaceForTests(-1);
    setDEBUGDEVForTests(0);
    setDEBUG(0);
    setTMPFOLDER(QString());
}

void ControllerTest::makeController()
{
    controller = std::make_unique<appDelegate>(&face);
    controller->setLauncherFactory(tools.factory());
    controller->encGoRazGui();
    model().prefCheckMatrix.setSelectedSegment(3);
    model().mainEncDstPathStr.setStringValue(destination);
}

QString ControllerTest::icons()
{
    QStringList names;
    for (int i = 0; i < rows().count(); ++i) {
        names << rows().row(i).resultat;
    }
    return names.join(u' ');
}

QString ControllerTest::sourceOf(int row)
{
    return rows().row(row).dico.value(record::mainEncSrcPathStr).toString();
}

QString ControllerTest::outputOf(const QString& source)
{
    return events + u'/' + dateCreation2iMovieName(source) + QStringLiteral(".mov");
}

QString ControllerTest::resumeLog()
{
    return QString::fromUtf8(readBytes(logResumePathStr()).value_or(QByteArray()));
}

QString ControllerTest::clip(const QString& name)
{
    return folder.makeFile(QStringLiteral("sources/") + name, "clip");
}

QStringList ControllerTest::makeClips(int count)
{
    QStringList sources;
    for (int i = 1; i <= count; ++i) {
        sources << clip(formatText(QStringLiteral("clip%02d.mts"), {i}));
    }
    return sources;
}

void ControllerTest::appendRow(const QString& source)
{
    BatchRow row;
    row.out = 3;
    row.resultat = rowIcon::pending;
    row.dico = {{record::mainEncSrcPathStr, source}, {record::v0_codec, QStringLiteral("h264")}};
    rows().append(row);
}

quintptr ControllerTest::stackBetweenRows()
{
    quintptr lowest = 0;
    quintptr highest = 0;
    const QMetaObject::Connection watch =
        QObject::connect(controller.get(), &appDelegate::rowFinished, controller.get(), [&] {
            const auto here = reinterpret_cast<quintptr>(__builtin_frame_address(0));
            lowest = lowest == 0 ? here : qMin(lowest, here);
            highest = qMax(highest, here);
        });
    pressStart();
    settle();
    QObject::disconnect(watch);
    return highest - lowest;
}

void ControllerTest::addRows(const QStringList& sources)
{
    controller->draggedFiles(sources);
    ASSERT_TRUE(tools.finishAll());
}

void ControllerTest::pressPause()
{
    model().encStopBt.setSelectedSegment(encStopSegmentPause);
    controller->iba_encStopBt(&model().encStopBt);
}

void ControllerTest::pressStop()
{
    model().encStopBt.setSelectedSegment(encStopSegmentStop);
    controller->iba_encStopBt(&model().encStopBt);
    settle();
}

void ControllerTest::runBatch()
{
    pressStart();
    ASSERT_TRUE(tools.finishAll());
}

void ControllerTest::expectIdle()
{
    EXPECT_EQ(getOPENPERM(), 1);
    EXPECT_TEXT(model().dragndropImgView.imageName(), QStringLiteral("dnd"));
    EXPECT_FALSE(model().dragndropCaptionStr.isHidden());
    EXPECT_TRUE(model().dragndropActionStr.isHidden());
    EXPECT_FALSE(model().analyseWheelProgInd.isAnimating());
    EXPECT_TRUE(model().analyseStopBt.isHidden());
    EXPECT_TEXT(model().analyseCaptionStr.stringValue(), QString());
    EXPECT_TRUE(model().encStopBt.isHidden());
    EXPECT_EQ(model().analysisStopInt.intValue(), 0);
    EXPECT_EQ(model().mainEncProgressInt.intValue(), 0);
    EXPECT_FALSE(controller->isEncoding());
    EXPECT_FALSE(controller->isAnalysing());
    EXPECT_TRUE(tools.running().isEmpty());
    EXPECT_EQ(model().batchEncGoBt.state(), 0);
    EXPECT_EQ(model().batchEncGoBt.isEnabled(), rows().count() > 0);
    EXPECT_FALSE(icons().contains(rowIcon::current));
    for (const QString& key : {pref::analysisDeb, pref::analysisFfmpeg, pref::analysisFfmpegParse, pref::analysisFin,
                               pref::analysisIStr, pref::analysisSrcPathesDico, pref::analysisSrcPathStr, pref::encDeb,
                               pref::encQtEnc, pref::encFin, pref::processEncDico, pref::replaceFilesCheck}) {
        EXPECT_TEXT(prefRead(key), QStringLiteral("")) << key.toStdString();
    }
}

} // namespace tavrix::test
