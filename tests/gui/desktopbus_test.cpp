// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/desktop/desktopbus.h"
#include "gui/desktop/desktopscheme.h"

#include "progresslistener.h"
#include "support/qtprinters.h"
#include "support/testbus.h"

#include <QDBusMessage>
#include <QDBusVirtualObject>

#include <algorithm>
#include <optional>

namespace tavrix::test
{
namespace
{

// The desktop's services as other programs offer them: writes down the calls.
class FakeServices : public QDBusVirtualObject
{
public:
    QString introspect(const QString& /*path*/) const override { return {}; }

    bool handleMessage(const QDBusMessage& message, const QDBusConnection& connection) override
    {
        calls << message.member();
        arguments << message.arguments();
        QVariantList answer;
        if (message.member() == QStringLiteral("Inhibit") || message.member() == QStringLiteral("Notify")) {
            answer << QVariant::fromValue(quint32(41 + calls.size()));
        }
        connection.send(refuse ? message.createErrorReply(QDBusError::Failed, QStringLiteral("refused"))
                               : message.createReply(answer));
        return true;
    }

    QStringList calls;
    QList<QVariantList> arguments;
    bool refuse = false;
};

class FallbackDesktop : public DesktopServices
{
public:
    explicit FallbackDesktop(QStringList& asked) : asked_(asked) {}
    bool openUrl(const QUrl& url) override { return note(QStringLiteral("open ") + url.toString()); }
    bool openFileWith(const QString& path, const QString& program) override
    {
        return note(QStringLiteral("with ") + program + QLatin1Char(' ') + path);
    }
    bool reveal(const QString& path) override { return note(QStringLiteral("reveal ") + path); }
    void noteFileSystemChanged(const QString& path) override { note(QStringLiteral("changed ") + path); }

private:
    bool note(const QString& what)
    {
        asked_ << what;
        return true;
    }
    QStringList& asked_;
};

// A message bus of the test's own, with the given services on it.
class Bus : public testing::Test
{
protected:
    void SetUp() override
    {
        if (TestBus::program().isEmpty()) {
            GTEST_SKIP() << "dbus-daemon is not installed";
        }
        bus_.emplace();
        ASSERT_TRUE(bus_->start());
        server_ = &bus_->server();
        client_ = &bus_->client();
        ASSERT_TRUE(server_->registerVirtualObject(QStringLiteral("/"), &services_, QDBusConnection::SubPath));
    }
    void TearDown() override { bus_.reset(); }
    void offer(const char* service) { ASSERT_TRUE(server_->registerService(QLatin1String(service))); }
    bool called(const QString& member)
    {
        return waitUntil([this, member] { return services_.calls.contains(member); });
    }
    std::unique_ptr<DesktopServices> fallback() { return std::make_unique<FallbackDesktop>(asked_); }

