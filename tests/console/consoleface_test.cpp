// SPDX-License-Identifier: GPL-3.0-or-later
#include "console/consoleface.h"

#include "consoletest.h"

#include <fcntl.h>
#include <unistd.h>

using namespace tavrix;
using namespace tavrix::test;

namespace
{

struct AnswerCase {
    const char* name;
    const char* line;
    int button;
    bool hasCheckBox;
    bool checked;
};

class TypedAnswer : public testing::TestWithParam<AnswerCase>
{
};

TEST_P(TypedAnswer, choosesAButton)
{
    const AnswerCase& row = GetParam();
    const AlertOutcome outcome = typedAnswer(text(row.line), {text("Replace"), text("Keep")}, row.hasCheckBox);
    EXPECT_EQ(outcome.button, row.button);
    EXPECT_EQ(outcome.checked, row.checked);
}

const AnswerCase answerCases[] = {
    {"empty", "", 0, true, false},
    {"blanks", "  \n", 0, true, false},
    {"first", "1", 0, true, false},
    {"second", "2\n", 1, true, false},
    {"secondForAll", "2*", 1, true, true},
    {"starFirst", "*2", 1, true, true},
    {"starWithoutBox", "2*", -1, false, false},
    {"third", "3", -1, true, false},
    {"zero", "0", -1, true, false},
    {"negative", "-1", -1, true, false},
    {"words", "keep", -1, true, false},
    {"longNumber", "22", -1, true, false},
    {"leadingZero", "02", -1, true, false},
    {"onlyAStar", "*", -1, true, false},
};

INSTANTIATE_TEST_SUITE_P(Lines, TypedAnswer, testing::ValuesIn(answerCases), rowName<AnswerCase>);

using ConsoleFaceTest = ConsoleTest;

TEST_F(ConsoleFaceTest, alertsBecomeMessagesWithTheDefaultAnswer)
{
    NotingReporter reporter;
    ConsoleFace face(&reporter, false);
    const AlertOutcome question =
        face.runModal({text("a.mov"), text("Replace it?"), {text("Replace"), text("Keep")}, 0, 60, true, {}});
    EXPECT_EQ(question.button, 0);
    const AlertOutcome notice = face.runModal({text("No disk"), QString(), {text("OK")}, 2, 0, false, {}});
    EXPECT_EQ(notice.button, 0);
    EXPECT_TEXTS(reporter.notes, QStringList({text("message a.mov|Replace it?|Replace"), text("message No disk||")}));
}

// Where the harmless button stands differs from question to question: the first one is not always the default that may
// replace, the second not always the one that keeps.
TEST_F(ConsoleFaceTest, inputThatHasEndedAnswersByTheHarmlessButton)
{
    const int kept = ::dup(STDIN_FILENO);
    const int nothing = ::open("/dev/null", O_RDONLY | O_CLOEXEC);
    ASSERT_GE(nothing, 0);
    ::dup2(nothing, STDIN_FILENO);
    ::close(nothing);
    NotingReporter reporter;
    ConsoleFace face(&reporter, true);
    AlertRequest request;
    request.title = text("Quit?");
    request.buttons = QStringList{text("Cancel"), text("Quit")};
    for (const int harmless : {0, 1, -1}) {
        request.harmless = harmless;
        EXPECT_EQ(face.runModal(request).button, harmless);
    }
    ::dup2(kept, STDIN_FILENO);
    ::close(kept);
    EXPECT_TEXT(reporter.notes.value(1), text("message No answer||Cancel"));
}

TEST_F(ConsoleFaceTest, aNoticeIsNeverAsked)
{
    NotingReporter reporter;
    ConsoleFace face(&reporter, true);
    EXPECT_EQ(face.runModal({text("Over"), QString(), {text("OK")}, 0, 0, false, {}}).button, 0);
    EXPECT_TEXTS(reporter.notes, QStringList({text("message Over||")}));
}

TEST_F(ConsoleFaceTest, sheetsAreToldAndAnsweredAtOnce)
{
    NotingReporter reporter;
    ConsoleFace face(&reporter, true);
    int answers = 0;
    face.showSheet({text("Over"), QString(), {text("OK")}, 0, 0, false, {}}, nullptr,
                   [&answers](const AlertOutcome& outcome) { answers += outcome.button == 0 ? 1 : 0; });
    face.showSheet({text("Over"), QString(), {text("OK")}, 0, 0, false, {}}, nullptr, {});
    EXPECT_EQ(answers, 1);
    EXPECT_EQ(reporter.notes.size(), 2);
}

TEST_F(ConsoleFaceTest, aTextQuestionGetsItsDefault)
{
    NotingReporter reporter;
    ConsoleFace face(&reporter, true);
    EXPECT_TEXT(
        face.runTextInput({text("Name"), QString(), {text("OK"), text("Cancel")}, 0, 0, false, {}}, text("clip"))
            .value_or(QString()),
        text("clip"));
}

} // namespace
