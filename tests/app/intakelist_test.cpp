// SPDX-License-Identifier: GPL-3.0-or-later
#include "probe/intakelist.h"

#include "controllertest.h"
#include "probe/batchtexts.h"
#include "support/ordinaryuser.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace tavrix;
using namespace tavrix::test;

namespace
{

class SkippedSources : public ControllerTest
{
protected:
    SkippedSources()
    {
        QObject::connect(controller.get(), &appDelegate::intakeBegan, controller.get(),
                         [this] { told << QStringLiteral("began"); });
        QObject::connect(controller.get(), &appDelegate::sourcesQueued, controller.get(),
                         [this](int count) { told << QStringLiteral("queued %1").arg(count); });
        QObject::connect(controller.get(), &appDelegate::sourceRejected, controller.get(),
                         [this](const QString& path, const QString& reason) { told << path + u' ' + reason; });
        QObject::connect(controller.get(), &appDelegate::nothingToAnalyse, controller.get(),
                         [this] { told << QStringLiteral("nothing"); });
    }

    QString sources() const { return folder.path(QStringLiteral("sources")); }
    QString toldOf(const QString& path, const char* reason) const { return path + u' ' + batchText(reason); }

    QStringList told;
};

QStringList pathsOf(const QList<SkippedSource>& skipped)
{
    QStringList paths;
    for (const SkippedSource& source : skipped) {
        paths << source.path;
    }
    return paths;
}

} // namespace

TEST_F(SkippedSources, FifoLinkToNothingAndUnspeakableNameInAFolderAreTold)
{
    const QString good = clip(QStringLiteral("a.mts"));
    const QString fifo = folder.path(QStringLiteral("sources/fifo.mts"));
    ASSERT_EQ(::mkfifo(qPrintable(fifo), 0600), 0);
    const QString link = folder.path(QStringLiteral("sources/link.mov"));
    ASSERT_EQ(::symlink("/nowhere/at/all.mov", qPrintable(link)), 0);
    const QByteArray unspeakable = sources().toUtf8() + "/caf\xE9.mov";
    const int made = ::open(unspeakable.constData(), O_CREAT | O_WRONLY | O_CLOEXEC, 0600);
    ASSERT_GE(made, 0);
    ::close(made);
    folder.makeFile(QStringLiteral("sources/notes.txt"), "n");

    const IntakeList list = intakeList({sources()});
    EXPECT_TEXTS(list.accepted, QStringList(good));
    ASSERT_EQ(list.skipped.size(), 3);
    EXPECT_TRUE(list.skipped.at(0).path.startsWith(sources() + QStringLiteral("/caf")));
    EXPECT_TEXT(list.skipped.at(0).reason, batchText("Clip_unspeakable"));
    EXPECT_TEXT(list.skipped.at(1).path, fifo);
    EXPECT_TEXT(list.skipped.at(1).reason, batchText("Clip_noFile"));
    EXPECT_TEXT(list.skipped.at(2).path, link);
    EXPECT_TEXT(list.skipped.at(2).reason, batchText("Clip_notFound"));
}

TEST_F(SkippedSources, LinksToFoldersAreToldUnlessTheirFolderIsListedAnyway)
{
    const QString good = clip(QStringLiteral("card/a.mts"));
    const QString elsewhere = folder.makeFile(QStringLiteral("elsewhere/b.mts"), "b");
    const QString out = folder.path(QStringLiteral("sources/out"));
    ASSERT_EQ(::symlink(qPrintable(folder.path(QStringLiteral("elsewhere"))), qPrintable(out)), 0);
    ASSERT_EQ(::symlink("card", qPrintable(folder.path(QStringLiteral("sources/in")))), 0);
    const IntakeList list = intakeList({sources()});
    EXPECT_TEXTS(list.accepted, QStringList(good));
    EXPECT_TEXTS(pathsOf(list.skipped), QStringList(out));
    EXPECT_TEXT(list.skipped.at(0).reason, batchText("Clip_linkedFolder"));
    EXPECT_TRUE(intakeList({sources(), folder.path(QStringLiteral("elsewhere"))}).skipped.isEmpty());
}

