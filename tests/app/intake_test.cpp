// SPDX-License-Identifier: GPL-3.0-or-later
#include "controllertest.h"

#include "base/dialogue/runloopgate.h"
#include "base/store/preferences.h"
#include "base/store/settings.h"

#include <sys/stat.h>
#include <unistd.h>

using namespace tavrix;
using namespace tavrix::test;

namespace
{

class Intake : public ControllerTest
{
protected:
    Intake()
    {
        QObject::connect(controller.get(), &appDelegate::analysisStarted, controller.get(),
                         [this](const QString& path) { analysed << path; });
    }

    void drop(const QStringList& paths)
    {
        controller->dragNDropPerformDrag(nullptr, paths);
        ASSERT_TRUE(tools.finishAll());
    }

    // Names of what was analysed, in order.
    QStringList names() const
    {
        QStringList result;
        for (const QString& path : analysed) {
            result << path.mid(path.lastIndexOf(u'/') + 1);
        }
        return result;
    }

    QStringList analysed;
};

QStringList list(std::initializer_list<const char*> words)
{
    QStringList result;
    for (const char* word : words) {
        result << QString::fromUtf8(word);
    }
    return result;
}

struct ExtensionRow {
    const char* name;
    const char* file;
    bool accepted;
};

class Extension : public ControllerTest, public testing::WithParamInterface<ExtensionRow>
{
};

const ExtensionRow extensionRows[] = {
    {"Declared", "a.mts", true},        {"UpperCase", "a.MTS", true},     {"Capitalised", "a.Mts", true},
    {"MixedCase", "a.mTs", false},      {"LastTwo", "a.mtS", false},      {"WithDigit", "a.M2ts", true},
    {"WithDigitUpper", "a.M2TS", true}, {"Text", "a.txt", false},         {"None", "mts", false},
    {"EndsWithADot", "a.", false},      {"OnlyLast", "a.mts.bak", false}, {"TwoDots", "a.b.mov", true},
    {"HiddenName", ".mts", false},      {"AppleDouble", "._a.mts", true}, {"Blank", "a b.avi", true},
};

} // namespace

TEST_P(Extension, DecidesWhatIsQueued)
{
    addRows({clip(QString::fromUtf8(GetParam().file))});
    EXPECT_EQ(rows().count(), GetParam().accepted ? 1 : 0);
    expectIdle();
}

INSTANTIATE_TEST_SUITE_P(Intake, Extension, testing::ValuesIn(extensionRows), rowName<ExtensionRow>);

TEST_F(Intake, FolderIsExpandedInTheOrderOfItsListing)
{
    for (const char* name : {"b.mov", "a.MTS", "notes.txt", "deep/er/c.avi"}) {
        clip(QString::fromUtf8(name));
    }
    drop({folder.path(QStringLiteral("sources"))});
    EXPECT_TEXTS(names(), list({"a.MTS", "b.mov", "c.avi"}));
    expectIdle();
}

TEST_F(Intake, FolderWithTheNameOfAClipIsNoClip)
{
    folder.makeFolder(QStringLiteral("sources/x.mov"));
    clip(QStringLiteral("x.mov/in.mov"));
    drop({folder.path(QStringLiteral("sources"))});
    EXPECT_TEXTS(names(), list({"in.mov"}));
}

TEST_F(Intake, SpecialFilesAreNotQueued)
{
    clip(QStringLiteral("a.mts"));
    const QString fifo = folder.path(QStringLiteral("sources/fifo.mts"));
    ASSERT_EQ(::mkfifo(qPrintable(fifo), 0600), 0);
    drop({folder.path(QStringLiteral("sources")), fifo});
    EXPECT_TEXTS(names(), list({"a.mts"}));
}

TEST_F(Intake, VanishedFilesAreDropped)
{
    drop({folder.path(QStringLiteral("none.mts"))});
    EXPECT_TRUE(analysed.isEmpty());
    EXPECT_TRUE(log.contains(QStringLiteral("no compatible file (or no new files ;-))")));
    EXPECT_TRUE(face.events.isEmpty());
    expectIdle();
}

TEST_F(Intake, EmptyListRestoresTheDropArea)
{
    drop({});
    expectIdle();
}

TEST_F(Intake, LinkIsReplacedByItsTargetAndIsADuplicateOfIt)
{
    const QString target = clip(QStringLiteral("a.mts"));
    const QString link = folder.path(QStringLiteral("link.mts"));
    ASSERT_EQ(::symlink(qPrintable(target), qPrintable(link)), 0);
    drop({link, target});
    EXPECT_TEXTS(analysed, QStringList(target));
    ASSERT_EQ(rows().count(), 1);
    EXPECT_TEXT(sourceOf(0), target);
}

TEST_F(Intake, LinkToAFolderIsExpandedLikeTheFolder)
{
    clip(QStringLiteral("a.mts"));
    const QString link = folder.path(QStringLiteral("link"));
    ASSERT_EQ(::symlink(qPrintable(folder.path(QStringLiteral("sources"))), qPrintable(link)), 0);
    drop({link});
    EXPECT_TEXTS(names(), list({"a.mts"}));
}

