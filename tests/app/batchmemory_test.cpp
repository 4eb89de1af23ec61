// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/batchmemory.h"

#include "app/stepflags.h"
#include "base/store/preferences.h"
#include "controllertest.h"
#include "support/waituntil.h"

#include <QFile>

using namespace tavrix;
using namespace tavrix::test;

namespace
{

// The list of a run that is killed: the controller goes without a quit, the preferences stay.
class BatchMemoryTest : public ControllerTest
{
protected:
    BatchMemoryTest()
    {
        face.offers = true;
        makeController();
    }
    ~BatchMemoryTest() override { prefDelete(pref::batchMemory); }

    void killAndStart()
    {
        settle();
        controller.reset();
        tools.launches.clear();
        makeController();
        controller->applicationDidFinishLaunching();
        settle();
    }
    [[nodiscard]] QStringList sources()
    {
        QStringList all;
        for (int i = 0; i < rows().count(); ++i) {
            all << sourceOf(i);
        }
        return all;
    }
    [[nodiscard]] QString question() const { return face.alerts.isEmpty() ? QString() : face.alerts.last().text; }
};

TEST_F(BatchMemoryTest, OfAKilledRunComesBackWhenThatIsWished)
{
    const QStringList clips = makeClips(12);
    addRows(clips);
    rows().setOut(2, 5);
    face.answer(0);
    killAndStart();
    EXPECT_TEXT(question(),
                QStringLiteral("12 clips were in the list and not converted yet, the first is “clip01.mts”. "
                               "Bring them back?"));
    ASSERT_TRUE(tools.finishAll());
    EXPECT_TEXTS(sources(), clips);
    ASSERT_EQ(rows().count(), 12);
    EXPECT_EQ(rows().row(1).out, 3);
    EXPECT_EQ(rows().row(2).out, 5) << "with the format that was chosen for it";
    expectIdle();
}

TEST_F(BatchMemoryTest, IsForgottenWhenThatIsWished)
{
    addRows(makeClips(2));
    face.answer(1);
    killAndStart();
    EXPECT_EQ(face.alerts.size(), 1);
    EXPECT_TRUE(tools.launches.isEmpty());
    killAndStart();
    EXPECT_EQ(face.alerts.size(), 1) << "asked once";
}

TEST_F(BatchMemoryTest, IsGoneAfterAQuit)
{
    addRows(makeClips(2));
    settle();
    controller->iba_menuQuit();
    controller->applicationWillTerminate();
    killAndStart();
    EXPECT_TRUE(face.alerts.isEmpty());
}

// The end of a desktop session, or of the machine, asks nobody.
TEST_F(BatchMemoryTest, OutlivesAnEndThatTheUserHasNotAskedFor)
{
    addRows(makeClips(1));
    controller->quitWithoutQuestion();
    controller->applicationWillTerminate();
    face.answer(1);
    killAndStart();
    EXPECT_TEXT(question(),
                QStringLiteral("1 clip was in the list and not converted yet: “clip01.mts”. Bring it back?"));
}

TEST_F(BatchMemoryTest, LeavesOutWhatIsConverted)
{
    const QStringList clips = makeClips(3);
    addRows(clips);
    rows().setResultat(0, rowIcon::success);
    rows().setResultat(1, rowIcon::failure);
    face.answer(0);
    killAndStart();
    ASSERT_TRUE(tools.finishAll());
    EXPECT_TEXTS(sources(), clips.mid(1));
}

TEST_F(BatchMemoryTest, NamesWhatIsNoLongerThere)
{
    const QStringList clips = makeClips(3);
    addRows(clips);
    settle();
    ASSERT_TRUE(QFile::remove(clips.at(1)));
    face.answer(0);
    killAndStart();
    EXPECT_TRUE(
        question().endsWith(QStringLiteral("\n\n1 other clip of the list is no longer where it was: clip02.mts")))
        << question().toStdString();
    ASSERT_TRUE(tools.finishAll());
    EXPECT_TEXTS(sources(), QStringList({clips.at(0), clips.at(2)}));
}

TEST_F(BatchMemoryTest, OfClipsThatAreAllGoneIsToldAndForgotten)
{
    const QStringList clips = makeClips(1);
    addRows(clips);
    settle();
    ASSERT_TRUE(QFile::remove(clips.first()));
    killAndStart();
    ASSERT_EQ(face.alerts.size(), 1);
    EXPECT_EQ(face.alerts.first().buttons.size(), 1);
    killAndStart();
    EXPECT_EQ(face.alerts.size(), 1);
}

// A kill in the middle of the reading: some are rows, some are in the queue.
TEST_F(BatchMemoryTest, JoinsTheListAndTheQueue)
{
    const QStringList clips = makeClips(4);
    addRows(clips.first(2));
    prefWrite(pref::analysisSrcPathStr, clips.at(2));
    prefWriteDico(pref::analysisSrcPathesDico, QVariantMap({{QStringLiteral("0"), clips.at(3)}}));
    face.answer(0);
    killAndStart();
    EXPECT_TRUE(question().startsWith(QStringLiteral("4 clips were"))) << question().toStdString();
    ASSERT_TRUE(tools.finishAll());
    EXPECT_TEXTS(sources(), clips);
    expectIdle();
}

TEST_F(BatchMemoryTest, BringsTheDestinationBackWhereThereIsNone)
{
    addRows(makeClips(1));
    model().mainEncDstPathStr.setStringValue(destination);
    rows().setOut(0, 1);
    face.answer(0);
    settle();
    controller.reset();
    tools.launches.clear();
    makeController();
    model().mainEncDstPathStr.setStringValue(QString());
    controller->applicationDidFinishLaunching();
    settle();
    EXPECT_TEXT(model().mainEncDstPathStr.stringValue(), destination);
}

// A second kill before the answer, or while the clips are read again, loses none.
TEST_F(BatchMemoryTest, OutlivesASecondKill)
{
    const QStringList clips = makeClips(3);
    addRows(clips);
    settle();
    controller.reset();
    tools.launches.clear();
    makeController();
    controller->applicationDidFinishLaunching();
    face.answer(0);
    killAndStart();
    EXPECT_TRUE(question().startsWith(QStringLiteral("3 clips were"))) << question().toStdString();
    face.answer(0);
    killAndStart();
    EXPECT_TRUE(question().startsWith(QStringLiteral("3 clips were"))) << question().toStdString();
}

TEST_F(BatchMemoryTest, IsNotKeptByAFaceThatAsksNothing)
{
    face.offers = false;
    makeController();
    addRows(makeClips(2));
    settle();
    EXPECT_FALSE(prefReadDico(pref::batchMemory));
}

} // namespace
