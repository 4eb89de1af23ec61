// SPDX-License-Identifier: GPL-3.0-or-later
#include "base/text/paths.h"

#include "support/qtprinters.h"
#include "support/temphome.h"

#include <pwd.h>
#include <unistd.h>
#include <vector>

namespace tavrix
{
namespace
{

using test::text;

struct Row {
    const char* path;
    const char* expected;
};

void expectRows(QString (*rule)(const QString&), const std::vector<Row>& rows)
{
    for (const Row& row : rows) {
        EXPECT_TEXT(rule(text(row.path)), text(row.expected)) << test::shown(text(row.path));
    }
}

TEST(Paths, LastComponent)
{
    expectRows(lastPathComponent, {{"/tmp/scratch.tiff", "scratch.tiff"},
                                   {"/tmp/", "tmp"},
                                   {"///", "/"},
                                   {"/", "/"},
                                   {"", ""},
                                   {nullptr, nullptr},
                                   {"a/b/", "b"},
                                   {"a", "a"},
                                   {"//a//b//", "b"}});
}

TEST(Paths, DeletingTheLastComponent)
{
    expectRows(stringByDeletingLastPathComponent, {{"/tmp/x", "/tmp"},
                                                   {"/tmp/", "/"},
                                                   {"/x", "/"},
                                                   {"//etc", "/"},
                                                   {"foo", ""},
                                                   {"/", "/"},
                                                   {"", ""},
                                                   {nullptr, nullptr},
                                                   {"a/b/", "a"},
                                                   {"/etc/", "/"},
                                                   {"/a//b//c", "/a/b"}});
}

TEST(Paths, Extension)
{
    expectRows(pathExtension, {{"a.tar.gz", "gz"},
                               {".hidden", ""},
                               {"/x/.hidden", ""},
                               {".hidden.txt", "txt"},
                               {"a.", ""},
                               {"foo.mov/", "mov"},
                               {"a..mov", "mov"},
                               {"/a.b/c", ""},
                               {"..", ""},
                               {"a. b", " b"},
                               {"/", ""},
                               {"", ""},
                               {nullptr, nullptr}});
}

TEST(Paths, DeletingTheExtension)
{
    expectRows(stringByDeletingPathExtension, {{"/tmp/scratch.tiff", "/tmp/scratch"},
                                               {"a.tar.gz", "a.tar"},
                                               {".hidden", ".hidden"},
                                               {"a.", "a"},
                                               {"a..mov", "a."},
                                               {"scratch.bundle/", "scratch"},
                                               {"/", "/"},
                                               {"foo", "foo"},
                                               {"/a.b/c", "/a.b/c"},
                                               {"..", ".."},
                                               {"", ""},
                                               {nullptr, nullptr}});
}

TEST(Paths, AppendingAComponent)
{
    struct Pair {
        const char* path;
        const char* component;
        const char* expected;
    };
    const std::vector<Pair> rows = {{"/a", "b", "/a/b"},     {"/a/", "b", "/a/b"},  {"/a", "/b", "/a/b"},
                                    {"/a//", "//b", "/a/b"}, {"", "b", "b"},        {"/a", "", "/a"},
                                    {"/", "b", "/b"},        {"/a", "/", "/a"},     {"a", "b/c", "a/b/c"},
                                    {nullptr, "b", nullptr}, {"/a", nullptr, "/a"}, {"", "", ""}};
    for (const Pair& row : rows) {
        EXPECT_TEXT(stringByAppendingPathComponent(text(row.path), text(row.component)), text(row.expected))
            << test::shown(text(row.path));
    }
}

TEST(Paths, TildeIsTheHomeOnlyAtTheStart)
{
    const test::EnvironmentChange home("HOME", "/home/me/");
    expectRows(stringByExpandingTildeInPath, {{"~", "/home/me"},
                                              {"~/", "/home/me"},
                                              {"~/a/", "/home/me/a"},
                                              {"~//a//b", "/home/me/a/b"},
                                              {"/foo/", "/foo/"},
                                              {"a~", "a~"},
                                              {"/a/~/b", "/a/~/b"},
                                              {"~no such user/x", "~no such user/x"},
                                              {"", ""},
                                              {nullptr, nullptr}});
}

TEST(Paths, TildeWithAUserNameAsksTheUserDatabase)
{
    const test::EnvironmentChange home("HOME", "/home/me");
    const passwd* root = getpwnam("root");
    ASSERT_NE(root, nullptr);
    EXPECT_TEXT(stringByExpandingTildeInPath(text("~root/x")), QString::fromLocal8Bit(root->pw_dir) + text("/x"));
    EXPECT_TEXT(stringByExpandingTildeInPath(text("~root")), QString::fromLocal8Bit(root->pw_dir));
}

TEST(Paths, HomeFolderNeedsAnAbsoluteVariable)
{
    const passwd* user = getpwuid(getuid());
    ASSERT_NE(user, nullptr);
    const QString entry = QString::fromLocal8Bit(user->pw_dir);
    for (const char* value : {static_cast<const char*>(nullptr), "", "relative/home"}) {
        const test::EnvironmentChange home("HOME", value);
        EXPECT_TEXT(homeFolder(), entry);
    }
    const test::EnvironmentChange root("HOME", "/");
    EXPECT_TEXT(homeFolder(), text("/"));
    EXPECT_TEXT(stringByExpandingTildeInPath(text("~/a")), text("/a"));
}

TEST(Paths, Standardizing)
{
    const test::EnvironmentChange home("HOME", "/home/me");
    expectRows(stringByStandardizingPath, {{"~/a/", "/home/me/a"},
                                           {"/a//b/./c/", "/a/b/c"},
                                           {"/a/b/../c", "/a/c"},
                                           {"/../../a", "/a"},
                                           {"/a/..", "/"},
                                           {"/.", "/"},
                                           {"a/../b", "a/../b"},
                                           {"a/./b//c/", "a/b/c"},
                                           {"./a", "./a"},
                                           {"/", "/"},
                                           {"", ""},
                                           {nullptr, nullptr}});
}

TEST(Paths, StandardizingDropsPrivateWhenTheRestExists)
{
    const test::TempFolder folder;
    const QString there = folder.makeFile(text("there"));
    const QString prefix = text("/private");
    EXPECT_TEXT(stringByStandardizingPath(prefix + there), there);
    EXPECT_TEXT(stringByStandardizingPath(prefix + folder.path(text("gone"))), prefix + folder.path(text("gone")));
    EXPECT_TEXT(stringByStandardizingPath(prefix), prefix);
    EXPECT_TEXT(stringByStandardizingPath(text("/privately/x")), text("/privately/x"));
}

TEST(Paths, StandardizingKeepsAFinalLink)
{
    const test::TempFolder folder;
    const QString link = folder.path(text("link"));
    ASSERT_EQ(symlink(folder.makeFile(text("target")).toUtf8().constData(), link.toUtf8().constData()), 0);
    EXPECT_TEXT(stringByStandardizingPath(link), link);
}

TEST(Paths, NativePath)
{
    EXPECT_EQ(nativePath(text("/a/\u00E9")), QByteArray("/a/\xC3\xA9"));
    EXPECT_TRUE(nativePath(text("/etc/passwd") + QChar(u'\0') + text(".mov")).isEmpty());
    EXPECT_TRUE(nativePath(QString()).isEmpty());
}

} // namespace
} // namespace tavrix
