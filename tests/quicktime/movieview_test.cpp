// SPDX-License-Identifier: GPL-3.0-or-later
#include "quicktime/rules/movieview.h"

#include "fakemedialibrary.h"
#include "support/qtprinters.h"
#include "support/temphome.h"

#include <cmath>

namespace tavrix::test
{

namespace
{

class FakeView final : public MovieView
{
public:
    void setMovie(const std::shared_ptr<Movie>& movie) override
    {
        shown = movie;
        ++changes;
    }
    [[nodiscard]] std::shared_ptr<Movie> movie() const override { return shown; }
    void play() override { calls.append(QStringLiteral("play")); }
    void pause() override { calls.append(QStringLiteral("pause")); }
    [[nodiscard]] MediaTime currentTime() const override { return time; }
    void setCurrentTime(const MediaTime& newTime) override { time = newTime; }
    void movieSettingsChanged() override { calls.append(QStringLiteral("settings")); }

    std::shared_ptr<Movie> shown;
    int changes = 0;
    MediaTime time{0, 600, 0};
    QStringList calls;
};

class MovieViewTest : public testing::Test
{
protected:
    TempFolder folder_;
    FakeLibrary library_;
    FakeView view_;
};

} // namespace

TEST_F(MovieViewTest, showsTheMovieOfThePath)
{
    const QString path = folder_.makeFile(QStringLiteral("a.mov"));
    const std::shared_ptr<FakeMovie> movie = library_.addMovie(path);
    movie->addTrack(QStringLiteral("vide"));
    EXPECT_TRUE(movie2MovieView(path, view_, false));
    EXPECT_EQ(view_.shown, std::static_pointer_cast<Movie>(movie));
    EXPECT_TEXTS(movie->calls,
                 QStringList({QStringLiteral("generate"), QStringLiteral("mode 3"), QStringLiteral("active"),
                              QStringLiteral("hints 0/4000000"), QStringLiteral("hints 0/100000"),
                              QStringLiteral("hints 100/100"), QStringLiteral("hints 10000/10000")}));
}

TEST_F(MovieViewTest, aMovieWithoutVideoGetsNoDisplaySettings)
{
    const QString path = folder_.makeFile(QStringLiteral("a.mov"));
    const std::shared_ptr<FakeMovie> movie = library_.addMovie(path);
    movie->addTrack(QStringLiteral("soun"));
    EXPECT_TRUE(movie2MovieView(path, view_, false));
    EXPECT_TRUE(movie->calls.isEmpty());
}

TEST_F(MovieViewTest, anUnreadableFileEmptiesTheView)
{
    view_.shown = std::make_shared<FakeMovie>(QStringLiteral("/old"));
    const LogCapture log;
    EXPECT_FALSE(movie2MovieView(folder_.path(QStringLiteral("none.mov")), view_, false));
    EXPECT_EQ(view_.shown, nullptr);
    EXPECT_TRUE(log.contains(QStringLiteral("qt movie2MovieVie:-( fin (pas async)")));
}

TEST_F(MovieViewTest, theAsynchronousWayOpensOnceMoreAndFails)
{
    const QString path = folder_.makeFile(QStringLiteral("a.mov"));
    const LogCapture log;
    EXPECT_FALSE(movie2MovieView(path, view_, true));
    EXPECT_EQ(library_.asyncFlags, QList<bool>({false, false}));
    EXPECT_TRUE(log.contains(QStringLiteral("qt movie2MovieVie:-( fin (async)")));
}

TEST_F(MovieViewTest, theMovieOfTheAsynchronousWayIsNotShown)
{
    // The file is missing for the first way, and the second does not ask whether it is there.
    const QString path = folder_.path(QStringLiteral("late.mov"));
    library_.addMovie(path);
    EXPECT_TRUE(movie2MovieView(path, view_, true));
    EXPECT_EQ(view_.shown, nullptr);
    EXPECT_EQ(getQTMOVIE(), nullptr);
}

TEST_F(MovieViewTest, aTildeIsExpanded)
{
    const EnvironmentChange home("HOME", folder_.path().toUtf8().constData());
    const QString path = folder_.makeFile(QStringLiteral("a.mov"));
    library_.addMovie(path);
    EXPECT_TRUE(movie2MovieView(QStringLiteral("~/a.mov"), view_, false));
}

TEST_F(MovieViewTest, controlsReachViewAndMovie)
{
    auto movie = std::make_shared<FakeMovie>(QStringLiteral("/a"));
    movie->length = QTMakeTime(1234567, 600);
    view_.shown = movie;
    movieviewPlay(view_);
    movieviewStop(view_);
    movieviewLoop(view_);
    movieviewVolume(view_, 0.25F);
    EXPECT_TEXTS(view_.calls, QStringList({QStringLiteral("play"), QStringLiteral("pause"), QStringLiteral("settings"),
                                           QStringLiteral("settings")}));
    EXPECT_TRUE(movie->loops());
    EXPECT_FLOAT_EQ(movie->volume(), 0.25F);
    EXPECT_DOUBLE_EQ(movieviewDuration(view_), 2057.612);
    movieviewRelease(view_);
    EXPECT_EQ(view_.shown, nullptr);
}

TEST_F(MovieViewTest, controlsOfAnEmptyViewDoNothing)
{
    movieviewLoop(view_);
    movieviewVolume(view_, 0.5F);
    EXPECT_DOUBLE_EQ(movieviewDuration(view_), 0.0);
    EXPECT_TRUE(view_.calls.isEmpty());
}

TEST_F(MovieViewTest, timesAreSecondsInTheMoviesScale)
{
    view_.time = MediaTime{0, 600, 7};
    movieviewGoToTime(view_, 2.5);
    EXPECT_EQ(view_.time.timeValue, 1500);
    EXPECT_EQ(view_.time.timeScale, 600);
    EXPECT_EQ(view_.time.flags, 7) << "the flags stay";
    EXPECT_DOUBLE_EQ(movieviewCurrentTime(view_), 2.5);
    movieviewGoToTime(view_, 0.9999);
    EXPECT_EQ(view_.time.timeValue, 599) << "truncated";
    movieviewGoToTime(view_, std::nan(""));
    EXPECT_EQ(view_.time.timeValue, 0);
    view_.time.timeScale = 0;
    EXPECT_DOUBLE_EQ(movieviewCurrentTime(view_), 0.0);
}

} // namespace tavrix::test
