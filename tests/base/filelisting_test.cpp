// SPDX-License-Identifier: GPL-3.0-or-later
#include "base/files/filelisting.h"
#include "base/files/posixfile.h"
#include "base/store/settings.h"
#include "support/qtprinters.h"
#include "support/temphome.h"

#include <QFile>

#include <gtest/gtest.h>

#include <fcntl.h>

using namespace tavrix;
using namespace tavrix::test;

namespace
{

class Listing : public testing::Test
{
protected:
    void SetUp() override
    {
        for (const char* name : {"b.mov", "A.MOV", "a.mov", ".hidden", "C d.mts", "dv/x.avi", "dv/deeper/Y.AVI", "e"}) {
            folder.makeFile(QString::fromUtf8(name), "x");
        }
        ASSERT_TRUE(QFile::link(QStringLiteral("nowhere"), folder.path(QStringLiteral("dangling"))));
        ASSERT_TRUE(QFile::link(QStringLiteral(".."), folder.path(QStringLiteral("dv/up"))));
    }
    [[nodiscard]] QStringList paths(std::initializer_list<const char*> names) const
    {
        QStringList list;
        for (const char* name : names) {
            list.append(folder.path(QString::fromUtf8(name)));
        }
        return list;
    }
    TempFolder folder;
};

TEST_F(Listing, DirectEntriesAreSortedAndComplete)
{
    const QStringList expected = paths({".hidden", "A.MOV", "a.mov", "b.mov", "C d.mts", "dangling", "dv", "e"});
    const LogCapture log;
    EXPECT_TEXTS(lsCocoa(folder.path()).value(), expected);
    EXPECT_TEXTS(lsCocoa(folder.path() + u'/').value(), expected);
    ASSERT_EQ(log.lines().size(), 2);
    EXPECT_TRUE(log.lines().first().startsWith(QStringLiteral("lsCocoa             - fin : 8 items : ")));
}

TEST_F(Listing, NothingIsNotAnEmptyFolder)
{
    EXPECT_FALSE(lsCocoa(QString()).has_value());
    EXPECT_TEXTS(lsCocoa(folder.path(QStringLiteral("missing"))).value(), QStringList());
    EXPECT_TEXTS(lsCocoa(folder.path(QStringLiteral("e"))).value(), QStringList());
    EXPECT_TEXTS(lsCocoaRecursive(QString()), QStringList());
    EXPECT_TEXTS(lsGrepCocoa(QString(), QStringLiteral("mov")), QStringList());
    EXPECT_TEXTS(findCocoa(QString(), QStringLiteral("x"), QString()), QStringList());
    EXPECT_TEXT(fileFromFolder(QString(), QStringLiteral("mov")), QStringLiteral(""));
}

TEST_F(Listing, NamesThatAreNoTextAreListedApart)
{
    for (const char* name : {"/caf\xE9.mov", "/a\xFF", "/caf\xC3\xA9.mov"}) {
        const QByteArray path = folder.path().toUtf8() + name;
        const Descriptor made(::open(path.constData(), O_CREAT | O_WRONLY | O_CLOEXEC, 0600));
        ASSERT_TRUE(made.isOpen());
    }
    EXPECT_TEXTS(unspeakableEntries(folder.path()), paths({"a\uFFFD", "caf\uFFFD.mov"}));
    EXPECT_TEXTS(unspeakableEntries(folder.path(QStringLiteral("dv"))), QStringList());
    EXPECT_TEXTS(unspeakableEntries(folder.path(QStringLiteral("missing"))), QStringList());
    EXPECT_TEXTS(unspeakableEntries(QString()), QStringList());
}

TEST_F(Listing, TheWholeTreeWithoutFollowingLinks)
{
    EXPECT_TEXTS(lsCocoaRecursive(folder.path(QStringLiteral("dv"))),
                 paths({"dv/deeper", "dv/deeper/Y.AVI", "dv/up", "dv/x.avi"}));
    EXPECT_TEXTS(lsCocoaRecursive(folder.path(QStringLiteral("dv/"))),
                 paths({"dv/deeper", "dv/deeper/Y.AVI", "dv/up", "dv/x.avi"}));
}

TEST_F(Listing, ByExtensionInAnyCase)
{
    EXPECT_TEXTS(lsGrepCocoa(folder.path(), QStringLiteral("mov")), paths({"A.MOV", "a.mov", "b.mov"}));
    EXPECT_TEXTS(lsGrepCocoa(folder.path(), QStringLiteral("MoV")), paths({"A.MOV", "a.mov", "b.mov"}));
    EXPECT_TEXTS(lsGrepCocoa(folder.path(), QString()), paths({".hidden", "dangling", "dv", "e"}));
    EXPECT_TEXTS(lsGrepCocoa(folder.path(), QStringLiteral("")), paths({".hidden", "dangling", "dv", "e"}));
    EXPECT_TEXTS(lsGrepCocoa(folder.path(), QStringLiteral("xyz")), QStringList());
}

TEST_F(Listing, FindsByTheWholePath)
{
    EXPECT_TEXTS(findCocoa(folder.path(), QStringLiteral("/dv"), QString()), paths({"dv/x.avi", "dv/deeper/Y.AVI"}));
    EXPECT_TEXTS(findCocoa(folder.path(), QStringLiteral(".avi"), QString()), paths({"dv/x.avi"}));
    EXPECT_TEXTS(findCocoa(folder.path(), QStringLiteral(".aVi"), QStringLiteral("i")),
                 paths({"dv/x.avi", "dv/deeper/Y.AVI"}));
    EXPECT_TEXTS(findCocoa(folder.path(), QStringLiteral(".aVi"), QStringLiteral("I")), QStringList());
    EXPECT_TEXTS(findCocoa(folder.path(QStringLiteral("dv")), QString(), QString()),
                 paths({"dv/x.avi", "dv/deeper/Y.AVI"}));
    EXPECT_TEXTS(findCocoa(folder.path(QStringLiteral("dv")), QStringLiteral(""), QString()),
                 paths({"dv/x.avi", "dv/deeper/Y.AVI"}));
    EXPECT_EQ(findCocoa(folder.path(), QString(), QString()).size(), 9);
}

TEST_F(Listing, FirstFileOfAnExtensionInItsExactCase)
{
    EXPECT_TEXT(fileFromFolder(folder.path(), QStringLiteral("mov")), folder.path(QStringLiteral("a.mov")));
    EXPECT_TEXT(fileFromFolder(folder.path() + u'/', QStringLiteral("MOV")), folder.path(QStringLiteral("A.MOV")));
    EXPECT_TEXT(fileFromFolder(folder.path(), QStringLiteral("Mov")), QStringLiteral(""));
    EXPECT_TEXT(fileFromFolder(folder.path(), QString()), QStringLiteral(""));
}

TEST_F(Listing, ALinkIsResolvedToItsFinalTarget)
{
    ASSERT_TRUE(QFile::link(folder.path(QStringLiteral("b.mov")), folder.path(QStringLiteral("one"))));
    ASSERT_TRUE(QFile::link(QStringLiteral("one"), folder.path(QStringLiteral("two"))));
    ASSERT_TRUE(QFile::link(QStringLiteral("loop"), folder.path(QStringLiteral("loop"))));
    EXPECT_TEXT(pathByResolvingAlias(folder.path(QStringLiteral("two"))), folder.path(QStringLiteral("b.mov")));
    EXPECT_TEXT(pathByResolvingAlias(folder.path(QStringLiteral("b.mov"))), folder.path(QStringLiteral("b.mov")));
    EXPECT_TEXT(pathByResolvingAlias(folder.path(QStringLiteral("dangling"))), folder.path(QStringLiteral("dangling")));
    EXPECT_TEXT(pathByResolvingAlias(folder.path(QStringLiteral("loop"))), folder.path(QStringLiteral("loop")));
    EXPECT_TEXT(pathByResolvingAlias(folder.path(QStringLiteral("missing"))), folder.path(QStringLiteral("missing")));
    EXPECT_TEXT(pathByResolvingAlias(QString()), QString());
    EXPECT_TEXT(pathByResolvingAlias(QStringLiteral("")), QStringLiteral(""));
}

struct NameRow {
    std::string name;
    const char* path;
    const char* basename;
    const char* nom;
    const char* dirname;
};

class PathNames : public testing::TestWithParam<NameRow>
{
};

TEST_P(PathNames, AreTheSourceS)
{
    const NameRow& row = GetParam();
    EXPECT_TEXT(fichier_basename(text(row.path)), text(row.basename));
    EXPECT_TEXT(fichier_nom(text(row.path)), text(row.nom));
    EXPECT_TEXT(fichier_dirname(text(row.path)), text(row.dirname));
}

INSTANTIATE_TEST_SUITE_P(
    Paths, PathNames,
    testing::Values(NameRow{"Nothing", nullptr, "", nullptr, ""}, NameRow{"Empty", "", "", "", "/"},
                    NameRow{"Plain", "/M/clip.mts", "clip.mts", "clip", "/M/"}, NameRow{"InRoot", "/x", "x", "x", "/"},
                    NameRow{"Root", "/", "/", "/", "/"}, NameRow{"Relative", "foo.mov", "foo.mov", "foo", "/"},
                    NameRow{"Star", "/*", "*", "*", "/"}, NameRow{"Slash", "/M/sub/", "sub", "sub", "/M/"},
                    NameRow{"DoubleSlash", "//etc", "etc", "etc", "/"},
                    NameRow{"Dots", "/M/a.tar.gz", "a.tar.gz", "a.tar", "/M/"},
                    NameRow{"Recording", "/R/My show.eyetv/s.mpg", "s.mpg", "My show", "/R/"},
                    NameRow{"DeepRecording", "/R/a.eyetv/sub/s.mpg", "s.mpg", "s", "/R/a.eyetv/sub/"},
                    NameRow{"MovieProject", "/P.iMovieProject/Shared Movies/iDVD/x.mov", "x.mov", "x", "/"},
                    NameRow{"MovieProjectEnd", "/a/b/P.iMovieProject/Shared Movies/iDVD", "iDVD", "iDVD", "/a/b/"}),
    rowName<NameRow>);

TEST(PathNamesOfTheHome, ExpandTheTilde)
{
    const EnvironmentChange home("HOME", "/home/someone");
    EXPECT_TEXT(fichier_basename(QStringLiteral("~")), QStringLiteral("someone"));
    EXPECT_TEXT(fichier_dirname(QStringLiteral("~/a.mov")), QStringLiteral("/home/someone/"));
    EXPECT_TEXT(fichier_nom(QStringLiteral("~/a.mov")), QStringLiteral("a"));
}

struct BundleRow {
    std::string name;
    const char* path;
    const char* expected;
};

class RecordingBundle : public testing::TestWithParam<BundleRow>
{
};

TEST_P(RecordingBundle, OnlyDirectlyInside)
{
    EXPECT_TEXT(EyetvBundle(text(GetParam().path)), text(GetParam().expected));
}

INSTANTIATE_TEST_SUITE_P(Paths, RecordingBundle,
                         testing::Values(BundleRow{"Nothing", nullptr, nullptr}, BundleRow{"Empty", "", ""},
                                         BundleRow{"Inside", "/R/a.eyetv/s.mpg", "/R/a.eyetv"},
                                         BundleRow{"DoubleSlash", "/R/a.eyetv//s.mpg", "/R/a.eyetv"},
                                         BundleRow{"Deeper", "/R/a.eyetv/b/s.mpg", "/R/a.eyetv/b/s.mpg"},
                                         BundleRow{"Itself", "/R/a.eyetv", "/R/a.eyetv"},
                                         BundleRow{"ItselfSlash", "/R/a.eyetv/", "/R/a.eyetv/"},
                                         BundleRow{"UpperCase", "/R/a.EyeTV/s.mpg", "/R/a.EyeTV/s.mpg"},
                                         BundleRow{"Plain", "/R/a.mpg", "/R/a.mpg"}),
                         rowName<BundleRow>);

TEST(RecordingBundleLog, WhenDebugging)
{
    setDEBUG(1);
    const LogCapture log;
    EXPECT_TEXT(EyetvBundle(QStringLiteral("/R/a.eyetv/s.mpg")), QStringLiteral("/R/a.eyetv"));
    setDEBUG(0);
    EXPECT_TEXTS(log.lines(), (QStringList{QStringLiteral("EyetvBundle         - debut - /R/a.eyetv/s.mpg"),
                                           QStringLiteral("EyetvBundle         - fin   - /R/a.eyetv")}));
}

} // namespace
