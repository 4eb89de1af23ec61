// SPDX-License-Identifier: GPL-3.0-or-later
#include "quicktime/rules/movieslots.h"

#include "fakemedialibrary.h"
#include "support/qtprinters.h"
#include "support/temphome.h"

#include <QFile>

namespace tavrix::test
{

namespace
{

class MovieSlotsTest : public testing::Test
{
protected:
    QString movieFile(const QString& name)
    {
        QString path = folder_.makeFile(name);
        library_.addMovie(path);
        return path;
    }

    TempFolder folder_;
    FakeLibrary library_;
};

struct AsyncRow {
    const char* name;
    const char* file;
    qint64 bytes;
    bool allowed;
};

class AsyncOpeningTest : public testing::TestWithParam<AsyncRow>
{
};

} // namespace

TEST_F(MovieSlotsTest, openingTheSamePathTwiceOpensTheFileOnce)
{
    const QString path = movieFile(QStringLiteral("a.mov"));
    EXPECT_TRUE(qtkitInstantiate(path));
    EXPECT_TRUE(qtkitInstantiate(path));
    EXPECT_EQ(library_.opened.size(), 1);
    EXPECT_TEXT(getQTMOVIESTR(), path);
    EXPECT_EQ(getQTMOVIE(), std::static_pointer_cast<Movie>(library_.movies.value(path)));
}

TEST_F(MovieSlotsTest, anotherSpellingOfThePathOpensItAgain)
{
    const QString path = movieFile(QStringLiteral("a.mov"));
    QString spelled = path;
    spelled.insert(spelled.lastIndexOf(QLatin1Char('/')), QLatin1Char('/'));
    library_.addMovie(spelled);
    EXPECT_TRUE(qtkitInstantiate(path));
    EXPECT_TRUE(qtkitInstantiate(spelled));
    EXPECT_EQ(library_.opened.size(), 2);
    EXPECT_TEXT(getQTMOVIESTR(), spelled);
}

TEST_F(MovieSlotsTest, nothingIsNotOpened)
{
    EXPECT_FALSE(qtkitInstantiate(QString()));
    EXPECT_FALSE(qtkitMovieviewInstantiate(QString()));
    EXPECT_EQ(qtkitMovieInstantiateAsync(QString()), nullptr);
    EXPECT_TRUE(library_.opened.isEmpty());
}

TEST_F(MovieSlotsTest, nothingLeavesTheCurrentMovie)
{
    const QString path = movieFile(QStringLiteral("a.mov"));
    EXPECT_TRUE(qtkitInstantiate(path));
    EXPECT_FALSE(qtkitInstantiate(QString()));
    EXPECT_NE(getQTMOVIE(), nullptr);
}

TEST_F(MovieSlotsTest, aFileThatVanishedReleasesTheMovie)
{
    const QString path = movieFile(QStringLiteral("a.mov"));
    ASSERT_TRUE(qtkitInstantiate(path));
    ASSERT_TRUE(QFile::remove(path));
    const LogCapture log;
    EXPECT_FALSE(qtkitInstantiate(path));
    EXPECT_EQ(getQTMOVIE(), nullptr);
    EXPECT_TRUE(getQTMOVIESTR().isNull());
    EXPECT_TRUE(log.contains(QStringLiteral("qt qtkitInstantiate :-( fin - no file at path : ") + path));
}

TEST_F(MovieSlotsTest, anUnreadableFileLeavesNoMovie)
{
    const QString good = movieFile(QStringLiteral("a.mov"));
    const QString bad = folder_.makeFile(QStringLiteral("b.mov"));
    ASSERT_TRUE(qtkitInstantiate(good));
    const LogCapture log;
    EXPECT_FALSE(qtkitInstantiate(bad));
    EXPECT_EQ(getQTMOVIE(), nullptr);
    EXPECT_TEXTS(log.lines(),
                 QStringList({QStringLiteral("Erreur instantiate  : le fichier n'existe pas OU pas lisible OU echec"),
                              QStringLiteral("qt qtkitInstantia:-( fin - failure")}));
}

TEST_F(MovieSlotsTest, aMovieWithoutPathIsNotReused)
{
    const QString path = movieFile(QStringLiteral("a.mov"));
    ASSERT_TRUE(qtkitInstantiate(path));
    setQTMOVIESTR(QString());
    EXPECT_TRUE(qtkitInstantiate(path));
    EXPECT_EQ(library_.opened.size(), 2);
}

TEST_F(MovieSlotsTest, logsNewAndUsedAgain)
{
    const QString path = movieFile(QStringLiteral("a.mov"));
    const DebugLogging debug;
    const LogCapture log;
    EXPECT_TRUE(qtkitInstantiate(path));
    EXPECT_TRUE(qtkitInstantiate(path));
    EXPECT_TRUE(log.contains(QStringLiteral("nouveau             :-) ") + path));
    EXPECT_TRUE(log.contains(QStringLiteral("re-utilisation      : ") + path));
}

TEST_F(MovieSlotsTest, releaseClearsThePathOnlyWithAMovie)
{
    setQTMOVIEVIEWSTR(QStringLiteral("/some/path"));
    QTMOVIEVIEWrelease();
    EXPECT_TEXT(getQTMOVIEVIEWSTR(), QStringLiteral("/some/path"));
    setQTMOVIEVIEW(std::make_shared<FakeMovie>(QStringLiteral("/some/path")));
    QTMOVIEVIEWrelease();
    EXPECT_TRUE(getQTMOVIEVIEWSTR().isNull());
    EXPECT_EQ(getQTMOVIEVIEW(), nullptr);
}

TEST_F(MovieSlotsTest, theViewMovieIsReusedOnlyWhenItsPathWasStored)
{
    const QString path = movieFile(QStringLiteral("a.mov"));
    const QString other = movieFile(QStringLiteral("b.mov"));
    EXPECT_TRUE(qtkitMovieviewInstantiate(path));
    EXPECT_TRUE(getQTMOVIEVIEWSTR().isNull());
    EXPECT_TRUE(qtkitInstantiate(other));
    EXPECT_TRUE(qtkitMovieviewInstantiate(path));
    EXPECT_EQ(library_.opened.size(), 3) << "without its path the view movie cannot be known again";
    setQTMOVIEVIEWSTR(path);
    EXPECT_TRUE(qtkitInstantiate(other));
    EXPECT_TRUE(qtkitMovieviewInstantiate(path));
    EXPECT_EQ(library_.opened.size(), 4);
    EXPECT_EQ(getQTMOVIEVIEW(), std::static_pointer_cast<Movie>(library_.movies.value(path)));
}

TEST_F(MovieSlotsTest, theViewPathIsLogged)
{
    const DebugLogging debug;
    const LogCapture log;
    EXPECT_TRUE(ac_qtMovieviewPathStr().isNull());
    setQTMOVIEVIEWSTR(QStringLiteral("/a"));
    EXPECT_TEXT(ac_qtMovieviewPathStr(), QStringLiteral("/a"));
    EXPECT_TEXTS(log.lines(),
                 QStringList({QStringLiteral("QTMOVIEVIEWSTR : nil"), QStringLiteral("QTMOVIEVIEWSTR : /a")}));
}

TEST_P(AsyncOpeningTest, isAllowedForLargeFilesOfSlowKinds)
{
    const AsyncRow& row = GetParam();
    const TempFolder folder;
    const QString path = folder.makeFile(text(row.file));
    ASSERT_TRUE(QFile::resize(path, row.bytes)) << "a sparse file";
    FakeLibrary library;
    library.addMovie(path);
    EXPECT_TRUE(qtkitInstantiate(path));
    EXPECT_EQ(library.asyncFlags, QList<bool>{row.allowed});
}

constexpr qint64 megabyte = 1048576;
INSTANTIATE_TEST_SUITE_P(Files, AsyncOpeningTest,
                         testing::Values(AsyncRow{"largeAvi", "a.avi", 150 * megabyte, true},
                                         AsyncRow{"largeFlv", "a.flv", 150 * megabyte, true},
                                         AsyncRow{"largeMkv", "a.mkv", 150 * megabyte, true},
                                         AsyncRow{"largeMov", "a.mov", 150 * megabyte, false},
                                         AsyncRow{"smallAvi", "a.avi", 50 * megabyte, false},
                                         AsyncRow{"upperCaseAvi", "a.AVI", 150 * megabyte, false},
                                         AsyncRow{"exactlyTheLimit", "a.avi", 100 * megabyte, false},
                                         AsyncRow{"oneByteMore", "a.avi", 100 * megabyte + 1, true}),
                         rowName<AsyncRow>);

} // namespace tavrix::test
