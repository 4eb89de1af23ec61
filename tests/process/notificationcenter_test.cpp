// SPDX-License-Identifier: GPL-3.0-or-later
#include "base/dialogue/runloopgate.h"
#include "process/notificationcenter.h"
#include "support/qtprinters.h"
#include "support/waituntil.h"

#include <memory>

using namespace tavrix;
using namespace tavrix::test;

namespace
{

const QString name = QStringLiteral("testNotification");

TEST(NotificationCenter, ComparesNameAndObjectByValue)
{
    QObject observer;
    int calls = 0;
    NotificationCenter& center = NotificationCenter::defaultCenter();
    center.addObserver(&observer, name, 7, [&] { ++calls; });
    center.post(name, 7);
    EXPECT_EQ(calls, 1);
    center.post(name, QVariant::fromValue(qint64(7)));
    EXPECT_EQ(calls, 2);
    center.post(name, 8);
    center.post(name, QVariant());
    center.post(QStringLiteral("other"), 7);
    EXPECT_EQ(calls, 2);
    center.removeObserver(&observer);
    center.post(name, 7);
    EXPECT_EQ(calls, 2);
}

TEST(NotificationCenter, ForgetsDestroyedObservers)
{
    int calls = 0;
    NotificationCenter& center = NotificationCenter::defaultCenter();
    {
        QObject observer;
        center.addObserver(&observer, name, 1, [&] { ++calls; });
    }
    center.post(name, 1);
    EXPECT_EQ(calls, 0);
}

TEST(NotificationCenter, AHandlerMayRemoveTheNextObserver)
{
    NotificationCenter& center = NotificationCenter::defaultCenter();
    QObject first;
    auto second = std::make_unique<QObject>();
    QObject third;
    int calls = 0;
    center.addObserver(&first, name, 1, [&] {
        ++calls;
        second.reset();
        center.removeObserver(&third);
        center.removeObserver(&first);
    });
    center.addObserver(second.get(), name, 1, [&] { calls += 100; });
    center.addObserver(&third, name, 1, [&] { calls += 100; });
    center.post(name, 1);
    EXPECT_EQ(calls, 1);
}

TEST(NotificationCenter, WaitsWhileTheGateIsClosed)
{
    NotificationCenter& center = NotificationCenter::defaultCenter();
    QObject observer;
    int calls = 0;
    center.addObserver(&observer, name, 1, [&] { ++calls; });
    {
        const ModalGateCloser gate;
        center.post(name, 1);
        QCoreApplication::processEvents();
        EXPECT_EQ(calls, 0);
    }
    EXPECT_EQ(calls, 0);
    EXPECT_TRUE(waitUntil([&] { return calls == 1; }));
}

} // namespace
