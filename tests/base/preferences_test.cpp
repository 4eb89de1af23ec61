// SPDX-License-Identifier: GPL-3.0-or-later
#include "base/store/preferences.h"
#include "support/qtprinters.h"
#include "support/temphome.h"
#include "support/waituntil.h"

#include <QDir>
#include <QFile>

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <time.h>

using namespace tavrix;
using namespace tavrix::test;

namespace
{

QString key(const char* name)
{
    return QString::fromUtf8(name);
}

// A home of its own for every test.
class Preferences : public testing::Test
{
protected:
    void SetUp() override { prefReload(); }
    void TearDown() override { prefReload(); }

    static void restart()
    {
        ASSERT_TRUE(prefSynchronize());
        prefReload();
    }
    TempFolder folder;
    EnvironmentChange home{"HOME", QFile::encodeName(folder.path()).constData()};
};

TEST_F(Preferences, AFlagReadsAsItsDecimalText)
{
    EXPECT_TRUE(prefWrite(key("encDeb"), 1));
    EXPECT_TEXT(prefRead(key("encDeb")), key("1"));
    EXPECT_TEXT(prefRead(key("missing")), key(""));
    EXPECT_TEXT(prefRead(QString()), key(""));
}

struct TextRow {
    std::string name;
    QVariant value;
    const char* expected;
};

class PreferenceTexts : public Preferences, public testing::WithParamInterface<TextRow>
{
};

TEST_P(PreferenceTexts, AreTheSameBeforeAndAfterARestart)
{
    EXPECT_TRUE(prefWrite(key("k"), GetParam().value));
    EXPECT_TRUE(prefWriteChildDico(key("d"), key("c"), GetParam().value));
    for (int round = 0; round < 2; ++round) {
        EXPECT_TEXT(prefRead(key("k")), text(GetParam().expected));
        EXPECT_TEXT(prefReadChildDico(key("d"), key("c")), text(GetParam().expected));
        restart();
    }
}

INSTANTIATE_TEST_SUITE_P(Values, PreferenceTexts,
                         testing::Values(TextRow{"Int", 3, "3"}, TextRow{"Negative", -1, "-1"},
                                         TextRow{"Long", qint64{12345678901}, "12345678901"},
                                         TextRow{"True", true, "1"}, TextRow{"False", false, "0"},
                                         TextRow{"Float", 1.77F, "1.77"}, TextRow{"Double", 0.1, "0.1"},
                                         TextRow{"Text", key("a/b é"), "a/b é"}, TextRow{"Empty", key(""), ""},
                                         TextRow{"Blanks", key("  x "), "  x "}),
                         rowName<TextRow>);

TEST_F(Preferences, MissingArgumentsAreRefused)
{
    EXPECT_FALSE(prefWrite(QString(), 1));
    EXPECT_FALSE(prefWrite(key("k"), QVariant()));
    EXPECT_FALSE(prefWrite(key("k"), QVariant(QString())));
    EXPECT_FALSE(prefWriteDico(QString(), QVariantMap{}));
    EXPECT_FALSE(prefWriteChildDico(QString(), key("c"), 1));
    EXPECT_FALSE(prefWriteChildDico(key("k"), QString(), 1));
    EXPECT_FALSE(prefWriteChildDico(key("k"), key("c"), QVariant()));
    EXPECT_TRUE(prefDelete(QString()));
    EXPECT_TRUE(prefDeleteChildDico(QString(), key("c")));
    EXPECT_TRUE(prefAllKeys().isEmpty());
}

TEST_F(Preferences, AMissingDictionaryRemovesNothing)
{
    EXPECT_TRUE(prefWrite(key("k"), key("v")));
    EXPECT_FALSE(prefWriteDico(key("k"), std::nullopt));
    EXPECT_TEXT(prefRead(key("k")), key("v"));
}

TEST_F(Preferences, DeletingIsAlwaysTrue)
{
    EXPECT_TRUE(prefWrite(key("k"), 1));
    EXPECT_TRUE(prefDelete(key("k")));
    EXPECT_TRUE(prefDelete(key("k")));
    EXPECT_TEXT(prefRead(key("k")), key(""));
    EXPECT_FALSE(prefAllKeys().contains(key("k")));
}

TEST_F(Preferences, AnEmptyDictionaryIsNotAMissingOne)
{
    EXPECT_FALSE(prefReadDico(key("d")).has_value());
    EXPECT_FALSE(prefReadDico(QString()).has_value());
    EXPECT_TRUE(prefWriteDico(key("d"), QVariantMap{}));
    ASSERT_TRUE(prefReadDico(key("d")).has_value());
    EXPECT_TRUE(prefReadDico(key("d"))->isEmpty());
    restart();
    EXPECT_TRUE(prefReadDico(key("d")).has_value());
    EXPECT_TRUE(prefWrite(key("t"), key("text")));
    EXPECT_FALSE(prefReadDico(key("t")).has_value());
}

TEST_F(Preferences, AChildKeepsTheOthers)
{
    EXPECT_TRUE(prefWriteChildDico(key("d"), key("a"), key("1")));
    EXPECT_EQ(prefReadDico(key("d"))->size(), 1);
    EXPECT_TRUE(prefWriteChildDico(key("d"), key("b"), key("2")));
    EXPECT_TRUE(prefWriteChildDico(key("d"), key("a"), key("3")));
    EXPECT_TEXT(prefReadChildDico(key("d"), key("a")), key("3"));
    EXPECT_TEXT(prefReadChildDico(key("d"), key("b")), key("2"));
    EXPECT_TEXT(prefReadChildDico(key("d"), key("c")), key(""));
    EXPECT_TEXT(prefReadChildDico(key("x"), key("a")), key(""));
    EXPECT_TEXT(prefReadChildDico(key("d"), QString()), key(""));
    EXPECT_TRUE(prefDeleteChildDico(key("d"), key("a")));
    EXPECT_TRUE(prefDeleteChildDico(key("d"), key("a")));
    EXPECT_TRUE(prefDeleteChildDico(key("x"), key("a")));
    EXPECT_TEXTS(prefReadDico(key("d"))->keys(), QStringList{key("b")});
}

TEST_F(Preferences, AChildReplacesWhatIsNoDictionary)
{
    EXPECT_TRUE(prefWrite(key("d"), key("text")));
    EXPECT_TEXT(prefReadChildDico(key("d"), key("a")), key(""));
    EXPECT_TRUE(prefDeleteChildDico(key("d"), key("a")));
    EXPECT_TEXT(prefRead(key("d")), key("text"));
    EXPECT_TRUE(prefWriteChildDico(key("d"), key("a"), 1));
    EXPECT_TEXT(prefReadChildDico(key("d"), key("a")), key("1"));
}

TEST_F(Preferences, AReadDictionaryIsACopy)
{
    EXPECT_TRUE(prefWriteChildDico(key("d"), key("a"), 1));
    const QVariantMap before = prefReadDico(key("d")).value();
    EXPECT_TRUE(prefWriteChildDico(key("d"), key("b"), 2));
    EXPECT_EQ(before.size(), 1);
}

// Processor time, so that a busy machine does not fail the test.
double processorSeconds()
{
    timespec time{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) / 1e9;
}

TEST_F(Preferences, ManyChildrenAreCheap)
{
    const double before = processorSeconds();
    for (int index = 0; index < 20000; ++index) {
        prefWriteChildDico(key("queue"), QString::number(index), QStringLiteral("/a/path/to/some/clip.mts"));
    }
    // A copy of the dictionary per child takes more than ten seconds.
    EXPECT_LT(processorSeconds() - before, 2.0);
    EXPECT_EQ(prefReadDico(key("queue"))->size(), 20000);
}

TEST_F(Preferences, AreSavedPrivatelyWhenSynchronised)
{
    EXPECT_TEXT(preferencesPath().left(folder.path().size() + 21), folder.path() + key("/Library/Preferences/"));
    EXPECT_TRUE(preferencesPath().endsWith(key(".plist")));
    EXPECT_TRUE(prefSynchronize());
    EXPECT_FALSE(itemExists(preferencesPath()));
    EXPECT_TRUE(prefWrite(key("prefColor"), 2));
    EXPECT_TRUE(prefSynchronize());
    struct stat status {
    };
    ASSERT_EQ(stat(QFile::encodeName(preferencesPath()).constData(), &status), 0);
    EXPECT_EQ(status.st_mode & 07777U, 0600U);
    EXPECT_TRUE(readBytes(preferencesPath()).value().contains("<key>prefColor</key>"));
    EXPECT_EQ(QDir(folder.path(key("Library/Preferences"))).entryList(QDir::Files | QDir::Hidden).size(), 1);
}

TEST_F(Preferences, AreSavedByThemselvesSoonAfterAChange)
{
    EXPECT_TRUE(prefWrite(key("prefColor"), 2));
    EXPECT_FALSE(itemExists(preferencesPath()));
    EXPECT_TRUE(waitUntil([] { return itemExists(preferencesPath()); }));
    EXPECT_TRUE(prefDelete(key("prefColor")));
    EXPECT_TRUE(waitUntil([] { return !readBytes(preferencesPath()).value_or(QByteArray()).contains("prefColor"); }));
}

TEST_F(Preferences, SurviveARestart)
{
    EXPECT_TRUE(prefWrite(key("prefColor"), 2));
    EXPECT_TRUE(prefWriteDico(key("q"), QVariantMap{{key("0"), key("/a b/é.mts")}, {key("1"), key("/c\n\"<&>.mts")}}));
    restart();
    EXPECT_TEXT(prefRead(key("prefColor")), key("2"));
    EXPECT_TEXT(prefReadChildDico(key("q"), key("0")), key("/a b/é.mts"));
    EXPECT_TEXT(prefReadChildDico(key("q"), key("1")), key("/c\n\"<&>.mts"));
    EXPECT_TEXTS(prefAllKeys(), (QStringList{key("prefColor"), key("q")}));
}

TEST_F(Preferences, AreForgottenWithoutSavingOnReload)
{
    EXPECT_TRUE(prefWrite(key("k"), 1));
    prefReload();
    EXPECT_TEXT(prefRead(key("k")), key(""));
    EXPECT_TRUE(prefSynchronize());
    EXPECT_FALSE(itemExists(preferencesPath()));
}

TEST_F(Preferences, AnEntryOfNothingReadsAsMissing)
{
    EXPECT_TRUE(prefWriteDico(key("d"), QVariantMap{{key("a"), QVariant(QString())}, {key("b"), QVariant()}}));
    for (int round = 0; round < 2; ++round) {
        EXPECT_TEXT(prefReadChildDico(key("d"), key("a")), key(""));
        EXPECT_TEXT(prefReadChildDico(key("d"), key("b")), key(""));
        restart();
    }
}

TEST_F(Preferences, ADamagedFileIsSetAside)
{
    for (const QByteArray& bytes : {QByteArray("<plist version=\"1.0\"><dict><key>a"), QByteArray(),
                                    QByteArray("<plist version=\"1.0\"><array/></plist>")}) {
        folder.makeFolder(key("Library/Preferences"));
        ASSERT_TRUE(writeBytes(preferencesPath(), bytes));
        prefReload();
        EXPECT_TEXT(prefRead(key("a")), key(""));
        EXPECT_EQ(readBytes(preferencesPath() + key(".damaged")), bytes);
        EXPECT_TRUE(prefWrite(key("a"), 1));
        EXPECT_TRUE(prefSynchronize());
        EXPECT_EQ(readBytes(preferencesPath() + key(".damaged")), bytes);
        restart();
        EXPECT_TEXT(prefRead(key("a")), key("1"));
    }
}

class HarmfulPreferences : public Preferences
{
protected:
    void expectAStartWithDefaults(const QByteArray& bytes)
    {
        folder.makeFolder(key("Library/Preferences"));
        ASSERT_TRUE(writeBytes(preferencesPath(), bytes));
        prefReload();
        const LogCapture log;
        EXPECT_TEXT(prefRead(key("k")), key(""));
        EXPECT_TRUE(log.contains(key("preferences         :-( damaged: ") + preferencesPath()));
        EXPECT_EQ(readBytes(preferencesPath() + key(".damaged")), bytes);
        EXPECT_FALSE(itemExists(preferencesPath()));
    }
};

TEST_F(HarmfulPreferences, ANulInsideATextAbortedEveryStart)
{
    QByteArray bytes("<plist version=\"1.0\"><dict><key>k</key><string>a.b</string></dict></plist>");
    bytes.replace('.', '\0');
    ASSERT_NO_FATAL_FAILURE(expectAStartWithDefaults(bytes));
}

TEST_F(HarmfulPreferences, ThousandsOfListsInListsOverflewTheStackAtEveryStart)
{
    constexpr qsizetype depth = 300000;
    ASSERT_NO_FATAL_FAILURE(expectAStartWithDefaults("<plist version=\"1.0\">" + QByteArray("<array>").repeated(depth) +
                                                     QByteArray("</array>").repeated(depth) + "</plist>"));
}

TEST_F(Preferences, ADamagedFileThatCannotBeSetAsideIsNotOverwritten)
{
    folder.makeFile(key("x"));
    const QString damaged = preferencesPath() + key(".damaged");
    ASSERT_TRUE(QDir().mkpath(damaged + key("/not empty")));
    ASSERT_TRUE(writeBytes(preferencesPath(), "damaged"));
    prefReload();
    EXPECT_TRUE(prefWrite(key("a"), 1));
    EXPECT_FALSE(prefSynchronize());
    EXPECT_EQ(readBytes(preferencesPath()), QByteArray("damaged"));
    ASSERT_TRUE(QDir(damaged).removeRecursively());
    EXPECT_TRUE(prefSynchronize());
    EXPECT_EQ(readBytes(damaged), QByteArray("damaged"));
    EXPECT_TRUE(readBytes(preferencesPath()).value().startsWith("<?xml"));
}

TEST_F(Preferences, AreNotWrittenThroughALink)
{
    const QString elsewhere = folder.makeFile(key("elsewhere"), "<plist version=\"1.0\"><dict/></plist>");
    const QByteArray before = readBytes(elsewhere).value();
    folder.makeFolder(key("Library/Preferences"));
    ASSERT_TRUE(QFile::link(elsewhere, preferencesPath()));
    EXPECT_TRUE(prefWrite(key("a"), 1));
    EXPECT_FALSE(prefSynchronize());
    EXPECT_EQ(readBytes(elsewhere), before);
    EXPECT_TEXT(prefRead(key("a")), key("1"));
    ASSERT_TRUE(QFile::remove(preferencesPath()));
    EXPECT_TRUE(prefSynchronize());
    EXPECT_TRUE(itemExists(preferencesPath()));
}

TEST_F(Preferences, AFailedSaveStaysPending)
{
    folder.makeFile(key("Library"), "in the way");
    EXPECT_TRUE(prefWrite(key("a"), 1));
    const LogCapture log;
    EXPECT_FALSE(prefSynchronize());
    EXPECT_FALSE(log.lines().isEmpty());
    EXPECT_FALSE(log.contains(key("hasUnappliedChanges :-(")));
    EXPECT_TRUE(prefDelete(key("b")));
    EXPECT_EQ(log.lines().count(key("hasUnappliedChanges :-(")), 1);
    ASSERT_TRUE(QFile::remove(folder.path(key("Library"))));
    EXPECT_TRUE(prefSynchronize());
    EXPECT_TRUE(prefWrite(key("b"), 1));
    EXPECT_TRUE(prefDelete(key("b")));
    EXPECT_EQ(log.lines().count(key("hasUnappliedChanges :-(")), 1);
    restart();
    EXPECT_TEXT(prefRead(key("a")), key("1"));
}

} // namespace
