// SPDX-License-Identifier: GPL-3.0-or-later
#include "base/bundle/bundle.h"
#include "base/dialogue/alerts.h"
#include "base/dialogue/localisation.h"
#include "base/dialogue/runloopgate.h"
#include "gui/dialogs/alertdialog.h"
#include "gui/dialogs/dialogpresenter.h"
#include "support/qtprinters.h"
#include "support/temphome.h"
#include "support/waituntil.h"
#include "testpaths.h"

#include <QApplication>
#include <QCheckBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTest>

namespace tavrix::test
{
namespace
{

QList<AlertDialog*> openAlerts()
{
    QList<AlertDialog*> found;
    for (QWidget* widget : QApplication::topLevelWidgets()) {
        auto* dialog = qobject_cast<AlertDialog*>(widget);
        if (dialog != nullptr && dialog->isVisible()) {
            found << dialog;
        }
    }
    return found;
}

class Alerts : public testing::Test
{
protected:
    void SetUp() override
    {
        setResourcePath(QStringLiteral(TAVRIX_BUILD_RESOURCES));
        setLanguage(QStringLiteral("en"));
        presenter_.setTickMilliseconds(1);
        presenter_.setWindow(&window_);
        setAlertPresenter(&presenter_);
        window_.show();
    }
    void TearDown() override
    {
        setAlertPresenter(nullptr);
        setLanguage(QString());
    }
    // Runs once, as soon as a modal alert is on the screen.
    void whenOpen(const std::function<void(AlertDialog&)>& action)
    {
        auto* timer = new QTimer(&window_);
        QObject::connect(timer, &QTimer::timeout, timer, [timer, action] {
            if (!openAlerts().isEmpty()) {
                timer->stop();
                action(*openAlerts().first());
            }
        });
        timer->start(2);
    }
    void clickWhenOpen(int button)
    {
        whenOpen([button](AlertDialog& dialog) {
            dialog.findChild<QPushButton*>(QStringLiteral("alertButton%1").arg(button))->click();
        });
    }
    static AlertRequest question(const QStringList& buttons, int harmless)
    {
        AlertRequest request;
        request.title = QStringLiteral("t");
        request.buttons = buttons;
        request.seconds = 30;
        request.harmless = harmless;
        return request;
    }
    static QString words(const AlertDialog& dialog, const char* name)
    {
        return dialog.findChild<QLabel*>(QLatin1String(name))->text();
    }

