// SPDX-License-Identifier: GPL-3.0-or-later
#include "base/text/listconversions.h"

#include "support/qtprinters.h"

#include <vector>

namespace tavrix
{
namespace
{

using test::text;

QStringList list(std::initializer_list<const char*> texts)
{
    QStringList result;
    for (const char* element : texts) {
        result.append(text(element));
    }
    return result;
}

TEST(ListConversions, LinesToArray)
{
    struct Row {
        const char* input;
        QStringList expected;
    };
    const std::vector<Row> rows = {{"a\nb\n", list({"a", "b"})},
                                   {"a\rb", list({"a", "b"})},
                                   {"a\r\nb", list({"a", "b"})},
                                   {"a\x0B"
                                    "b",
                                    list({"a", "b"})},
                                   {"a\u0085b", list({"a", "b"})},
                                   {"a\u2028b\u2029c", list({"a", "b", "c"})},
                                   {"\n\n", {}},
                                   {"a\t\n", list({"a\t"})},
                                   {"a", list({"a"})},
                                   {" \n", list({" "})},
                                   {"", {}},
                                   {nullptr, {}}};
    for (const Row& row : rows) {
        EXPECT_TEXTS(linesToArray(text(row.input)), row.expected) << test::shown(text(row.input));
    }
}

TEST(ListConversions, Array2Str)
{
    EXPECT_TEXT(array2Str(list({"a", "b", "c"})), text("a b c"));
    EXPECT_TEXT(array2Str(list({"a", "", "c"})), text("a  c"));
    EXPECT_TEXT(array2Str({}), text(""));
}

TEST(ListConversions, ReverseArray)
{
    EXPECT_TEXTS(reverseArray(list({"a", "b", "c"})), list({"c", "b", "a"}));
    EXPECT_TEXTS(reverseArray({}), QStringList());
}

TEST(ListConversions, DuplicatesGoAndTheOrderIsReversed)
{
    EXPECT_TEXTS(supprimerDoublons(list({"a", "b", "a", "c", "b"})), list({"c", "b", "a"}));
    EXPECT_TEXTS(supprimerDoublons({}), QStringList());
}

TEST(ListConversions, SortingIgnoresCase)
{
    EXPECT_TEXTS(triAlphabetique(list({"b", "C", "a", "B"})), list({"a", "b", "B", "C"}));
}

TEST(ListConversions, InsertingKeepsTheOrder)
{
    QStringList target = list({"a", "d"});
    EXPECT_TEXTS(insertObjectsFromArray(target, list({"b", "c"}), 1), list({"a", "b", "c", "d"}));
    EXPECT_TEXTS(insertObjectsFromArray(target, list({"e"}), 99), list({"a", "b", "c", "d", "e"}));
    EXPECT_TEXTS(insertObjectsFromArray(target, list({"z"}), -1), list({"z", "a", "b", "c", "d", "e"}));
    QStringList doubled = list({"a", "b"});
    EXPECT_TEXTS(insertObjectsFromArray(doubled, doubled, 1), list({"a", "a", "b", "b"}));
}

TEST(ListConversions, ReverseStr)
{
    EXPECT_TEXT(reverseStr(text("abc")), text("cba"));
    EXPECT_TEXT(reverseStr(text("\u00E9a")), text("a\u00E9"));
    EXPECT_TEXT(reverseStr(QString::fromUtf16(u"\xD83D\xDE00")), QString::fromUtf16(u"\xDE00\xD83D"));
    EXPECT_TEXT(reverseStr(text("")), text(""));
}

TEST(ListConversions, FindAndReplace)
{
    EXPECT_TEXT(findAndReplace(text("a.b.c"), text("."), text("-")), text("a-b-c"));
    EXPECT_TEXT(findAndReplace(text("abc"), text("x"), text("-")), text("abc"));
    EXPECT_TEXT(findAndReplace(text("abc"), text(""), text("X")), text("abc"));
    EXPECT_TEXT(findAndReplace(text("aAa"), text("A"), text("")), text("aa"));
    EXPECT_TEXT(findAndReplace(text("a"), text("a"), text("")), text(""));
    EXPECT_TEXT(findAndReplace(QString(), text("a"), text("b")), QString());
}

struct PathRow {
    const char* path;
    const char* expected;
};

TEST(ListConversions, TrimStr)
{
    const std::vector<PathRow> rows = {{"/a/b`c:d.mov", "/a/bc-d.mov"},
                                       {"/a/abcdefgh.mov", "/a/abcde.mov"},
                                       {"abcdefgh.mov", "abcde.mov"},
                                       {"abcdefgh", "abcde"},
                                       {"/a:b/c.mov", "/a:b/c.mov"},
                                       {"a.b:`c", "a.b:`c"},
                                       {"/abcdefgh.mov", "/abcde.mov"},
                                       {"", ""},
                                       {nullptr, nullptr}};
    for (const PathRow& row : rows) {
        EXPECT_TEXT(trimStr(text(row.path), 5), text(row.expected)) << test::shown(text(row.path));
    }
    EXPECT_TEXT(trimStr(text("/a/abc.mov"), -1), text("/a.mov"));
}

TEST(ListConversions, MasterCopyNames)
{
    const std::vector<PathRow> rows = {
        {"/a/b.mov", "/a/b_MASTER.mov"},
        {"/x/abc", "/x/abc_MASTER"},
        {"abcdefghijklmnopqrst.mov", "abcdefghijklmnopqrst_MASTER.mov"},
        {"abcdefghijklmnopqrstu.mov", "abcdefghijklmnopqrst_MASTER.mov"},
        {"/M/clip-2010-05-01 12;34;56-00001.mov", "/M/clip-2010-05-01 12;3_MASTER.mov"},
        {"/M/clip-2010-05-01 12;34;56-00002.mov", "/M/clip-2010-05-01 12;3_MASTER.mov"},
        {"/M/ABCDEFGHIJKLMNOPQRST_MASTER.mov", "/M/ABCDEFGHIJKLMNOPQRST_MASTER.mov"},
        {"/a long folder name here/b.mov", "/a long folder name here/b_MASTER.mov"},
        {"/folder/name.with.dots-and-long-name.mov", "/folder/name.with.dots-and-long-name_MASTER.mov"},
        {"/folder/a name with : and ` that is long", "/folder/a name with - and  t_MASTER"},
        {nullptr, nullptr}};
    for (const PathRow& row : rows) {
        EXPECT_TEXT(oldSrcPathStr2DstPathStr(text(row.path)), text(row.expected)) << test::shown(text(row.path));
    }
}

} // namespace
} // namespace tavrix