TEST_F(SkippedSources, OneClipReachedTwiceIsOneRow)
{
    const QString good = clip(QStringLiteral("card/a.mts"));
    const QString link = folder.path(QStringLiteral("link"));
    ASSERT_EQ(::symlink(qPrintable(folder.path(QStringLiteral("sources/card"))), qPrintable(link)), 0);
    ASSERT_EQ(::symlink("a.mts", qPrintable(folder.path(QStringLiteral("sources/card/z.mts")))), 0);
    const QString through = link + QStringLiteral("/a.mts");
    addRows({sources(), through, good});
    EXPECT_EQ(rows().count(), 1);
    addRows({through});
    EXPECT_EQ(rows().count(), 1);
}

TEST_F(SkippedSources, WhatLiesTooDeepIsTold)
{
    // The folder is made step by step: no single path to its bottom is short enough.
    clip(QStringLiteral("a.mts"));
    int at = ::open(qPrintable(sources()), O_PATH | O_DIRECTORY | O_CLOEXEC);
    const std::string name(200, 'd');
    for (int depth = 0; depth < 25; ++depth) {
        ASSERT_EQ(::mkdirat(at, name.c_str(), 0700), 0);
        const int next = ::openat(at, name.c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC);
        ::close(at);
        at = next;
    }
    ::close(at);
    const IntakeList list = intakeList({sources()});
    EXPECT_EQ(list.accepted.size(), 1);
    ASSERT_EQ(list.skipped.size(), 1);
    EXPECT_TEXT(list.skipped.at(0).reason, batchText("Clip_tooDeep"));
}

TEST_F(SkippedSources, WhatMayNotBeReadIsTold)
{
    const OrdinaryUser user;
    if (!user.isBound()) {
        GTEST_SKIP() << "this superuser may not lay down its privileges";
    }
    const QString closedFile = clip(QStringLiteral("a.mts"));
    const QString good = clip(QStringLiteral("b.mts"));
    clip(QStringLiteral("closed/c.mts"));
    const QString closedFolder = folder.path(QStringLiteral("sources/closed"));
    ASSERT_EQ(::chmod(qPrintable(closedFile), 0), 0);
    ASSERT_EQ(::chmod(qPrintable(closedFolder), 0), 0);
    const IntakeList list = intakeList({sources()});
    ASSERT_EQ(::chmod(qPrintable(closedFolder), 0700), 0);
    EXPECT_TEXTS(list.accepted, QStringList(good));
    EXPECT_TEXTS(pathsOf(list.skipped), QStringList({closedFile, closedFolder}));
    EXPECT_TEXT(list.skipped.at(0).reason, batchText("Clip_closedFile"));
    EXPECT_TEXT(list.skipped.at(1).reason, batchText("Clip_closedFolder"));
}

TEST_F(SkippedSources, AreTheFilesOfAnotherTypeThatAreGivenByThemselves)
{
    const QString text = folder.makeFile(QStringLiteral("sources/notes.txt"), "n");
    const IntakeList list = intakeList({text, sources()});
    EXPECT_TRUE(list.accepted.isEmpty());
    EXPECT_TEXTS(pathsOf(list.skipped), QStringList(text));
    EXPECT_TEXT(list.skipped.at(0).reason, QStringLiteral("not a camera clip (.txt)"));
}

TEST_F(SkippedSources, AreToldAfterTheQueueAndBeforeItsAnalysis)
{
    const QString good = clip(QStringLiteral("a.mts"));
    const QString text = folder.makeFile(QStringLiteral("sources/notes.txt"), "n");
    addRows({text, good});
    EXPECT_TEXTS(told, QStringList({QStringLiteral("began"), QStringLiteral("queued 1"),
                                    text + QStringLiteral(" not a camera clip (.txt)")}));
    EXPECT_EQ(rows().count(), 1);
    expectIdle();
}

TEST_F(SkippedSources, AreToldWhenNothingElseWasDropped)
{
    const QString text = folder.makeFile(QStringLiteral("sources/notes.txt"), "n");
    addRows({text});
    EXPECT_TEXTS(told, QStringList({QStringLiteral("began"), text + QStringLiteral(" not a camera clip (.txt)"),
                                    QStringLiteral("nothing")}));
    expectIdle();
}
