// SPDX-License-Identifier: GPL-3.0-or-later
#include "base/store/settings.h"
#include "platform/network.h"
#include "platform/pagefetch.h"
#include "support/qtprinters.h"
#include "support/temphome.h"

#include <QCoreApplication>
#include <QHostAddress>
#include <QTcpServer>
#include <QTcpSocket>
#include <QThread>

#include <atomic>
#include <functional>
#include <memory>

using namespace tavrix;
using namespace tavrix::test;

namespace
{

// Answers every request on the loopback address by what a function makes of the path, in a thread of its own: the
// fetching functions block the test's thread. An empty answer keeps the connection open and silent.
class Server
{
public:
    using Answer = std::function<QByteArray(const QByteArray& path)>;

    explicit Server(Answer answer) : answer_(std::move(answer))
    {
        thread_.reset(QThread::create([this] { serve(); }));
        thread_->start();
        while (port_ == 0) {
            QThread::yieldCurrentThread();
        }
    }
    ~Server()
    {
        stopped_ = true;
        thread_->wait();
    }
    Server(const Server&) = delete;
    Server& operator=(const Server&) = delete;

    [[nodiscard]] QString address(const QString& path = QStringLiteral("/")) const
    {
        return QStringLiteral("http://127.0.0.1:%1%2").arg(port_.load()).arg(path);
    }
    [[nodiscard]] int requests() const { return requests_; }

private:
    void serve()
    {
        QTcpServer server;
        ASSERT_TRUE(server.listen(QHostAddress::LocalHost));
        port_ = server.serverPort();
        std::vector<std::unique_ptr<QTcpSocket>> open;
        while (!stopped_) {
            if (!server.waitForNewConnection(10)) {
                continue;
            }
            std::unique_ptr<QTcpSocket> socket(server.nextPendingConnection());
            socket->setParent(nullptr);
            QByteArray request;
            while (!request.contains("\r\n\r\n") && socket->waitForReadyRead(2000)) {
                request += socket->readAll();
            }
            ++requests_;
            const QByteArray answer = answer_(request.split(' ').value(1));
            if (answer.isEmpty()) {
                open.push_back(std::move(socket));
                continue;
            }
            socket->write(answer);
            while (socket->bytesToWrite() > 0 && socket->waitForBytesWritten(2000)) {
            }
            socket->disconnectFromHost();
            if (socket->state() != QAbstractSocket::UnconnectedState) {
                socket->waitForDisconnected(2000);
            }
        }
    }