TEST_F(Intake, LinkToAFolderGivesNoSecondRowsBesideTheFolder)
{
    const QString source = clip(QStringLiteral("a.mts"));
    const QString sources = folder.path(QStringLiteral("sources"));
    const QString link = folder.path(QStringLiteral("link"));
    ASSERT_EQ(::symlink(qPrintable(sources), qPrintable(link)), 0);
    drop({link, sources});
    ASSERT_EQ(rows().count(), 1);
    EXPECT_TEXT(sourceOf(0), source);
}

TEST_F(Intake, SecondDropOfAFileAddsNoRow)
{
    const QString source = clip(QStringLiteral("a.mts"));
    drop({source});
    drop({source});
    EXPECT_EQ(rows().count(), 1);
    EXPECT_EQ(analysed.size(), 1);
    EXPECT_TRUE(log.contains(QStringLiteral("doublon : pas de sur-analyse pour rien ;-) #1/1 : ") + source));
    expectIdle();
}

TEST_F(Intake, RepeatsInsideOneDropAreAnalysedOnce)
{
    const QString source = clip(QStringLiteral("a.mts"));
    drop({source, folder.path(QStringLiteral("sources")), source});
    EXPECT_EQ(rows().count(), 1);
    EXPECT_EQ(analysed.size(), 1);
    EXPECT_TRUE(log.contains(QStringLiteral("doublon : pas de sur-analyse pour rien ;-) #2/3 : ") + source));
    EXPECT_TRUE(log.contains(QStringLiteral("doublon : pas de sur-analyse pour rien ;-) #3/3 : ") + source));
}

TEST_F(Intake, DropDuringAnAnalysisIsRefused)
{
    controller->draggedFiles({clip(QStringLiteral("a.mts")), clip(QStringLiteral("b.mts"))});
    EXPECT_EQ(getOPENPERM(), 0);
    EXPECT_FALSE(model().dragndropActionStr.isHidden());
    EXPECT_TEXT(model().analyseCaptionStr.stringValue(), QStringLiteral("1/2"));
    int refused = 0;
    QObject::connect(controller.get(), &appDelegate::intakeRefused, controller.get(), [&refused] { ++refused; });
    controller->draggedFiles({clip(QStringLiteral("c.mts"))});
    EXPECT_EQ(refused, 1);
    EXPECT_TEXT(model().dragndropImgView.imageName(), QStringLiteral("dndOff"));
    EXPECT_TRUE(model().dragndropCaptionStr.isHidden());
    EXPECT_TRUE(model().dragndropActionStr.isHidden());
    EXPECT_TRUE(model().analyseWheelProgInd.isAnimating());
    ASSERT_TRUE(tools.finishAll());
    EXPECT_TEXTS(names(), list({"a.mts", "b.mts"}));
    expectIdle();
}

TEST_F(Intake, WhatIsOpenedAtTheEndReachesNoControllerThatHasGone)
{
    const QStringList sources = {clip(QStringLiteral("a.mts"))};
    controller->applicationOpenFiles(sources);
    RunLoopGate::instance().close();
    controller->dragNDropPerformDrag(nullptr, sources);
    controller.reset();
    RunLoopGate::instance().open();
    settle();
    EXPECT_FALSE(RunLoopGate::instance().isClosed());
    EXPECT_TRUE(tools.launches.isEmpty());
}

TEST_F(Intake, OpenRequestReturnsBeforeItIsServed)
{
    controller->applicationOpenFiles({clip(QStringLiteral("a.mts"))});
    EXPECT_TRUE(tools.launches.isEmpty());
    ASSERT_TRUE(tools.finishAll());
    EXPECT_EQ(rows().count(), 1);
}

TEST_F(Intake, DropUnderAnAlertWaitsForItsEnd)
{
    const QString source = clip(QStringLiteral("a.mts"));
    face.whileOpen = [&](const AlertRequest&) {
        controller->dragNDropPerformDrag(nullptr, {source});
        controller->applicationOpenFiles({source});
        settleUnderAnAlert();
        EXPECT_TRUE(tools.launches.isEmpty());
    };
    displayAlert(QStringLiteral("open"), QString(), 0, nullptr);
    EXPECT_TRUE(tools.launches.isEmpty());
    ASSERT_TRUE(tools.finishAll());
    EXPECT_EQ(rows().count(), 1);
    expectIdle();
}

TEST_F(Intake, QueueIsKeptUnderNumbersFromZero)
{
    controller->draggedFiles(makeClips(3));
    const QVariantMap queue = prefReadDico(pref::analysisSrcPathesDico).value_or(QVariantMap());
    EXPECT_TEXTS(QStringList(queue.keys()), list({"0", "1"}));
    EXPECT_TRUE(prefRead(pref::analysisSrcPathStr).endsWith(QLatin1String("clip01.mts")));
    ASSERT_TRUE(tools.finishAll());
}

TEST_F(Intake, ElevenSourcesAreAnalysedInTheirOrder)
{
    const QStringList sources = makeClips(11);
    drop(sources);
    EXPECT_TEXTS(analysed, sources);
}

TEST_F(Intake, DropAfterTheQuitDoesNothing)
{
    controller->quitWithoutQuestion();
    controller->draggedFiles({clip(QStringLiteral("a.mts"))});
    EXPECT_TRUE(tools.launches.isEmpty());
}