    QWidget window_;
    DialogPresenter presenter_;
    const QString one_ = QStringLiteral("One");
    const QString two_ = QStringLiteral("Two");
    const QString three_ = QStringLiteral("Three");
};

} // namespace

// The third and the second button must not be swapped.
TEST_F(Alerts, EachButtonAnswersItsOwnTitle)
{
    for (const auto& [button, title] : {std::pair(0, one_), std::pair(1, two_), std::pair(2, three_)}) {
        clickWhenOpen(button);
        EXPECT_TEXT(displayAlertDelayed(QStringLiteral("t"), QStringLiteral("x"), one_, two_, three_, 0, 600), title);
    }
}

TEST_F(Alerts, ATimedAlertAnswersByItsDefaultAndCountsDown)
{
    QString countdown;
    const LogCapture log;
    whenOpen([&countdown](AlertDialog& dialog) { countdown = words(dialog, "alertCountdown"); });
    EXPECT_TEXT(displayAlertDelayed(QStringLiteral("t"), QStringLiteral("x"), one_, two_, QString(), 0, 20), one_);
    EXPECT_TRUE(countdown.startsWith(QStringLiteral("Closes by itself in "))) << countdown.toStdString();
    EXPECT_TRUE(log.contains(QStringLiteral("FERMETURE AUTO       : TIMEOUT")));
    EXPECT_TEXT(displayAlertDelayed(QStringLiteral("t"), QString(), QString(), QString(), QString(), 0, 2),
                QStringLiteral("OK"));
}

TEST_F(Alerts, AnUntimedAlertShowsNoCountdown)
{
    QString countdown = QStringLiteral("unseen");
    whenOpen([&countdown](AlertDialog& dialog) {
        countdown = words(dialog, "alertCountdown");
        dialog.findChild<QPushButton*>(QStringLiteral("alertButton0"))->click();
    });
    EXPECT_TEXT(displayAlertDelayed(QStringLiteral("t"), QStringLiteral("x"), one_, two_, QString(), 0, 1), one_);
    EXPECT_TRUE(countdown.isEmpty());
}

TEST_F(Alerts, TheCheckBoxIsAnsweredToo)
{
    whenOpen([this](AlertDialog& dialog) {
        auto* box = dialog.findChild<QCheckBox*>(QStringLiteral("alertCheckBox"));
        EXPECT_TEXT(box->text(), QStringLiteral("50% && more"));
        box->click();
        dialog.findChild<QPushButton*>(QStringLiteral("alertButton1"))->click();
    });
    const CheckBoxAnswer ticked = displayAlertDelayedCheckbox(QStringLiteral("t"), QStringLiteral("x"), one_, two_,
                                                              QString(), 0, 600, QStringLiteral("50% & more"));
    EXPECT_TEXT(ticked.button, two_);
    EXPECT_EQ(ticked.checked, 1);
    const CheckBoxAnswer late =
        displayAlertDelayedCheckbox(QStringLiteral("t"), QString(), QString(), QString(), QString(), 0, 1, QString());
    EXPECT_TEXT(late.button, QStringLiteral("button 1"));
    EXPECT_EQ(late.checked, 0);
}

TEST_F(Alerts, ANegativeTimeIsOverAtOnce)
{
    EXPECT_TEXT(
        displayAlertDelayedCheckbox(QStringLiteral("t"), QString(), one_, two_, QString(), 0, -5, QString()).button,
        one_);
}

// File names may look like markup, and a percent sign is just that.
TEST_F(Alerts, TextsAreShownAsTheyAre)
{
    const QString nasty = QStringLiteral("<b>50%</b> %@ &amp; & 100%s");
    whenOpen([&nasty](AlertDialog& dialog) {
        EXPECT_TEXT(words(dialog, "alertTitle"), nasty);
        EXPECT_TEXT(words(dialog, "alertText"), nasty);
        for (const char* name : {"alertTitle", "alertText"}) {
            EXPECT_EQ(dialog.findChild<QLabel*>(QLatin1String(name))->textFormat(), Qt::PlainText);
        }
        EXPECT_TEXT(dialog.findChild<QPushButton*>(QStringLiteral("alertButton0"))->text(), QStringLiteral("A && B"));
        dialog.findChild<QPushButton*>(QStringLiteral("alertButton0"))->click();
    });
    EXPECT_TEXT(displayAlertDelayed(nasty, nasty, QStringLiteral("A & B"), QString(), QString(), 0, 600),
                QStringLiteral("A & B"));
}

TEST_F(Alerts, ALongFileNameDoesNotWidenTheAlert)
{
    const QString longName = QString(200, QLatin1Char('W')) + QStringLiteral(".mov");
    whenOpen([&longName](AlertDialog& dialog) {
        EXPECT_LT(dialog.width(), 620);
        auto* title = dialog.findChild<QLabel*>(QStringLiteral("alertTitle"));
        EXPECT_TEXT(title->accessibleName(), longName);
        EXPECT_GE(title->height(), title->heightForWidth(title->width()));
        dialog.findChild<QPushButton*>(QStringLiteral("alertButton0"))->click();
    });
    displayAlert(longName, longName, 0, nullptr);
}

TEST_F(Alerts, CriticalAlertsHaveTheirOwnIcon)
{
    for (const auto& [style, image] : {std::pair(2, "alertCritical"), std::pair(0, "tavrix")}) {
        QString shownImage;
        whenOpen([&shownImage](AlertDialog& dialog) {
            shownImage = dialog.findChild<QLabel*>(QStringLiteral("alertIcon"))->property("imageName").toString();
            dialog.findChild<QPushButton*>(QStringLiteral("alertButton0"))->click();
        });
        EXPECT_EQ(displayAlert(QStringLiteral("t"), QString(), style, nullptr), 1000);
        EXPECT_TEXT(shownImage, QString::fromLatin1(image));
    }
}

TEST_F(Alerts, EscapeAnswersByTheButtonThatChangesNothing)
{
    const auto escaped = [this](const QStringList& buttons, int harmless) {
        whenOpen([](AlertDialog& dialog) { QTest::keyClick(&dialog, Qt::Key_Escape); });
        return displayRequest(question(buttons, harmless)).button;
    };
    EXPECT_EQ(escaped({one_, two_}, 0), 0);
    EXPECT_EQ(escaped({one_, two_}, 1), 1);
    EXPECT_EQ(escaped({one_, two_, three_}, 2), 2);
    EXPECT_EQ(escaped({one_}, -1), 0) << "the only one";
    // None is known to be harmless: Escape does nothing and the time-out answers, whatever the buttons are called.
    EXPECT_EQ(escaped({QStringLiteral("Cancel"), QStringLiteral("Keep")}, -1), -1);
    EXPECT_EQ(escaped({one_, two_}, 2), -1);
}

TEST_F(Alerts, ReturnPressesTheDefaultButton)
{
    whenOpen([](AlertDialog& dialog) { QTest::keyClick(&dialog, Qt::Key_Return); });
    EXPECT_TEXT(displayAlertDelayed(QStringLiteral("t"), QString(), one_, two_, QString(), 0, 600), one_);
}

TEST_F(Alerts, TheGateIsClosedWhileAModalAlertIsUp)
{
    bool ran = false;
    bool ranMeanwhile = true;
    whenOpen([&](AlertDialog& dialog) {
        RunLoopGate::instance().deliver([&ran] { ran = true; });
        QCoreApplication::processEvents();
        ranMeanwhile = ran;
        dialog.findChild<QPushButton*>(QStringLiteral("alertButton0"))->click();
    });
    displayAlert(QStringLiteral("t"), QString(), 0, nullptr);
    EXPECT_FALSE(ranMeanwhile);
    EXPECT_TRUE(waitUntil([&ran] { return ran; }));
}

TEST_F(Alerts, SheetsQueueAndNeverBlock)
{
    EXPECT_EQ(displayAlert(QStringLiteral("first"), QString(), 0, &window_), 0);
    displayAlertSheet(QStringLiteral("second"), QString(), &window_);
    EXPECT_FALSE(RunLoopGate::instance().isClosed());
    ASSERT_EQ(openAlerts().size(), 1);
    EXPECT_EQ(openAlerts().first()->windowModality(), Qt::WindowModal);
    EXPECT_TEXT(words(*openAlerts().first(), "alertTitle"), QStringLiteral("first"));
    openAlerts().first()->findChild<QPushButton*>(QStringLiteral("alertButton0"))->click();
    ASSERT_EQ(openAlerts().size(), 1);
    EXPECT_TEXT(words(*openAlerts().first(), "alertTitle"), QStringLiteral("second"));
    openAlerts().first()->findChild<QPushButton*>(QStringLiteral("alertButton0"))->click();
    EXPECT_TRUE(openAlerts().isEmpty());
}

TEST_F(Alerts, ATimedSheetEndsByItself)
{
    QString answer;
    displayAlertDelayedSheet(QStringLiteral("t"), QString(), one_, two_, QString(), 0, 5, &window_,
                             [&answer](const QString& title) { answer = title; });
    EXPECT_TRUE(waitUntil([&answer] { return answer == QStringLiteral("One"); }));
    EXPECT_TRUE(openAlerts().isEmpty());
}

TEST_F(Alerts, TextInputGivesTheTypedTextOrItsDefaultOrNothing)
{
    const auto typed = [this](const QString& text, int button) {
        whenOpen([text, button](AlertDialog& dialog) {
            dialog.findChild<QLineEdit*>(QStringLiteral("alertTextField"))->setText(text);
            dialog.findChild<QPushButton*>(QStringLiteral("alertButton%1").arg(button))->click();
        });
        return displayDialog(QStringLiteral("t"), QStringLiteral("x"), QStringLiteral("default"), QStringLiteral("Go"));
    };
    EXPECT_TEXT(typed(QStringLiteral("new"), 0).value_or(QString()), QStringLiteral("new"));
    EXPECT_TEXT(typed(QString(), 0).value_or(QString()), QStringLiteral("default"));
    EXPECT_FALSE(typed(QStringLiteral("new"), 1).has_value());
}

TEST_F(Alerts, DismissedAlertsChangeNothing)
{
    whenOpen([this](AlertDialog&) { presenter_.dismissAll(); });
    EXPECT_EQ(displayRequest(question({one_, two_}, 1)).button, 1);
}

TEST_F(Alerts, AlertsThatFollowTheEndAreNotShown)
{
    whenOpen([this](AlertDialog&) { presenter_.answerAllFromNowOn(); });
    for (int i = 0; i < 2; ++i) {
        EXPECT_EQ(displayRequest(question({one_, two_}, 1)).button, 1);
    }
    EXPECT_TRUE(openAlerts().isEmpty());
}

} // namespace tavrix::test
