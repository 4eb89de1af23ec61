// SPDX-License-Identifier: GPL-3.0-or-later
// Edit lists and texts put into a finished movie.
#include "media/headerchange.h"
#include "support/moviebuilder.h"
#include "support/temphome.h"
#include "sys/descriptor.h"

#include <gtest/gtest.h>

#include <string>

namespace tavrix
{

namespace
{

MovieAtoms atomsOf(const test::Bytes& file)
{
    return readMovieAtoms(readAtOf(ByteView(file)), file.size());
}

test::BuiltMovie twoTracks()
{
    test::BuiltMovie movie;
    movie.tracks.resize(2);
    movie.tracks[1].id = 2;
    movie.tracks[1].edits = {{3000, 0}};
    return movie;
}

test::Bytes bytesOf(const QString& path)
{
    const QByteArray read = test::readBytes(path).value_or(QByteArray());
    return {read.begin(), read.end()};
}

TEST(HeaderChange, GivesATrackItsListAndTheMovieAFinerScale)
{
    test::TempFolder folder;
    const test::Bytes built = test::builtFile(twoTracks());
    const QString path = folder.makeFile(
        QStringLiteral("movie.mov"), QByteArray(reinterpret_cast<const char*>(built.data()), qsizetype(built.size())));
    HeaderChange change;
    change.movieScale = 1200;
    change.edits = {{0, {{600, -1, 65536}, {2400, 100, 65536}, {1200, 900, 65536}}}};
    change.userTexts = {{atomType("\251mak"), "Maker"}};
    change.keyTexts = {{"com.apple.quicktime.make", "Maker"}};
    const Descriptor file = openFile(path.toUtf8().constData(), O_RDWR);
    ASSERT_TRUE(changeMovieHeader(file.get(), change));
    const test::Bytes changed = bytesOf(path);
    const MovieAtoms movie = atomsOf(changed);
    ASSERT_TRUE(movie.found && !movie.damaged);
    EXPECT_EQ(movie.timeScale, 1200U);
    EXPECT_EQ(movie.duration, 12000U) << "the longest track";
    ASSERT_EQ(movie.tracks.size(), std::size_t{2});
    EXPECT_EQ(movie.tracks[0].duration, 4200U);
    ASSERT_EQ(movie.tracks[0].edits.size(), std::size_t{3});
    EXPECT_EQ(movie.tracks[0].edits[0].mediaTime, -1);
    EXPECT_EQ(movie.tracks[0].edits[2].mediaTime, 900);
    EXPECT_EQ(movie.tracks[0].edits[2].duration, 1200U);
    EXPECT_EQ(movie.tracks[1].duration, 12000U);
    EXPECT_EQ(movie.tracks[1].edits.at(0).duration, 6000U) << "three thousand in the old scale";
    const std::string text(changed.begin(), changed.end());
    EXPECT_NE(text.find("\251mak"), std::string::npos);
    EXPECT_NE(text.find("com.apple.quicktime.make"), std::string::npos);
    // What lies before the header stays where it is.
    EXPECT_TRUE(std::equal(built.begin(), built.begin() + std::ptrdiff_t(movie.fileOffset) - 8, changed.begin()));
}

TEST(HeaderChange, RefusesAHeaderThatIsNotTheLastThingAndLeavesTheFileAsItIs)
{
    test::TempFolder folder;
    test::BuiltMovie first = twoTracks();
    first.movieFirst = true;
    const test::Bytes built = test::builtFile(first);
    const QString path = folder.makeFile(
        QStringLiteral("movie.mov"), QByteArray(reinterpret_cast<const char*>(built.data()), qsizetype(built.size())));
    HeaderChange change;
    change.userTexts = {{atomType("\251mak"), "Maker"}};
    const Descriptor file = openFile(path.toUtf8().constData(), O_RDWR);
    EXPECT_FALSE(changeMovieHeader(file.get(), change));
    EXPECT_EQ(bytesOf(path), built);
}

} // namespace

} // namespace tavrix
