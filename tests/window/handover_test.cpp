// SPDX-License-Identifier: GPL-3.0-or-later
#include "windowharness.h"

#include "gui/desktop/handover.h"
#include "support/qtprinters.h"

#include <QFile>
#include <QFileInfo>
#include <QLocalSocket>

#include <atomic>
#include <thread>

namespace tavrix::test
{
namespace
{

class SecondStart : public WindowTest
{
protected:
    // In another thread: the running copy answers in this one.
    [[nodiscard]] bool handOver(const QStringList& paths)
    {
        bool taken = false;
        std::atomic<bool> over = false;
        std::thread other([&] {
            taken = Handover::handOver(paths);
            over = true;
        });
        EXPECT_TRUE(waitFor([&over] { return over.load(); }));
        other.join();
        return taken;
    }
};

} // namespace

TEST_F(SecondStart, HandsItsFilesToTheRunningCopy)
{
    startProgram();
    const QString clip = folder_.makeFile(QStringLiteral("later \xC3\xA9.MTS"), "clip");
    window().showMinimized();
    EXPECT_TRUE(handOver({clip}));
    ASSERT_TRUE(waitFor([this] { return controller().isAnalysing(); }));
    EXPECT_TRUE(tools_.finishAll());
    ASSERT_EQ(rows().count(), 1);
    EXPECT_TEXT(rows().row(0).source(), clip);
    EXPECT_FALSE(window().isMinimized());
}

TEST_F(SecondStart, FindsNobodyWhenNoCopyRuns)
{
    EXPECT_FALSE(handOver({QStringLiteral("/a.MTS")}));
    startProgram();
    endProgram();
    EXPECT_FALSE(handOver({QStringLiteral("/a.MTS")}));
}

// What a killed copy leaves behind.
TEST_F(SecondStart, ASocketThatNobodyServesIsNoCopy)
{
    {
        QFile left(Handover::socketPath());
        ASSERT_TRUE(left.open(QIODevice::WriteOnly));
    }
    EXPECT_FALSE(handOver({QStringLiteral("/a.MTS")}));
    startProgram();
    EXPECT_TRUE(handOver({folder_.makeFile(QStringLiteral("a.MTS"), "clip")}));
    ASSERT_TRUE(waitFor([this] { return controller().isAnalysing(); }));
    EXPECT_TRUE(tools_.finishAll());
    EXPECT_EQ(rows().count(), 1);
}

TEST_F(SecondStart, NoiseOnTheSocketIsNoFile)
{
    startProgram();
    QLocalSocket socket;
    socket.connectToServer(Handover::socketPath());
    ASSERT_TRUE(waitFor([&socket] { return socket.state() == QLocalSocket::ConnectedState; }));
    socket.write(QByteArray(4, '\xFF'));
    socket.write("nonsense");
    socket.flush();
    settle();
    EXPECT_FALSE(controller().isAnalysing());
    socket.abort();
    settle();
    EXPECT_TRUE(handOver({folder_.makeFile(QStringLiteral("a.MTS"), "clip")}));
}

TEST_F(SecondStart, OnlyThisUserCanTalkToTheCopy)
{
    startProgram();
    const QFileInfo socket(Handover::socketPath());
    ASSERT_TRUE(socket.exists());
    EXPECT_EQ(socket.permissions() & (QFile::ReadGroup | QFile::WriteGroup | QFile::ReadOther | QFile::WriteOther),
              QFile::Permissions());
}

} // namespace tavrix::test
