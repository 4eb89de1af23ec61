// SPDX-License-Identifier: GPL-3.0-or-later
#include "base/dialogue/runloopgate.h"

#include "support/qtprinters.h"

#include <QCoreApplication>
#include <QEventLoop>
#include <QTimer>

namespace tavrix
{
namespace
{

using test::text;

class Gate : public testing::Test
{
protected:
    Gate()
    {
        QObject::connect(&gate, &RunLoopGate::opened, &gate, [this] { done.append(text("opened")); });
    }

    std::function<void()> note(const char* name)
    {
        return [this, name] {
            done.append(text(name));
        };
    }
    static void runEvents() { QCoreApplication::processEvents(); }
    void expectDone(std::initializer_list<const char*> names)
    {
        QStringList expected;
        for (const char* name : names) {
            expected.append(text(name));
        }
        EXPECT_TEXTS(done, expected);
        done.clear();
    }

    RunLoopGate gate;
    QStringList done;
};

TEST_F(Gate, OpenItDeliversAtOnce)
{
    gate.deliver(note("a"));
    expectDone({"a"});
    EXPECT_FALSE(gate.isClosed());
    runEvents();
    expectDone({});
}

TEST_F(Gate, ClosedItKeepsTheOrder)
{
    gate.close();
    EXPECT_TRUE(gate.isClosed());
    gate.deliver(note("a"));
    gate.deliver(note("b"));
    runEvents();
    expectDone({});
    gate.open();
    gate.deliver(note("c"));
    expectDone({});
    EXPECT_TRUE(gate.isClosed());
    runEvents();
    expectDone({"a", "b", "c", "opened"});
    EXPECT_FALSE(gate.isClosed());
}

TEST_F(Gate, ReadersAreToldEvenWhenNothingWaited)
{
    gate.close();
    gate.open();
    EXPECT_FALSE(gate.isClosed());
    expectDone({});
    runEvents();
    expectDone({"opened"});
}

TEST_F(Gate, ClosingNests)
{
    gate.close();
    gate.close();
    gate.deliver(note("a"));
    gate.open();
    runEvents();
    expectDone({});
    EXPECT_TRUE(gate.isClosed());
    gate.open();
    runEvents();
    expectDone({"a", "opened"});
}

TEST_F(Gate, ClosedAgainBeforeTheDeliveryItWaits)
{
    gate.close();
    gate.deliver(note("a"));
    gate.open();
    gate.close();
    runEvents();
    expectDone({});
    gate.open();
    runEvents();
    expectDone({"a", "opened"});
}

TEST_F(Gate, OpenedAndClosedOftenItDeliversOnce)
{
    for (int i = 0; i < 5; ++i) {
        gate.close();
        gate.deliver(note("a"));
        gate.open();
    }
    runEvents();
    expectDone({"a", "a", "a", "a", "a", "opened"});
}

TEST_F(Gate, ADeliveredCallThatClosesStopsTheRest)
{
    gate.close();
    gate.deliver(note("a"));
    gate.deliver([this] {
        note("closes")();
        gate.close();
    });
    gate.deliver(note("b"));
    gate.deliver(note("c"));
    gate.open();
    runEvents();
    expectDone({"a", "closes"});
    gate.deliver(note("d"));
    runEvents();
    expectDone({});
    gate.open();
    runEvents();
    expectDone({"b", "c", "d", "opened"});
}

TEST_F(Gate, ADeliveredCallThatRunsAModalAlertComesToItsEndFirst)
{
    gate.close();
    gate.deliver([this] {
        note("alert up")();
        gate.close();
        gate.deliver(note("during"));
        QEventLoop modal;
        QTimer::singleShot(0, &modal, &QEventLoop::quit);
        modal.exec();
        gate.open();
        note("alert gone")();
    });
    gate.deliver(note("behind"));
    gate.open();
    runEvents();
    runEvents();
    expectDone({"alert up", "alert gone", "behind", "during", "opened"});
}

TEST_F(Gate, NothingIsDeliveredInsideAModalLoop)
{
    gate.deliverLater(note("posted before"));
    gate.close();
    gate.deliverLater(note("posted within"));
    QEventLoop modal;
    QTimer::singleShot(0, &modal, &QEventLoop::quit);
    modal.exec();
    expectDone({});
    gate.open();
    note("step ends")();
    runEvents();
    expectDone({"step ends", "posted before", "posted within", "opened"});
}

TEST_F(Gate, ACallDeliveredByADeliveredCallComesLast)
{
    gate.close();
    gate.deliver([this] {
        note("a")();
        gate.deliver(note("from a"));
        note("a ends")();
    });
    gate.deliver(note("b"));
    gate.open();
    runEvents();
    expectDone({"a", "a ends", "b", "from a", "opened"});
}

TEST_F(Gate, EvenTheLastKeptCallIsNotInterrupted)
{
    gate.close();
    gate.deliver([this] {
        gate.deliver(note("from a"));
        note("a ends")();
    });
    gate.open();
    runEvents();
    expectDone({"a ends", "from a", "opened"});
}

TEST_F(Gate, ReadersAreHeldBackOnlyWhileEarlierCallsWait)
{
    QList<bool> closed;
    gate.close();
    gate.deliver([&] { closed.append(gate.isClosed()); });
    gate.deliver([&] { closed.append(gate.isClosed()); });
    gate.open();
    closed.append(gate.isClosed());
    runEvents();
    closed.append(gate.isClosed());
    EXPECT_EQ(closed, (QList<bool>{true, true, false, false}));
}

TEST_F(Gate, LaterMeansFromTheEventLoop)
{
    gate.deliverLater(note("later"));
    gate.deliver(note("now"));
    expectDone({"now"});
    runEvents();
    expectDone({"later"});
}

TEST_F(Gate, LaterCallsKeepTheirOrder)
{
    gate.deliverLater(note("a"));
    gate.deliverLater([this] {
        note("b")();
        gate.deliverLater(note("d"));
    });
    gate.deliverLater(note("c"));
    runEvents();
    runEvents();
    expectDone({"a", "b", "c", "d"});
}

TEST_F(Gate, ACallQueuedByADeliveredCallRunsAfterIt)
{
    gate.close();
    gate.deliver([this] {
        gate.deliverLater(note("later"));
        note("a ends")();
    });
    gate.deliver(note("b"));
    gate.open();
    runEvents();
    runEvents();
    expectDone({"a ends", "b", "opened", "later"});
}

TEST_F(Gate, ACallQueuedBeforeAClosingCallWaits)
{
    gate.close();
    gate.deliver([this] {
        gate.deliverLater(note("later"));
        gate.close();
    });
    gate.open();
    runEvents();
    runEvents();
    expectDone({});
    gate.open();
    runEvents();
    expectDone({"later", "opened"});
}

TEST_F(Gate, AReaderMayCloseItAgain)
{
    QObject::connect(&gate, &RunLoopGate::opened, &gate, [this] {
        gate.close();
        gate.deliver(note("kept"));
    });
    gate.close();
    gate.open();
    runEvents();
    expectDone({"opened"});
    EXPECT_TRUE(gate.isClosed());
}

TEST(ModalGate, ClosesWhileItLives)
{
    RunLoopGate& gate = RunLoopGate::instance();
    bool delivered = false;
    {
        const ModalGateCloser closer;
        EXPECT_TRUE(gate.isClosed());
        gate.deliver([&] { delivered = true; });
    }
    EXPECT_FALSE(delivered);
    QCoreApplication::processEvents();
    EXPECT_TRUE(delivered);
    EXPECT_FALSE(gate.isClosed());
}

} // namespace
} // namespace tavrix
