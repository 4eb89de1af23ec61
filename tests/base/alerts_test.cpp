// SPDX-License-Identifier: GPL-3.0-or-later
#include "base/bundle/bundle.h"
#include "base/dialogue/alerts.h"
#include "base/dialogue/localisation.h"
#include "base/dialogue/runloopgate.h"
#include "support/qtprinters.h"
#include "support/temphome.h"

#include <array>
#include <gtest/gtest.h>
#include <vector>

using namespace tavrix;
using namespace tavrix::test;

namespace
{

// Answers as told and remembers what it was shown.
class PreparedPresenter : public AlertPresenter
{
public:
    AlertOutcome runModal(const AlertRequest& request) override
    {
        requests.append(request);
        gateWasClosed = RunLoopGate::instance().isClosed();
        return outcome;
    }
    void showSheet(const AlertRequest& request, QObject* window, std::function<void(AlertOutcome)> done) override
    {
        requests.append(request);
        gateWasClosed = RunLoopGate::instance().isClosed();
        sheetWindow = window;
        sheetDone = std::move(done);
    }
    std::optional<QString> runTextInput(const AlertRequest& request, const QString& defaultValue) override
    {
        requests.append(request);
        gateWasClosed = RunLoopGate::instance().isClosed();
        prefilled = defaultValue;
        return typed;
    }

