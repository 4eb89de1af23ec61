// SPDX-License-Identifier: GPL-3.0-or-later
#include "process/runners.h"
#include "process/shelltext.h"
#include "support/qtprinters.h"
#include "support/temphome.h"

#include <QDir>

#include <fcntl.h>
#include <unistd.h>

using namespace tavrix;
using namespace tavrix::test;

namespace
{

struct WordRow {
    const char* name;
    const char* value;
    const char* word;
};

class ShellWord : public testing::TestWithParam<WordRow>
{
};

TEST_P(ShellWord, IsQuotedOnlyWhenNeeded)
{
    EXPECT_TEXT(shellWord(text(GetParam().value)), text(GetParam().word));
}

INSTANTIATE_TEST_SUITE_P(
    Values, ShellWord,
    testing::Values(WordRow{"Plain", "/a/b_c@%+=:,.-d9", "/a/b_c@%+=:,.-d9"}, WordRow{"Accents", "/é/日本", "/é/日本"},
                    WordRow{"Blank", "/a b", "'/a b'"}, WordRow{"Parentheses", "/a(1).mts", "'/a(1).mts'"},
                    WordRow{"Quote", "/Bob's", "'/Bob'\\''s'"}, WordRow{"Command", "/a;x", "'/a;x'"},
                    WordRow{"Tilde", "~/a", "'~/a'"}, WordRow{"Braces", "/a{b,c}", "'/a{b,c}'"},
                    WordRow{"SingleQuotedByCaller", "'/a b'", "'/a b'"},
                    WordRow{"DoubleQuotedByCaller", "\"/a b\"", "\"/a b\""},
                    WordRow{"EscapedInDoubleQuotes", "\"/a\\\"\\$b\"", "\"/a\\\"\\$b\""},
                    WordRow{"EscapedQuoteByCaller", "'/Bob'\\''s'", "'/Bob'\\''s'"},
                    WordRow{"NotOneQuotedWord", "'a';x '", "''\\''a'\\'';x '\\'''"},
                    WordRow{"ExpansionInDoubleQuotes", "\"$(x)\"", "'\"$(x)\"'"},
                    WordRow{"OpenEndInDoubleQuotes", "\"a\\\"", "'\"a\\\"'"}, WordRow{"LoneQuote", "'", "''\\'''"},
                    WordRow{"Empty", "", "''"}, WordRow{"Nothing", nullptr, nullptr}),
    rowName<WordRow>);

TEST(ShellQuoting, LeavesOrdinaryPathsAlone)
{
    for (const char* path : {"/a b/c(1).mts", "/é'x/~", "*"}) {
        EXPECT_TEXT(shellDoubleQuoted(text(path)), text(path));
    }
    EXPECT_TEXT(shellDoubleQuoted(QStringLiteral("a\\b\"c$d`e")), QStringLiteral("a\\\\b\\\"c\\$d\\`e"));
    EXPECT_TEXT(shellSingleQuoted(QStringLiteral("a \"$b\"")), QStringLiteral("a \"$b\""));
    EXPECT_TEXT(shellSingleQuoted(QStringLiteral("x';y'")), QStringLiteral("x'\\'';y'\\''"));
    EXPECT_TEXT(shellDoubleQuoted(QString()), QString());
    EXPECT_TEXT(shellSingleQuoted(QString()), QString());
}

class HostileName : public testing::TestWithParam<const char*>
{
};

TEST_P(HostileName, StaysDataInEverySlot)
{
    const TempFolder folder;
    const QString name = text(GetParam());
    const QString echo = QStringLiteral("/usr/bin/printf %s ");
    const QString inside = QStringLiteral("cd ") + folder.path() + QStringLiteral(" && ") + echo;
    EXPECT_TEXT(taskWithStrBasic(inside + QLatin1Char('"') + shellDoubleQuoted(name) + QLatin1Char('"')), name);
    EXPECT_TEXT(taskWithStrBasic(inside + QLatin1Char('\'') + shellSingleQuoted(name) + QLatin1Char('\'')), name);
    EXPECT_TEXT(taskWithStrBasic(inside + shellWord(name)), name);
    EXPECT_TRUE(QDir(folder.path()).isEmpty(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot));
}

INSTANTIATE_TEST_SUITE_P(Names, HostileName,
                         testing::Values("/x$(touch pwn)", "/x`touch pwn`", "/x$5 y", "/x\"y", "/x\\", "/x\\\\y",
                                         "/x';touch pwn;'", "/Bob's Card", "/x;touch pwn", "/a\ntouch pwn",
                                         "/x|tee pwn", "/x &> pwn", "/{a,b}*?[c]", "/x!y#z"));

struct SafeRow {
    const char* name;
    const char* path;
    bool safe;
};

class PathSafe : public testing::TestWithParam<SafeRow>
{
};

TEST_P(PathSafe, IsAnsweredWithoutSideEffects)
{
    const TempFolder folder;
    folder.makeFile(QStringLiteral("ab"));
    const QString before = QDir::currentPath();
    ASSERT_TRUE(QDir::setCurrent(folder.path()));
    const bool safe = pathSafeStr(text(GetParam().path));
    const QStringList entries = QDir(folder.path()).entryList(QDir::NoDotAndDotDot | QDir::AllEntries | QDir::Hidden);
    QDir::setCurrent(before);
    EXPECT_EQ(safe, GetParam().safe);
    EXPECT_TEXTS(entries, QStringList({QStringLiteral("ab")}));
}

INSTANTIATE_TEST_SUITE_P(
    Paths, PathSafe,
    testing::Values(SafeRow{"Plain", "/tmp/clip.mts", true}, SafeRow{"Bar", "|", true}, SafeRow{"Empty", "", true},
                    SafeRow{"Nothing", nullptr, false}, SafeRow{"Blank", "/a b", false},
                    SafeRow{"Parenthesis", "/a(1)", false}, SafeRow{"ClosingParenthesis", "/a)", false},
                    SafeRow{"Ampersand", "/a&b", false}, SafeRow{"Backquote", "/a`b", false},
                    SafeRow{"Greater", "/a>b", false}, SafeRow{"Less", "/a<b", false},
                    SafeRow{"ExpandingAsterisk", "a*", false}, SafeRow{"PlainAsterisk", "q*", true},
                    SafeRow{"ExpandingBrackets", "[a]b", false}, SafeRow{"PlainBrackets", "[xy]", true},
                    SafeRow{"Semicolon", "a;touch${IFS}pwn", false}, SafeRow{"BarInside", "x|tee${IFS}pwn", false},
                    SafeRow{"LineFeed", "a\ntouch\tpwn", false}, SafeRow{"DollarAtEnd", "a$", true},
                    SafeRow{"Variable", "a$HOME", false}, SafeRow{"Quote", "a'b", false},
                    SafeRow{"DoubleQuote", "a\"b\"", false}, SafeRow{"Tilde", "~", false},
                    SafeRow{"Backslash", "a\\b", false}, SafeRow{"Comment", "#a", false},
                    SafeRow{"Option", "-n", false}, SafeRow{"Accent", "/é", true}),
    rowName<SafeRow>);

TEST(PathSafe, LogsTheEchoOfARefusedPath)
{
    const LogCapture log;
    EXPECT_FALSE(pathSafeStr(QStringLiteral("a\\b")));
    EXPECT_TRUE(log.contains(QStringLiteral("pathSafeStr() :-( 'a\\b' > 'ab'")));
}

// Keeps a log line of many kilobytes out of the test's own output.
class QuietErrors
{
public:
    QuietErrors() : before_(dup(STDERR_FILENO))
    {
        const int null = open("/dev/null", O_WRONLY | O_CLOEXEC);
        dup2(null, STDERR_FILENO);
        close(null);
    }
    ~QuietErrors()
    {
        dup2(before_, STDERR_FILENO);
        close(before_);
    }
    QuietErrors(const QuietErrors&) = delete;
    QuietErrors& operator=(const QuietErrors&) = delete;

private:
    int before_;
};

// Hundreds of long names are more than a pipe holds.
TEST(PathSafe, AnAsteriskInALargeFolderDoesNotHang)
{
    const TempFolder folder;
    const QString longName(180, QLatin1Char('n'));
    for (int file = 0; file < 600; ++file) {
        folder.makeFile(longName + QString::number(file));
    }
    const QuietErrors quiet;
    EXPECT_FALSE(pathSafeStr(folder.path() + QStringLiteral("/*")));
}

} // namespace
