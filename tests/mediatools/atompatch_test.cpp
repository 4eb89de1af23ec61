// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/atompatch/atompatch.h"

#include "support/moviebuilder.h"
#include "support/ordinaryuser.h"
#include "support/qtprinters.h"
#include "support/temphome.h"

#include <QFile>

#include <sstream>

namespace tavrix::test
{

namespace
{

struct Outcome {
    AtomPatchResult result;
    std::string out;
    std::string errors;
};

Outcome run(const std::vector<std::string>& arguments)
{
    std::ostringstream out;
    std::ostringstream errors;
    const AtomPatchResult result = runAtomPatch(arguments, out, errors);
    return {result, out.str(), errors.str()};
}

Outcome patch(const QString& path)
{
    return run({"-i", path.toStdString(), "-f", "nsav", "-o", "self"});
}

QByteArray movieBytes(const BuiltMovie& movie)
{
    const Bytes bytes = builtFile(movie);
    return QByteArray(reinterpret_cast<const char*>(bytes.data()), static_cast<qsizetype>(bytes.size()));
}

BuiltMovie markedMovie()
{
    BuiltMovie movie;
    movie.nsav = 1;
    movie.tracks.emplace_back();
    return movie;
}

} // namespace

TEST(AtomPatchTest, clearsTheMarkAndNothingElse)
{
    const TempFolder folder;
    BuiltMovie movie = markedMovie();
    for (int variant = 0; variant < 4; ++variant) {
        movie.longSizes = variant == 1;
        movie.openEnded = variant == 2;
        movie.movieFirst = variant == 3;
        const QByteArray before = movieBytes(movie);
        const QString path = folder.makeFile(QStringLiteral("a%1.mov").arg(variant), before);
        const Outcome outcome = patch(path);
        EXPECT_EQ(outcome.result, AtomPatchResult::Done) << outcome.errors;
        EXPECT_EQ(outcome.out, "nsav cleared\n");
        QByteArray expected = before;
        expected[expected.indexOf("nsav") + 7] = 0;
        EXPECT_EQ(readBytes(path), expected);
        EXPECT_EQ(patch(path).out, "nothing to clear\n");
        EXPECT_EQ(readBytes(path), expected);
    }
}

TEST(AtomPatchTest, clearsEveryMark)
{
    const TempFolder folder;
    QByteArray mark("\0\0\0\x0cnsav\0\0\0\x01", 12);
    const auto atom = [](const char* type, const QByteArray& payload) {
        QByteArray bytes("\0\0\0\0", 4);
        bytes[3] = static_cast<char>(payload.size() + 8);
        return bytes + type + payload;
    };
    const QString path = folder.makeFile(QStringLiteral("a.mov"), atom("moov", atom("udta", mark + mark)));
    EXPECT_EQ(patch(path).result, AtomPatchResult::Done);
    mark[11] = 0;
    EXPECT_EQ(readBytes(path), atom("moov", atom("udta", mark + mark)));
}

TEST(AtomPatchTest, aMovieWithoutMarkIsLeftAlone)
{
    const TempFolder folder;
    BuiltMovie movie = markedMovie();
    movie.nsav = -1;
    const QString path = folder.makeFile(QStringLiteral("a.mov"), movieBytes(movie));
    const Outcome outcome = patch(path);
    EXPECT_EQ(outcome.result, AtomPatchResult::Done);
    EXPECT_EQ(outcome.out, "nothing to clear\n");
    EXPECT_EQ(readBytes(path), movieBytes(movie));
}

TEST(AtomPatchTest, everyDamagedFileIsLeftAlone)
{
    const TempFolder folder;
    const QByteArray whole = movieBytes(markedMovie());
    for (qsizetype size = 0; size < whole.size(); size += 7) {
        const QString path = folder.makeFile(QStringLiteral("a.mov"), whole.left(size));
        const Outcome outcome = patch(path);
        EXPECT_EQ(outcome.result, AtomPatchResult::Refused) << size;
        EXPECT_FALSE(outcome.errors.empty());
        EXPECT_EQ(readBytes(path), whole.left(size));
    }
}

TEST(AtomPatchTest, damageDeepInTheMovieIsNoticed)
{
    const TempFolder folder;
    const QByteArray whole = movieBytes(markedMovie());
    struct Damage {
        const char* atom;
        int byte; // from the type
        char value;
    };
    // Sizes that reach past what holds the atom or are 0, entry counts that the table does not hold, a lost header.
    const Damage damages[] = {{"trak", -4, 0x7F}, {"trak", -1, 0}, {"mdia", -3, 0x7F}, {"minf", -2, 0x7F},
                              {"stbl", -2, 0x7F}, {"stsd", -3, 1}, {"stts", -3, 1},    {"stsc", -3, 1},
                              {"stts", 8, 1},     {"stco", 9, 1},  {"stsc", 10, 1},    {"mvhd", 0, 'x'},
                              {"mdhd", -1, 9},    {"nsav", -1, 10}};
    for (const Damage& damage : damages) {
        QByteArray bytes = whole;
        const qsizetype at = bytes.indexOf(damage.atom);
        ASSERT_GE(at, 4) << damage.atom;
        bytes[at + damage.byte] = damage.value;
        if (damage.value == 0) {
            bytes.replace(at - 4, 4, QByteArray(4, '\0'));
        }
        const QString path = folder.makeFile(QStringLiteral("a.mov"), bytes);
        EXPECT_EQ(patch(path).result, AtomPatchResult::Refused) << damage.atom << damage.byte;
        EXPECT_EQ(readBytes(path), bytes);
    }
}

TEST(AtomPatchTest, otherFilesAreLeftAlone)
{
    const TempFolder folder;
    const QByteArray texts[] = {"just a text that is longer than an atom's header", QByteArray(4096, '\0'),
                                QByteArray("\0\0\0\x08moov", 8) + QByteArray(5, 'x') + QByteArray(20, 'y'),
                                QByteArray("\0\0\0\x14moov\0\0\0\x0c"
                                           "cmov\0\0\0\0",
                                           20)};
    for (const QByteArray& bytes : texts) {
        const QString path = folder.makeFile(QStringLiteral("a.mov"), bytes);
        EXPECT_EQ(patch(path).result, AtomPatchResult::Refused) << bytes.left(20).toStdString();
        EXPECT_EQ(readBytes(path), bytes);
    }
    EXPECT_EQ(patch(folder.path(QStringLiteral("none.mov"))).result, AtomPatchResult::Refused);
    EXPECT_EQ(patch(folder.path()).result, AtomPatchResult::Refused);
}

TEST(AtomPatchTest, aFileThatMayNotBeWrittenIsRefused)
{
    const OrdinaryUser user;
    if (!user.isBound()) {
        GTEST_SKIP() << "this superuser may not lay down its privileges";
    }
    const TempFolder folder;
    const QString path = folder.makeFile(QStringLiteral("a.mov"), movieBytes(markedMovie()));
    QFile::setPermissions(path, QFile::ReadOwner);
    EXPECT_EQ(patch(path).result, AtomPatchResult::Refused);
}

TEST(AtomPatchTest, wrongUsageIsTold)
{
    const std::vector<std::vector<std::string>> wrong{{},
                                                      {"-i"},
                                                      {"-i", "a.mov"},
                                                      {"-i", "a.mov", "-f", "free", "-o", "self"},
                                                      {"-i", "a.mov", "-f", "nsav", "-o", "b.mov"},
                                                      {"-i", "a.mov", "-f", "nsav"},
                                                      {"-x", "a.mov", "-f", "nsav", "-o", "self"},
                                                      {"-f", "nsav", "-o", "self"}};
    for (const std::vector<std::string>& arguments : wrong) {
        const Outcome outcome = run(arguments);
        EXPECT_EQ(outcome.result, AtomPatchResult::Usage);
        EXPECT_NE(outcome.errors.find("usage: atompatch"), std::string::npos);
        EXPECT_TRUE(outcome.out.empty());
    }
}

TEST(AtomPatchTest, helpGoesToTheOutput)
{
    const Outcome outcome = run({"--help"});
    EXPECT_EQ(outcome.result, AtomPatchResult::Done);
    EXPECT_NE(outcome.out.find("usage: atompatch -i FILE -f nsav -o self"), std::string::npos);
    EXPECT_TRUE(outcome.errors.empty());
}

} // namespace tavrix::test
