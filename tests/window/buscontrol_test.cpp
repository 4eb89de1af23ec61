// SPDX-License-Identifier: GPL-3.0-or-later
#include "buslistener.h"
#include "support/testbus.h"
#include "windowharness.h"

#include "gui/desktop/buscontrol.h"
#include "gui/desktop/encodingpresence.h"
#include "gui/desktop/sleeppause.h"

#include <QDBusMessage>
#include <QDBusPendingCall>
#include <QDBusVariant>
#include <QDBusVirtualObject>

namespace tavrix::test
{
namespace
{

// The desktop's services: keeps the calls, and gives what they ask for.
class Services : public QDBusVirtualObject
{
public:
    QString introspect(const QString& /*path*/) const override { return {}; }
    bool handleMessage(const QDBusMessage& message, const QDBusConnection& connection) override
    {
        calls << message;
        if (message.member() == QLatin1String("Notify")) {
            connection.send(message.createReply(QVariant::fromValue(quint32(7))));
        } else {
            connection.send(message.createReply());
        }
        return true;
    }
    [[nodiscard]] QList<QDBusMessage> named(const char* member) const
    {
        QList<QDBusMessage> found;
        for (const QDBusMessage& call : calls) {
            if (call.member() == QLatin1String(member)) {
                found << call;
            }
        }
        return found;
    }
    QList<QDBusMessage> calls;
};

// The real window, its encoders pretended, seen from another program of the session.
class BusOrders : public WindowTest
{
protected:
    void SetUp() override
    {
        WindowTest::SetUp();
        if (TestBus::program().isEmpty()) {
            GTEST_SKIP() << "dbus-daemon is not installed";
        }
        ASSERT_TRUE(bus_.start());
        ASSERT_TRUE(bus_.server().registerVirtualObject(QStringLiteral("/org/freedesktop"), &services_,
                                                        QDBusConnection::SubPath));
        ASSERT_TRUE(bus_.server().registerService(QStringLiteral("org.freedesktop.Notifications")));
        ASSERT_TRUE(bus_.server().registerService(QStringLiteral("org.freedesktop.login1")));
        startProgram();
        commands_ = std::make_unique<RunCommands>(controller());
    }
    void TearDown() override
    {
        sleep_.reset();
        presence_.reset();
        control_.reset();
        commands_.reset();
        WindowTest::TearDown();
    }
    void offerControl()
    {
        ASSERT_TRUE(bus_.server().connect(QString(), busPath, QStringLiteral("org.freedesktop.DBus.Properties"),
                                          QStringLiteral("PropertiesChanged"), &listener_,
                                          SLOT(changed(QString, QVariantMap, QStringList))));
        control_ = std::make_unique<BusControl>(controller(), bus_.client());
    }
    // Calls as another program does, and waits for the answer.
    QDBusMessage call(const QString& interface, const QString& member, const QVariantList& arguments = {})
    {
        QDBusMessage message = QDBusMessage::createMethodCall(busService, busPath, interface, member);
        message.setArguments(arguments);
        const QDBusPendingCall pending = bus_.server().asyncCall(message);
        EXPECT_TRUE(waitFor([&pending] { return pending.isFinished(); }));
        return pending.reply();
    }
    QDBusMessage order(const char* member, const QVariantList& arguments = {})
    {
        return call(busService, QLatin1String(member), arguments);
    }
    QVariant property(const char* name)
    {
        const QDBusMessage answer = call(QStringLiteral("org.freedesktop.DBus.Properties"), QStringLiteral("Get"),
                                         {busService, QLatin1String(name)});
        return answer.arguments().value(0).value<QDBusVariant>().variant();
    }
    void startEncode(int clips)
    {
        useDestination();
        analysedClips(clips);
        trigger("menuStart");
        ASSERT_TRUE(encoder() != nullptr);
    }
    FakeLauncher* encoder() { return tools_.current(ToolKind::Encode).launcher; }
    bool becomes(const char* state)
    {
        return waitFor([this, state] { return property("State").toString() == QLatin1String(state); });
    }
    void tell(const char* path, const char* interface, const char* member, const QVariantList& arguments)
    {
        QDBusMessage signal =
            QDBusMessage::createSignal(QLatin1String(path), QLatin1String(interface), QLatin1String(member));
        signal.setArguments(arguments);
        EXPECT_TRUE(bus_.server().send(signal));
    }
    void sleeps(bool goes)
    {
        tell("/org/freedesktop/login1", "org.freedesktop.login1.Manager", "PrepareForSleep", {goes});
    }
    void press(const char* word, quint32 notification = 7)
    {
        tell("/org/freedesktop/Notifications", "org.freedesktop.Notifications", "ActionInvoked",
             {QVariant::fromValue(notification), QLatin1String(word)});
    }

