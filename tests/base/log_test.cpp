// SPDX-License-Identifier: GPL-3.0-or-later
#include "base/text/log.h"

#include "base/store/settings.h"
#include "support/qtprinters.h"
#include "support/temphome.h"

#include <QRegularExpression>

#include <sys/socket.h>
#include <unistd.h>

namespace tavrix
{
namespace
{

using test::text;

// Stands in for the error stream; being a packet socket it shows every single write as one packet.
class ErrorStreamPackets
{
public:
    ErrorStreamPackets()
    {
        EXPECT_EQ(socketpair(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0, ends_), 0);
        saved_ = dup(STDERR_FILENO);
        dup2(ends_[0], STDERR_FILENO);
    }
    ~ErrorStreamPackets()
    {
        restore();
        ::close(ends_[0]);
        ::close(ends_[1]);
    }
    ErrorStreamPackets(const ErrorStreamPackets&) = delete;
    ErrorStreamPackets& operator=(const ErrorStreamPackets&) = delete;

    QList<QByteArray> packets()
    {
        restore();
        QList<QByteArray> result;
        QByteArray buffer(65536, '\0');
        ssize_t size = 0;
        while ((size = recv(ends_[1], buffer.data(), static_cast<size_t>(buffer.size()), MSG_DONTWAIT)) > 0) {
            result.append(buffer.left(size));
        }
        return result;
    }

private:
    void restore()
    {
        if (saved_ >= 0) {
            dup2(saved_, STDERR_FILENO);
            ::close(saved_);
            saved_ = -1;
        }
    }

    int ends_[2] = {-1, -1};
    int saved_ = -1;
};

TEST(Log, ALineIsOneWriteWithDateNameAndProcess)
{
    ErrorStreamPackets stream;
    logLine(text("ffmpegSuccess       :-( %@ %d"), {text("\u00E9"), 5});
    const QList<QByteArray> packets = stream.packets();
    ASSERT_EQ(packets.size(), 1);
    const QRegularExpression form(text("^\\d{4}-\\d\\d-\\d\\d \\d\\d:\\d\\d:\\d\\d\\.\\d{3} Tavrix\\[%1\\] "
                                       "ffmpegSuccess       :-\\( \u00E9 5\n$")
                                      .arg(getpid()));
    EXPECT_TRUE(form.match(QString::fromUtf8(packets.first())).hasMatch()) << packets.first().toStdString();
}

TEST(Log, ALineFeedInAValueCannotForgeALine)
{
    ErrorStreamPackets stream;
    const test::LogCapture log;
    logLine(text("a\nb %@ %@ %@"), {text("x\ny"), QStringList{text("p\nq")}, QVariantMap{{text("k"), text("v\n")}}});
    EXPECT_TEXTS(log.lines(), QStringList{text("a\nb x\\ny (p\\nq) {k = v\\n;}")});
    EXPECT_EQ(stream.packets().size(), 1);
}

TEST(Log, AValueSteersNoTerminal)
{
    const test::LogCapture log;
    logLine(text("%@"), {text("a\x1b[2J\u202e\u2028.mts")});
    EXPECT_TEXTS(log.lines(), QStringList{text("a\\x1b[2J\\u202e\\u2028.mts")});
}

TEST(Log, NumbersStayNumbers)
{
    const test::LogCapture log;
    logLine(text("%.1f %d %@"), {5.25, 3, QString()});
    EXPECT_TEXTS(log.lines(), QStringList{text("5.2 3 (null)")});
}

TEST(Log, DebugAndDeveloperLinesFollowTheirSettings)
{
    const test::LogCapture log;
    logDebug(text("debug off"));
    logDev(text("dev off"));
    setDEBUG(1);
    logDebug(text("debug on"));
    logDev(text("dev still off"));
    setDEBUGDEVForTests(1);
    logDev(text("dev on"));
    setDEBUG(0);
    setDEBUGDEVForTests(0);
    logDebug(text("debug off"));
    logDev(text("dev off"));
    EXPECT_TEXTS(log.lines(), (QStringList{text("debug on"), text("dev on")}));
}

TEST(Log, KeepsErrno)
{
    errno = ENOENT;
    logLine(text("x"));
    EXPECT_EQ(errno, ENOENT);
}

TEST(Log, DateTextIsLocalTime)
{
    struct Row {
        const char* zone;
        const char* expected;
    };
    const std::vector<Row> rows = {{"Europe/Paris", "2011-03-04 10:20:30 +0100"},
                                   {"America/New_York", "2011-03-04 04:20:30 -0500"},
                                   {"Asia/Kolkata", "2011-03-04 14:50:30 +0530"},
                                   {"America/St_Johns", "2011-03-04 05:50:30 -0330"},
                                   {"UTC", "2011-03-04 09:20:30 +0000"}};
    for (const Row& row : rows) {
        const test::EnvironmentChange zone("TZ", row.zone);
        EXPECT_TEXT(dateText(1299230430), text(row.expected)) << row.zone;
    }
    const test::EnvironmentChange zone("TZ", "UTC");
    EXPECT_TEXT(dateText(-1), text("1969-12-31 23:59:59 +0000"));
    EXPECT_TEXT(dateText(std::numeric_limits<qint64>::max()), QString());
    EXPECT_EQ(currentDateText().size(), 25);
}

} // namespace
} // namespace tavrix
