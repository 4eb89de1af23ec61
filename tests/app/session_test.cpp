// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/session.h"

#include "app/windowmodel.h"
#include "support/qtprinters.h"
#include "support/temphome.h"
#include "support_app/fakeface.h"

using namespace tavrix;
using namespace tavrix::test;

namespace
{

class Sessions : public testing::Test
{
protected:
    FakeFace face;
    WindowModel model;
    Session session{model, face};
    const Question question{text("t"), text("x"), {text("One"), text("Two")}, 1, 60, QString()};
};

} // namespace

TEST_F(Sessions, AnAnswerTellsWhatHasBecomeOfTheWork)
{
    EXPECT_EQ(session.tell(text("t")), After::GoOn);
    face.whileOpen = [this](const AlertRequest&) {
        model.mainEncProgressInt.setIntValue(1);
    };
    EXPECT_EQ(session.tell(text("t")), After::Stopped);
    EXPECT_EQ(session.ask(question).after, After::Stopped);
    EXPECT_EQ(session.chooseFolder().after, After::Stopped);
    face.whileOpen = [this](const AlertRequest&) {
        session.end();
    };
    // The end of the program outweighs the stop.
    EXPECT_EQ(session.tell(text("t")), After::Ending);
    EXPECT_EQ(session.ask(question).after, After::Ending);
    EXPECT_EQ(session.chooseFolder().after, After::Ending);
    EXPECT_TRUE(session.isEnding());
}

TEST_F(Sessions, AQuestionReachesTheFaceAsItIs)
{
    face.answer(1, true);
    const Answer answer = session.ask(question);
    EXPECT_EQ(answer.button, 1);
    EXPECT_TRUE(answer.checked);
    ASSERT_EQ(face.alerts.size(), 1);
    const AlertRequest& shown = face.alerts.first();
    EXPECT_TEXT(shown.title, text("t"));
    EXPECT_TEXT(shown.text, text("x"));
    EXPECT_TEXTS(shown.buttons, QStringList({text("One"), text("Two")}));
    EXPECT_EQ(shown.harmlessButton(), 1);
    EXPECT_EQ(shown.seconds, 60);
    EXPECT_FALSE(shown.hasCheckBox);
}

TEST_F(Sessions, TheEndOfTheTimeIsTheDefaultAnswer)
{
    const LogCapture log;
    face.answer(-1);
    EXPECT_EQ(session.ask(question).button, 0);
    EXPECT_TRUE(log.contains(QStringLiteral("FERMETURE AUTO       : TIMEOUT")));
}

TEST_F(Sessions, ACheckBoxIsShownByItsWords)
{
    Question withBox = question;
    withBox.checkBox = text("for all");
    (void)session.ask(withBox);
    EXPECT_TRUE(face.alerts.first().hasCheckBox);
    EXPECT_TEXT(face.alerts.first().checkBoxTitle, text("for all"));
}

TEST_F(Sessions, AChosenFolderComesFromTheFace)
{
    face.folders << text("/one");
    EXPECT_TEXT(session.chooseFolder().folder, text("/one"));
    EXPECT_TRUE(session.chooseFolder().folder.isNull());
}
