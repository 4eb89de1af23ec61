// SPDX-License-Identifier: GPL-3.0-or-later
#include "controllertest.h"

#include "app/workfolder.h"
#include "base/bundle/bundle.h"
#include "base/dialogue/localisation.h"
#include "base/store/settings.h"
#include "probe/batchtexts.h"

#include <QDir>
#include <QFile>

#include <csignal>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace tavrix;
using namespace tavrix::test;

namespace
{

// The largest file that this process may write, while it lives: a disk that is full, as far as one process can see it.
class FileSizeLimit
{
public:
    explicit FileSizeLimit(rlim_t bytes) : handler_(std::signal(SIGXFSZ, SIG_IGN))
    {
        ::getrlimit(RLIMIT_FSIZE, &before_);
        const rlimit limit = {bytes, before_.rlim_max};
        ::setrlimit(RLIMIT_FSIZE, &limit);
    }
    ~FileSizeLimit()
    {
        ::setrlimit(RLIMIT_FSIZE, &before_);
        std::signal(SIGXFSZ, handler_);
    }
    FileSizeLimit(const FileSizeLimit&) = delete;
    FileSizeLimit& operator=(const FileSizeLimit&) = delete;

private:
    rlimit before_ = {};
    void (*handler_)(int);
};

class WorkFolderTest : public ControllerTest
{
protected:
    const QString base = folder.makeFolder(QStringLiteral("base")) + u'/';
    const QString usual = base + bundleName() + u'/';

    void expectPrivate(const QString& path) const
    {
        struct stat info = {};
        ASSERT_EQ(::stat(qPrintable(path), &info), 0);
        EXPECT_EQ(info.st_mode & 0777U, 0700U);
        EXPECT_TRUE(QDir(path).isEmpty());
    }
};

TEST_F(WorkFolderTest, IsTheUsualOneAndEmpty)
{
    folder.makeFile(QStringLiteral("base/Tavrix/old"), "x");
    const WorkFolder work = makeWorkFolder(base, false);
    EXPECT_TEXT(work.path, usual);
    EXPECT_TRUE(work.obstacles.isEmpty());
    expectPrivate(work.path);
}

TEST_F(WorkFolderTest, IsAnotherOneBesideALinkOrAFile)
{
    const QString precious = folder.makeFile(QStringLiteral("precious/file"), "kept");
    const QString name = usual.chopped(1);
    for (const bool link : {true, false}) {
        QFile::remove(name);
        if (link) {
            ASSERT_TRUE(QFile::link(folder.path(QStringLiteral("precious")), name));
        } else {
            ASSERT_TRUE(writeBytes(name, "a stranger's"));
        }
        const WorkFolder work = makeWorkFolder(base, false);
        EXPECT_TRUE(work.path.startsWith(name + u'-')) << work.path.toStdString();
        EXPECT_TEXTS(work.obstacles, QStringList(usual + QStringLiteral(": ") + batchText("Tmp_noFolder")));
        expectPrivate(work.path);
        EXPECT_TRUE(itemExists(precious));
        EXPECT_TRUE(itemExists(name));
    }
}

TEST_F(WorkFolderTest, LeavesTheFolderOfAnotherCopyAlone)
{
    const QString others = folder.makeFile(QStringLiteral("base/Tavrix/frame.yuv"), "x");
    EXPECT_FALSE(makeWorkFolder(base, true).path == usual);
    EXPECT_TRUE(itemExists(others));
}

TEST_F(WorkFolderTest, IsElsewhereWhenNoBaseCanBeHad)
{
    const WorkFolder work = makeWorkFolder(QString(), false);
    EXPECT_FALSE(work.path.isNull());
    ASSERT_EQ(work.obstacles.size(), 1);
    EXPECT_TRUE(work.obstacles.first().endsWith(batchText("Tmp_anotherUsers")));
    expectPrivate(work.path);
    QDir(work.path).removeRecursively();
}

TEST_F(WorkFolderTest, CannotBeHadWhereNothingCanBeWritten)
{
    const FileSizeLimit limit(1024 * 1024);
    const WorkFolder work = makeWorkFolder(base, false);
    EXPECT_TRUE(work.path.isNull());
    EXPECT_GE(work.obstacles.size(), 4);
    EXPECT_FALSE(itemExists(usual)) << "nothing is left behind";
}

TEST_F(WorkFolderTest, ThatIsMissingIsToldAtTheStart)
{
    const FileSizeLimit limit(1024 * 1024);
    setDEBUGDEVForTests(1);
    EXPECT_FALSE(controller->awakeFromNib());
    EXPECT_EQ(face.count(alertEvent("D_noTemporary_1")), 1);
    const QString text = face.alerts.last().text;
    EXPECT_TRUE(text.contains(QStringLiteral("/Tavrix/: File too large\n"))) << text.toStdString();
}

TEST_F(WorkFolderTest, ALimitOfTheSystemDoesNotKillTheStart)
{
    const FileSizeLimit limit(1024 * 1024);
    std::signal(SIGXFSZ, SIG_DFL);
    setDEBUGDEVForTests(1);
    EXPECT_FALSE(controller->awakeFromNib());
    EXPECT_EQ(face.count(alertEvent("D_noTemporary_1")), 1);
}

// A full temporary folder switched the interlace test off, and an interlaced clip was taken for progressive.
TEST_F(WorkFolderTest, WithoutRoomAcceptsNoClip)
{
    QStringList reasons;
    QObject::connect(controller.get(), &appDelegate::sourceRejected, controller.get(),
                     [&reasons](const QString&, const QString& reason) { reasons << reason; });
    const QString source = clip(QStringLiteral("a.mts"));
    tools.clips[source].letter = QString();
    {
        const FileSizeLimit limit(1024 * 1024);
        addRows({source});
    }
    EXPECT_EQ(rows().count(), 0);
    ASSERT_EQ(reasons.size(), 1);
    EXPECT_TRUE(reasons.first().startsWith(QStringLiteral("its picture could not be tested: ")))
        << reasons.first().toStdString();
    expectIdle();
}

} // namespace