    TestBus bus_;
    Services services_;
    BusListener listener_;
    std::unique_ptr<RunCommands> commands_;
    std::unique_ptr<BusControl> control_;
    std::unique_ptr<EncodingPresence> presence_;
    std::unique_ptr<SleepPause> sleep_;
};

} // namespace

TEST_F(BusOrders, PauseResumeAndStopAreThoseOfTheWindow)
{
    offerControl();
    EXPECT_TRUE(becomes("idle"));
    startEncode(2);
    EXPECT_TRUE(becomes("encoding"));
    EXPECT_EQ(property("Clip").toInt(), 1);
    EXPECT_EQ(property("Clips").toInt(), 2);

    order("Pause");
    ASSERT_TRUE(waitFor([this] { return encoder()->isSuspended(); }));
    EXPECT_TRUE(becomes("paused"));
    EXPECT_EQ(model().encStopBt.imageName(encStopSegmentPause), controlImage::play);
    // A second one does not wake it.
    order("Pause");
    settle();
    EXPECT_TRUE(encoder()->isSuspended());

    order("Resume");
    ASSERT_TRUE(waitFor([this] { return !encoder()->isSuspended(); }));
    EXPECT_TRUE(becomes("encoding"));

    robot_->press(QStringLiteral("alertButton0"));
    order("Stop");
    EXPECT_TRUE(becomes("idle"));
    EXPECT_TRUE(waitFor([this] { return !controller().isEncoding(); }));
    EXPECT_TRUE(waitFor([this] { return listener_.states.contains(QStringLiteral("paused")); }));
    EXPECT_EQ(listener_.latest.value(QStringLiteral("State")).toString(), QStringLiteral("idle"));
}

TEST_F(BusOrders, WithoutAnEncodeDoNothing)
{
    offerControl();
    analysedClips(1);
    for (const char* word : {"Pause", "Resume", "Stop"}) {
        EXPECT_EQ(order(word).type(), QDBusMessage::ReplyMessage) << word;
        settle();
    }
    EXPECT_EQ(property("State").toString(), QStringLiteral("idle"));
    EXPECT_EQ(rows().count(), 1);
    startEncode(1);
    EXPECT_FALSE(encoder()->isSuspended());
}

TEST_F(BusOrders, FilesAreTakenInLikeADrop)
{
    offerControl();
    const QString clip = folder_.makeFile(QStringLiteral("a b.MTS"), "clip");
    const QString other = folder_.makeFile(QStringLiteral("c.MTS"), "clip");
    EXPECT_EQ(order("AddFiles", {QStringList{clip, QUrl::fromLocalFile(other).toString()}}).type(),
              QDBusMessage::ReplyMessage);
    ASSERT_TRUE(waitFor([this] { return controller().isAnalysing(); }));
    EXPECT_EQ(property("State").toString(), QStringLiteral("analysing"));
    EXPECT_TRUE(tools_.finishAll());
    EXPECT_EQ(rows().count(), 2);
    EXPECT_EQ(rows().row(0).source(), clip);
}

TEST_F(BusOrders, OtherThanLocalFilesAreRefused)
{
    offerControl();
    for (const char* file : {"a.MTS", "https://tavrix.example/a.MTS", ""}) {
        EXPECT_EQ(order("AddFiles", {QStringList{QStringLiteral("/tmp/a.MTS"), QLatin1String(file)}}).type(),
                  QDBusMessage::ErrorMessage)
            << file;
    }
    EXPECT_EQ(order("AddFiles", {QStringList()}).type(), QDBusMessage::ErrorMessage);
    settle();
    EXPECT_FALSE(controller().isAnalysing());
}

TEST_F(BusOrders, ProgressIsThatOfTheBatch)
{
    offerControl();
    startEncode(2);
    encoder()->write(QStringLiteral("frame=  1 fps=1 time=15.00 bitrate=1\n"));
    ASSERT_TRUE(waitFor([this] { return property("Progress").toDouble() > 0; }));
    EXPECT_NEAR(property("Progress").toDouble(), 0.25, 0.01);
    EXPECT_TRUE(waitFor([this] { return listener_.latest.value(QStringLiteral("Progress")).toDouble() > 0.2; }));
}

TEST_F(BusOrders, ANotificationsButtonsPauseAndStop)
{
    presence_ = std::make_unique<EncodingPresence>(controller(), window(), *commands_, bus_.client());
    window().hide();
    startEncode(1);
    ASSERT_TRUE(waitFor([this] { return services_.named("Notify").size() == 1; }));
    EXPECT_EQ(services_.named("Notify").first().arguments().value(5).toStringList().value(0), QStringLiteral("pause"));
    settle();
    press("pause", 6); // another program's
    settle();
    EXPECT_FALSE(encoder()->isSuspended());
    ASSERT_TRUE(waitFor([this] {
        press("pause");
        settle();
        return encoder()->isSuspended();
    }));
    ASSERT_TRUE(waitFor([this] { return services_.named("Notify").size() == 2; }));
    EXPECT_EQ(services_.named("Notify").last().arguments().value(5).toStringList().value(0), QStringLiteral("resume"));
    press("resume");
    EXPECT_TRUE(waitFor([this] { return !encoder()->isSuspended(); }));
    robot_->press(QStringLiteral("alertButton0"));
    press("stop");
    EXPECT_TRUE(waitFor([this] { return !controller().isEncoding(); }));
}

TEST_F(BusOrders, TheEncoderRestsWhileTheMachineSleeps)
{
    sleep_ = std::make_unique<SleepPause>(controller(), *commands_, bus_.client());
    startEncode(1);
    ASSERT_TRUE(waitFor([this] { return services_.named("Inhibit").size() == 1; }));
    EXPECT_EQ(services_.named("Inhibit").first().arguments().value(0).toString(), QStringLiteral("sleep"));
    EXPECT_EQ(services_.named("Inhibit").first().arguments().value(3).toString(), QStringLiteral("delay"));
    sleeps(true);
    ASSERT_TRUE(waitFor([this] { return encoder()->isSuspended(); }));
    sleeps(false);
    EXPECT_TRUE(waitFor([this] { return !encoder()->isSuspended(); }));
    // The next sleep is delayed again.
    EXPECT_TRUE(waitFor([this] { return services_.named("Inhibit").size() == 2; }));
}

TEST_F(BusOrders, APauseOfTheUserOutlastsTheSleep)
{
    sleep_ = std::make_unique<SleepPause>(controller(), *commands_, bus_.client());
    startEncode(1);
    trigger("menuPause");
    ASSERT_TRUE(encoder()->isSuspended());
    sleeps(true);
    sleeps(false);
    // Both signals have been obeyed when the delay is asked for once more.
    ASSERT_TRUE(waitFor([this] { return services_.named("Inhibit").size() == 2; }));
    settle();
    EXPECT_TRUE(encoder()->isSuspended());
}

} // namespace tavrix::test