    FakeServices services_;
    std::optional<TestBus> bus_;
    QDBusConnection* server_ = nullptr;
    QDBusConnection* client_ = nullptr;
    QStringList asked_;
};

} // namespace

TEST_F(Bus, RevealAsksTheFileManager)
{
    offer("org.freedesktop.FileManager1");
    BusDesktopServices desktop(*client_, fallback());
    EXPECT_TRUE(desktop.reveal(QStringLiteral("/tmp/a b#c.mov")));
    ASSERT_TRUE(called(QStringLiteral("ShowItems")));
    EXPECT_TEXTS(services_.arguments.first().first().toStringList(),
                 QStringList({QStringLiteral("file:///tmp/a%20b%23c.mov")}));
    EXPECT_TRUE(asked_.isEmpty());
}

TEST_F(Bus, RevealFallsBackWhenTheFileManagerIsMissingOrRefuses)
{
    BusDesktopServices desktop(*client_, fallback());
    EXPECT_TRUE(desktop.reveal(QStringLiteral("/tmp/x")));
    ASSERT_TRUE(waitUntil([this] { return asked_.size() == 1; }));
    offer("org.freedesktop.FileManager1");
    services_.refuse = true;
    EXPECT_TRUE(desktop.reveal(QStringLiteral("/tmp/y")));
    ASSERT_TRUE(waitUntil([this] { return asked_.size() == 2; }));
    EXPECT_TEXTS(asked_, QStringList({QStringLiteral("reveal /tmp/x"), QStringLiteral("reveal /tmp/y")}));
}

TEST_F(Bus, OpeningGoesToTheSystemsOpener)
{
    BusDesktopServices desktop(*client_, fallback());
    desktop.openUrl(QUrl(QStringLiteral("https://tavrix.example/")));
    desktop.openFileWith(QStringLiteral("/tmp/x"), QStringLiteral("viewer"));
    EXPECT_TEXTS(asked_,
                 QStringList({QStringLiteral("open https://tavrix.example/"), QStringLiteral("with viewer /tmp/x")}));
}

TEST_F(Bus, SleepIsInhibitedOnceAndReleasedWithItsCookies)
{
    offer("org.freedesktop.ScreenSaver");
    offer("org.freedesktop.PowerManagement");
    SleepInhibitor inhibitor(*client_);
    inhibitor.setInhibited(true, QStringLiteral("why"));
    inhibitor.setInhibited(true, QStringLiteral("why"));
    ASSERT_TRUE(waitUntil([this] { return services_.calls.size() == 2; }));
    EXPECT_EQ(services_.arguments.first().value(1).toString(), QStringLiteral("why"));
    // The answers must be there before the release can name them.
    ASSERT_TRUE(waitUntil([this, &inhibitor] {
        inhibitor.setInhibited(false);
        return services_.calls.count(QStringLiteral("UnInhibit")) == 2;
    }));
    QList<quint32> cookies;
    for (qsizetype i = 2; i < 4; ++i) {
        cookies << services_.arguments.at(i).first().toUInt();
    }
    std::sort(cookies.begin(), cookies.end());
    EXPECT_EQ(cookies, QList<quint32>({42, 43}));
}

TEST_F(Bus, AbsentServicesAreNoError)
{
    SleepInhibitor inhibitor(*client_);
    inhibitor.setInhibited(true, QStringLiteral("why"));
    inhibitor.setInhibited(false);
    DesktopNotifier notifier(*client_);
    notifier.notify(QStringLiteral("t"), QStringLiteral("x"));
    TaskbarProgress progress(*client_);
    progress.show(0.5, true);
    EXPECT_TRUE(services_.calls.isEmpty());
}

TEST_F(Bus, NotificationTextsAreNoMarkup)
{
    offer("org.freedesktop.Notifications");
    DesktopNotifier notifier(*client_);
    notifier.notify(QStringLiteral("Done"), QStringLiteral("<b>a & b</b>"));
    ASSERT_TRUE(called(QStringLiteral("Notify")));
    const QVariantList arguments = services_.arguments.first();
    EXPECT_EQ(arguments.value(3).toString(), QStringLiteral("Done"));
    EXPECT_EQ(arguments.value(4).toString(), QStringLiteral("&lt;b&gt;a &amp; b&lt;/b&gt;"));
}

TEST_F(Bus, ProgressIsBroadcastInSteps)
{
    ProgressListener listener;
    ASSERT_TRUE(server_->connect(QString(), QStringLiteral("/com/canonical/unity/launcherentry/tavrix"),
                                 QStringLiteral("com.canonical.Unity.LauncherEntry"), QStringLiteral("Update"),
                                 &listener, SLOT(update(QString, QVariantMap))));
    // An answered call: the subscription before it is in force now.
    offer("org.tavrix.TaskBar");
    TaskbarProgress progress(*client_);
    progress.show(0.25, true);
    progress.show(0.2501, true);
    progress.show(0.5, true);
    progress.show(0, false);
    ASSERT_TRUE(waitUntil([&listener] { return listener.updates.size() == 3; }));
    EXPECT_EQ(listener.application, QStringLiteral("application://tavrix.desktop"));
    EXPECT_EQ(listener.updates.at(0).value(QStringLiteral("progress")).toDouble(), 0.25);
    EXPECT_EQ(listener.updates.at(1).value(QStringLiteral("progress")).toDouble(), 0.5);
    EXPECT_FALSE(listener.updates.at(2).value(QStringLiteral("progress-visible")).toBool());
}

// The value comes wrapped once or twice, by the portal's version.
TEST(DesktopWish, IsReadFromThePortalsAnswer)
{
    const QVariant dark = QVariant::fromValue(quint32(1));
    EXPECT_EQ(darkWished(dark), true);
    EXPECT_EQ(darkWished(QVariant::fromValue(QDBusVariant(dark))), true);
    EXPECT_EQ(darkWished(QVariant::fromValue(QDBusVariant(QVariant::fromValue(QDBusVariant(quint32(2)))))), false);
    EXPECT_EQ(darkWished(QVariant::fromValue(quint32(0))), std::nullopt);
    EXPECT_EQ(darkWished(QVariant(QStringLiteral("dark"))), std::nullopt);
    EXPECT_EQ(darkWished(QVariant()), std::nullopt);
}

} // namespace tavrix::test