    Answer answer_;
    std::unique_ptr<QThread> thread_;
    std::atomic<int> port_ = 0;
    std::atomic<int> requests_ = 0;
    std::atomic<bool> stopped_ = false;
};

QByteArray page(const QByteArray& body, const QByteArray& status = "200 OK", const QByteArray& header = {})
{
    return "HTTP/1.1 " + status + "\r\nContent-Length: " + QByteArray::number(body.size()) + "\r\n" + header +
           "Connection: close\r\n\r\n" + body;
}

QByteArray redirect(const QByteArray& target)
{
    return page("moved", "302 Found", "Location: " + target + "\r\n");
}

struct PageRow {
    const char* name;
    QByteArray answer;
    bool reached;
    const char* text;
};

class Page : public testing::TestWithParam<PageRow>
{
};

TEST_P(Page, IsFetchedAsAscii)
{
    const Server server([](const QByteArray&) { return GetParam().answer; });
    EXPECT_EQ(internetConnexionCheck(server.address()), GetParam().reached);
    EXPECT_TEXT(webpageSource(server.address(), 0), text(GetParam().text));
}

INSTANTIATE_TEST_SUITE_P(Answers, Page,
                         testing::Values(PageRow{"Text", page("hello\n"), true, "hello\n"},
                                         PageRow{"EmptyPage", page(""), true, ""},
                                         PageRow{"NotAscii", page("caf\xC3\xA9"), false, ""},
                                         PageRow{"ErrorStatus", page("gone", "404 Not Found"), false, ""},
                                         PageRow{"Garbage", "no such protocol\r\n\r\n", false, ""}),
                         rowName<PageRow>);

TEST(Network, NothingAsksForNothing)
{
    EXPECT_FALSE(internetConnexionCheck(QString()));
    EXPECT_TEXT(webpageSource(QString(), 1), QString());
}

TEST(Network, OtherAddressesAreRefused)
{
    const TempFolder folder;
    const QString path = folder.makeFile(QStringLiteral("page"), "secret");
    for (const QString& address :
         {QUrl::fromLocalFile(path).toString(), path, QStringLiteral(""), QStringLiteral("data:,text"),
          QStringLiteral("http://"), QStringLiteral("ftp://127.0.0.1/")}) {
        EXPECT_FALSE(internetConnexionCheck(address)) << address.toStdString();
        EXPECT_TEXT(webpageSource(address, 0), QStringLiteral(""));
    }
}

TEST(Network, AServerThatIsNotThereIsNoPage)
{
    QString address;
    {
        const Server server([](const QByteArray&) { return page("x"); });
        address = server.address();
    }
    EXPECT_FALSE(internetConnexionCheck(address));
}

TEST(Network, RedirectsAreFollowedToWebAddressesOnly)
{
    const Server server([](const QByteArray& path) {
        if (path == "/near") {
            return redirect("/page");
        }
        if (path == "/file") {
            return redirect("file:///etc/passwd");
        }
        if (path == "/data") {
            return redirect("data:,text");
        }
        if (path == "/loop") {
            return redirect("/loop");
        }
        return page("reached");
    });
    EXPECT_TEXT(webpageSource(server.address(QStringLiteral("/near")), 0), QStringLiteral("reached"));
    for (const char* path : {"/file", "/data", "/loop"}) {
        EXPECT_FALSE(internetConnexionCheck(server.address(text(path)))) << path;
    }
    // A request is sent again when the server closes a connection that is kept alive; the circle ends all the same.
    EXPECT_LT(server.requests(), 100);
}

TEST(Network, SizeIsLimited)
{
    const qint64 limit = FetchLimits().bytes;
    EXPECT_EQ(limit, 4194304);
    const Server server([limit](const QByteArray& path) {
        return page(QByteArray(static_cast<qsizetype>(path == "/fits" ? limit : limit + 1), 'x'));
    });
    EXPECT_EQ(webpageSource(server.address(QStringLiteral("/fits")), 0).size(), limit);
    EXPECT_TEXT(webpageSource(server.address(QStringLiteral("/large")), 0), QStringLiteral(""));
}

TEST(Network, TimeIsLimited)
{
    const Server server([](const QByteArray&) { return QByteArray(); });
    EXPECT_EQ(FetchLimits().milliseconds, 30000);
    FetchLimits limits;
    limits.milliseconds = 100;
    EXPECT_FALSE(fetchPage(QUrl(server.address()), limits).has_value());
}

TEST(Network, NoEventLoopRunsInTheCallersThread)
{
    const Server server([](const QByteArray&) { return page("x"); });
    bool served = false;
    QMetaObject::invokeMethod(
        QCoreApplication::instance(), [&] { served = true; }, Qt::QueuedConnection);
    EXPECT_TRUE(internetConnexionCheck(server.address()));
    EXPECT_FALSE(served);
    QCoreApplication::processEvents();
    EXPECT_TRUE(served);
}

TEST(Network, LogsOnlyWhenDebuggingAndWithoutPasswords)
{
    const Server server([](const QByteArray&) { return page("body"); });
    QString address = server.address(QStringLiteral("/dir/name"));
    address.replace(QStringLiteral("http://"), QStringLiteral("http://user:secret@"));
    const LogCapture log;
    EXPECT_TEXT(webpageSource(address, 1), QStringLiteral("body"));
    EXPECT_TRUE(internetConnexionCheck(address));
    EXPECT_TEXTS(log.lines(), QStringList());
    setDEBUG(1);
    EXPECT_TEXT(webpageSource(address, 0), QStringLiteral("body"));
    EXPECT_TEXTS(log.lines(), QStringList());
    EXPECT_TEXT(webpageSource(address, 1), QStringLiteral("body"));
    EXPECT_TRUE(internetConnexionCheck(address));
    setDEBUGDEVForTests(1);
    EXPECT_TEXT(webpageSource(address, 0), QStringLiteral("body"));
    setDEBUGDEVForTests(0);
    setDEBUG(0);
    EXPECT_TEXTS(log.lines(), QStringList({QStringLiteral("WebClass source_webpa- debut (") +
                                               server.address(QStringLiteral("/dir/name")) + QLatin1Char(')'),
                                           QStringLiteral("WebClass source_webpa- fin"),
                                           QStringLiteral("internetConnexionChe- deb: name"),
                                           QStringLiteral("internetConnexionChe- fin: srcPageStr == body"),
                                           QStringLiteral("WebClass source_webpa- fin : body")}));
}

} // namespace