    AlertOutcome outcome;
    std::optional<QString> typed;
    QString prefilled;
    QList<AlertRequest> requests;
    QObject* sheetWindow = nullptr;
    std::function<void(AlertOutcome)> sheetDone;
    bool gateWasClosed = false;
};

QString tx(const char* utf8)
{
    return text(utf8);
}

class Alerts : public testing::Test
{
protected:
    void SetUp() override { setAlertPresenter(&face); }
    void TearDown() override { setAlertPresenter(nullptr); }
    PreparedPresenter face;
    QObject window;
};

TEST_F(Alerts, WithoutWindowIsModal)
{
    EXPECT_EQ(displayAlert(tx("50% <b>title</b>"), tx("100%@ %d"), 2, nullptr), 1000);
    ASSERT_EQ(face.requests.size(), 1);
    EXPECT_TEXT(face.requests.first().title, tx("50% <b>title</b>"));
    EXPECT_TEXT(face.requests.first().text, tx("100%@ %d"));
    EXPECT_EQ(face.requests.first().style, 2);
    EXPECT_EQ(face.requests.first().seconds, 0);
    EXPECT_TEXTS(face.requests.first().buttons, QStringList{tx("OK")});
    EXPECT_TRUE(face.gateWasClosed);
    EXPECT_FALSE(RunLoopGate::instance().isClosed());
}

TEST_F(Alerts, AbsentTextsAreEmpty)
{
    displayAlert(QString(), QString(), 0, nullptr);
    EXPECT_TEXT(face.requests.first().title, tx(""));
    EXPECT_TEXT(face.requests.first().text, tx(""));
}

TEST_F(Alerts, WithWindowIsASheetThatLeavesTheGateOpen)
{
    EXPECT_EQ(displayAlert(tx("a"), tx("b"), 0, &window), 0);
    EXPECT_EQ(face.sheetWindow, &window);
    EXPECT_FALSE(face.gateWasClosed);
    displayAlertSheet(tx("c"), QString(), &window);
    ASSERT_EQ(face.requests.size(), 2);
    EXPECT_TEXT(face.requests.last().title, tx("c"));
    EXPECT_TEXTS(face.requests.last().buttons, QStringList{tx("OK")});
    EXPECT_FALSE(face.gateWasClosed);
}

struct ButtonRow {
    std::string name;
    const char* defaultButton;
    const char* alternate;
    const char* other;
    int chosen;
    const char* delayed;  // answer of displayAlertDelayed
    const char* checkBox; // answer of displayAlertDelayedCheckbox
    std::vector<const char*> shown;
};

class AlertButtons : public Alerts, public testing::WithParamInterface<ButtonRow>
{
};

TEST_P(AlertButtons, AnswerTheirOwnTitle)
{
    const ButtonRow& row = GetParam();
    face.outcome.button = row.chosen;
    for (const int seconds : {0, 1, 2, 60}) {
        EXPECT_TEXT(
            displayAlertDelayed(tx("a"), tx("b"), tx(row.defaultButton), tx(row.alternate), tx(row.other), 0, seconds),
            tx(row.delayed));
    }
    const CheckBoxAnswer answer = displayAlertDelayedCheckbox(tx("a"), tx("b"), tx(row.defaultButton),
                                                              tx(row.alternate), tx(row.other), 0, 5, QString());
    EXPECT_TEXT(answer.button, tx(row.checkBox));
    QStringList shownTitles;
    for (const char* title : row.shown) {
        shownTitles.append(tx(title));
    }
    for (const AlertRequest& request : face.requests) {
        EXPECT_TEXTS(request.buttons, shownTitles);
    }
}

INSTANTIATE_TEST_SUITE_P(
    Buttons, AlertButtons,
    testing::Values(ButtonRow{"Default", "Go", "Alt", "Oth", 0, "Go", "Go", {"Go", "Alt", "Oth"}},
                    ButtonRow{"Alternate", "Go", "Alt", "Oth", 1, "Alt", "Alt", {"Go", "Alt", "Oth"}},
                    ButtonRow{"Other", "Go", "Alt", "Oth", 2, "Oth", "Oth", {"Go", "Alt", "Oth"}},
                    ButtonRow{"TimedOut", "Go", "Alt", "Oth", -1, "Go", "Go", {"Go", "Alt", "Oth"}},
                    ButtonRow{"TwoButtons", "Go", "Alt", nullptr, 1, "Alt", "Alt", {"Go", "Alt"}},
                    ButtonRow{"EmptyDefaultTimedOut", "", nullptr, nullptr, -1, "OK", "button 1", {"OK"}},
                    ButtonRow{"MissingDefault", nullptr, nullptr, nullptr, 0, "OK", "button 1", {"OK"}},
                    ButtonRow{"NoAlternateWithoutDefault", "", "Alt", "Oth", 0, "OK", "button 1", {"OK"}},
                    ButtonRow{"NoOtherWithoutAlternate", "Go", "", "Oth", 0, "Go", "Go", {"Go"}},
                    ButtonRow{"MissingAlternate", "Go", "", "", 1, "Button 2", "button 2", {"Go"}},
                    ButtonRow{"MissingOther", "Go", "", "", 2, "Bouton 3", "button 3", {"Go"}}),
    rowName<ButtonRow>);

struct TimeRow {
    std::string name;
    int seconds;
    int delayed;  // seconds that the face gets
    int checkBox; // the same with a check box
};

class AlertTimes : public Alerts, public testing::WithParamInterface<TimeRow>
{
};

TEST_P(AlertTimes, ReachTheFace)
{
    displayAlertDelayed(tx("a"), tx("b"), tx("Go"), QString(), QString(), 0, GetParam().seconds);
    displayAlertDelayedCheckbox(tx("a"), tx("b"), tx("Go"), QString(), QString(), 0, GetParam().seconds, tx("c"));
    displayAlertDelayedSheet(tx("a"), tx("b"), tx("Go"), QString(), QString(), 0, GetParam().seconds, &window);
    ASSERT_EQ(face.requests.size(), 3);
    EXPECT_EQ(face.requests.at(0).seconds, GetParam().delayed);
    EXPECT_EQ(face.requests.at(1).seconds, GetParam().checkBox);
    EXPECT_EQ(face.requests.at(2).seconds, GetParam().delayed);
}

INSTANTIATE_TEST_SUITE_P(Seconds, AlertTimes,
                         testing::Values(TimeRow{"Negative", -3, 0, -1}, TimeRow{"Zero", 0, 0, 10},
                                         TimeRow{"One", 1, 0, 1}, TimeRow{"Two", 2, 2, 2},
                                         TimeRow{"Minute", 60, 60, 60}),
                         rowName<TimeRow>);

TEST_F(Alerts, LogHowTheyWereClosed)
{
    const LogCapture log;
    displayAlertDelayed(tx("a"), tx("b"), tx("Go"), QString(), QString(), 0, 1);
    displayAlertDelayed(tx("a"), tx("b"), tx("Go"), QString(), QString(), 0, 2);
    face.outcome.button = -1;
    displayAlertDelayed(tx("a"), tx("b"), tx("Go"), QString(), QString(), 0, 2);
    displayAlertDelayedCheckbox(tx("a"), tx("b"), tx("Go"), QString(), QString(), 0, 0, QString());
    face.outcome.button = 0;
    displayAlertDelayedCheckbox(tx("a"), tx("b"), tx("Go"), QString(), QString(), 0, 0, QString());
    face.outcome.button = 1;
    displayAlertDelayedCheckbox(tx("a"), tx("b"), tx("Go"), tx("No"), QString(), 0, 0, QString());
    displayAlertDelayedSheet(tx("a"), tx("b"), tx("Go"), QString(), QString(), 0, 20, &window);
    EXPECT_TEXTS(log.lines(), (QStringList{tx("ALERTE NORMALE       "), tx("FERMETURE USER       : CLIC"),
                                           tx("FERMETURE AUTO       : TIMEOUT"), tx("FERMETURE AUTO       : TIMEOUT"),
                                           tx("FERMETURE USER       : CLIC=-1000"),
                                           tx("FERMETURE USER       : CLIC=-1001"), tx("giveUpAfterSeconds : 20")}));
}

TEST_F(Alerts, TheCheckBoxIsOneOrZero)
{
    face.outcome.checked = true;
    EXPECT_EQ(
        displayAlertDelayedCheckbox(tx("50%"), tx("b"), tx("Go"), QString(), QString(), 0, 0, tx("All 100%")).checked,
        1);
    EXPECT_TRUE(face.requests.last().hasCheckBox);
    EXPECT_TEXT(face.requests.last().checkBoxTitle, tx("All 100%"));
    EXPECT_TEXT(face.requests.last().title, tx("50%"));
    EXPECT_TRUE(face.gateWasClosed);
    face.outcome.checked = false;
    EXPECT_EQ(displayAlertDelayedCheckbox(tx("a"), tx("b"), tx("Go"), QString(), QString(), 0, 0, QString()).checked,
              0);
    EXPECT_TEXT(face.requests.last().checkBoxTitle, tx(""));
}

TEST_F(Alerts, ATimedSheetAnswersLater)
{
    QString answer;
    displayAlertDelayedSheet(tx("a"), tx("b"), tx("Go"), tx("Alt"), QString(), 2, 20, &window,
                             [&answer](const QString& title) { answer = title; });
    EXPECT_TEXT(answer, QString());
    EXPECT_FALSE(face.gateWasClosed);
    ASSERT_TRUE(face.sheetDone);
    face.sheetDone({1, false});
    EXPECT_TEXT(answer, tx("Alt"));
    face.sheetDone({-1, false});
    EXPECT_TEXT(answer, tx("Go"));
    displayAlertDelayedSheet(tx("a"), tx("b"), tx("Go"), QString(), QString(), 0, 20, &window);
    face.sheetDone({0, false});
}

TEST_F(Alerts, ADialogAnswersTypedTextDefaultOrNothing)
{
    face.typed = tx("typed");
    EXPECT_TEXT(displayDialog(tx("a"), tx("b"), tx("def"), tx("Go")).value(), tx("typed"));
    EXPECT_TEXT(face.prefilled, tx("def"));
    EXPECT_TRUE(face.gateWasClosed);
    EXPECT_TEXTS(face.requests.last().buttons, (QStringList{tx("Go"), tx("Cancel")}));
    face.typed = tx("");
    EXPECT_TEXT(displayDialog(tx("a"), tx("b"), tx("def"), QString()).value(), tx("def"));
    EXPECT_TEXTS(face.requests.last().buttons, (QStringList{tx("OK"), tx("Cancel")}));
    EXPECT_TEXT(displayDialog(tx("a"), tx("b"), QString(), QString()).value(), tx(""));
    face.typed = std::nullopt;
    EXPECT_FALSE(displayDialog(tx("a"), tx("b"), tx("def"), tx("Go")).has_value());
    EXPECT_FALSE(RunLoopGate::instance().isClosed());
}

TEST(AlertsWithoutAFace, AnswerTheirDefaultAtOnce)
{
    setAlertPresenter(nullptr);
    EXPECT_EQ(displayAlert(tx("a"), tx("b"), 0, nullptr), 1000);
    EXPECT_TEXT(displayAlertDelayed(tx("a"), tx("b"), tx("Go"), tx("Alt"), QString(), 0, 60), tx("Go"));
    const CheckBoxAnswer answer =
        displayAlertDelayedCheckbox(tx("a"), tx("b"), tx("Go"), tx("Alt"), QString(), 0, 60, QString());
    EXPECT_TEXT(answer.button, tx("Go"));
    EXPECT_EQ(answer.checked, 0);
    QString sheet;
    displayAlertDelayedSheet(tx("a"), tx("b"), tx("Go"), tx("Alt"), QString(), 0, 60, nullptr,
                             [&sheet](const QString& title) { sheet = title; });
    EXPECT_TEXT(sheet, tx("Go"));
    EXPECT_TEXT(displayDialog(tx("a"), tx("b"), tx("def"), QString()).value(), tx("def"));
}

TEST(SheetEnd, LogsTheCode)
{
    const LogCapture log;
    QObject plain;
    utilsAlert::alertDidEndReturnCodeContextInfo(nullptr, 1000, nullptr);
    utilsAlert::alertDidEndReturnCodeContextInfo(&plain, -1001, nullptr);
    ASSERT_EQ(log.lines().size(), 2);
    EXPECT_TRUE(log.lines().at(0).endsWith(tx("1000")));
    EXPECT_TRUE(log.lines().at(1).endsWith(tx("-1001")));
}

struct VariableRow {
    std::string name;
    const char* text;
    std::array<const char*, 5> variables;
    const char* expected;
};

class Variables : public testing::TestWithParam<VariableRow>
{
};

TEST_P(Variables, FillTheText)
{
    const TempFolder folder;
    folder.makeFile(QStringLiteral("en.lproj/T.strings"),
                    QByteArray("\"k\" = \"") + GetParam().text + QByteArray("\";\n"));
    const QString before = resourcePath();
    setResourcePath(folder.path());
    setLanguage(QStringLiteral("en"));
    const auto& v = GetParam().variables;
    EXPECT_TEXT(utilsAlert::LocalisationString_localFichier_variable1_variable2_variable3_variable4_variable5(
                    tx("k"), tx("T"), tx(v[0]), tx(v[1]), tx(v[2]), tx(v[3]), tx(v[4])),
                tx(GetParam().expected));
    setResourcePath(before);
    setLanguage(QString());
}

INSTANTIATE_TEST_SUITE_P(Texts, Variables,
                         testing::Values(VariableRow{"None", "a %@ b", {"", "", "", "", ""}, "a %@ b"},
                                         VariableRow{"Nothing", "50%", {nullptr, "x", "", "", ""}, "50%"},
                                         VariableRow{"LeadingOnly", "%@-%@-%@", {"a", "", "c", "", ""}, "a--"},
                                         VariableRow{"All", "%@%@%@%@%@", {"1", "2", "3", "4", "5"}, "12345"},
                                         VariableRow{
                                             "Inserted", "<%@> <%@>", {"%@ %d", "x", "", "", ""}, "<%@ %d> <x>"},
                                         VariableRow{"TooMany", "%@", {"a", "b", "c", "", ""}, "a"}),
                         rowName<VariableRow>);

} // namespace
