// SPDX-License-Identifier: GPL-3.0-or-later
#include "base/dialogue/alerts.h"

#include "base/dialogue/localisation.h"
#include "base/dialogue/replaceable.h"
#include "base/dialogue/runloopgate.h"
#include "base/text/format.h"
#include "base/text/log.h"
#include "base/text/text.h"

#include <QMetaObject>

#include <array>

namespace tavrix
{
namespace
{

// Nobody is there to answer: every question gets its default at once.
class SilentPresenter : public AlertPresenter
{
public:
    AlertOutcome runModal(const AlertRequest&) override { return {}; }

    void showSheet(const AlertRequest&, QObject*, std::function<void(AlertOutcome)> done) override
    {
        if (done) {
            done({});
        }
    }

    std::optional<QString> runTextInput(const AlertRequest&, const QString& defaultValue) override
    {
        return defaultValue;
    }
};

constexpr int firstButtonCode = 1000;
constexpr int timedOut = -1;

Replaceable<AlertPresenter>& presenters()
{
    static Replaceable<AlertPresenter> instance(
        [] { return std::unique_ptr<AlertPresenter>(std::make_unique<SilentPresenter>()); });
    return instance;
}

AlertPresenter& presenter()
{
    return presenters().inUse();
}

QStringList buttonTitles(const QString& defaultButton, const QString& alternateButton, const QString& otherButton)
{
    QStringList titles{defaultButton.isEmpty() ? QStringLiteral("OK") : defaultButton};
    if (!defaultButton.isEmpty() && !alternateButton.isEmpty()) {
        titles.append(alternateButton);
        if (!otherButton.isEmpty()) {
            titles.append(otherButton);
        }
    }
    return titles;
}

AlertRequest requestFor(const QString& title, const QString& text, const QStringList& buttons, int style, int seconds)
{
    AlertRequest request;
    request.title = notNothing(title);
    request.text = notNothing(text);
    request.buttons = buttons;
    request.style = style;
    request.seconds = seconds;
    return request;
}

AlertOutcome runModal(const AlertRequest& request)
{
    const ModalGateCloser gate;
    return presenter().runModal(request);
}

// Title of the chosen button, a fixed word where that title is missing. A time-out counts as the default button.
QString chosenTitle(int button, const std::array<QString, 3>& titles, const std::array<QString, 3>& substitutes)
{
    const std::size_t index = button < 0 || button > 2 ? 0 : static_cast<std::size_t>(button);
    return titles.at(index).isEmpty() ? substitutes.at(index) : titles.at(index);
}

const std::array<QString, 3>& delayedSubstitutes()
{
    static const std::array<QString, 3> words{QStringLiteral("OK"), QStringLiteral("Button 2"),
                                              QStringLiteral("Bouton 3")};
    return words;
}

const std::array<QString, 3>& checkBoxSubstitutes()
{
    static const std::array<QString, 3> words{QStringLiteral("button 1"), QStringLiteral("button 2"),
                                              QStringLiteral("button 3")};
    return words;
}

// Code that ends the modal session for a button: stopped, aborted, and the third one's own.
int sessionCode(int button)
{
    return button == 0 ? -1000 : button == 1 ? -1001 : -1;
}

} // namespace

int AlertRequest::harmlessButton() const
{
    if (buttons.size() == 1) {
        return 0;
    }
    return harmless < buttons.size() ? harmless : -1;
}

void setAlertPresenter(AlertPresenter* newPresenter)
{
    presenters().replace(newPresenter);
}

AlertOutcome displayRequest(const AlertRequest& request)
{
    const AlertOutcome outcome = runModal(request);
    if (request.seconds == 0) {
        logLine(QStringLiteral("ALERTE NORMALE       "));
    } else if (outcome.button == timedOut) {
        logLine(QStringLiteral("FERMETURE AUTO       : TIMEOUT"));
    } else if (request.hasCheckBox) {
        logLine(QStringLiteral("FERMETURE USER       : CLIC=%d"), {sessionCode(outcome.button)});
    } else {
        logLine(QStringLiteral("FERMETURE USER       : CLIC"));
    }
    return outcome;
}

int displayAlert(const QString& title, const QString& text, int style, QObject* window)
{
    const AlertRequest request = requestFor(title, text, {QStringLiteral("OK")}, style, 0);
    if (window) {
        presenter().showSheet(request, window, {});
        return 0;
    }
    runModal(request);
    return firstButtonCode;
}

void displayAlertSheet(const QString& title, const QString& text, QObject* window)
{
    presenter().showSheet(requestFor(title, text, {QStringLiteral("OK")}, 0, 0), window, {});
}

QString displayAlertDelayed(const QString& title, const QString& text, const QString& defaultButton,
                            const QString& alternateButton, const QString& otherButton, int style, int seconds)
{
    const QStringList buttons = buttonTitles(defaultButton, alternateButton, otherButton);
    const AlertOutcome outcome = displayRequest(requestFor(title, text, buttons, style, seconds > 1 ? seconds : 0));
    return chosenTitle(outcome.button, {defaultButton, alternateButton, otherButton}, delayedSubstitutes());
}

CheckBoxAnswer displayAlertDelayedCheckbox(const QString& title, const QString& text, const QString& defaultButton,
                                           const QString& alternateButton, const QString& otherButton, int style,
                                           int seconds, const QString& checkBoxTitle)
{
    const QStringList buttons = buttonTitles(defaultButton, alternateButton, otherButton);
    // A negative time is over at the first look at the clock.
    const int limit = seconds == 0 ? 10 : seconds < 0 ? -1 : seconds;
    AlertRequest request = requestFor(title, text, buttons, style, limit);
    request.hasCheckBox = true;
    request.checkBoxTitle = notNothing(checkBoxTitle);
    const AlertOutcome outcome = displayRequest(request);
    return {chosenTitle(outcome.button, {defaultButton, alternateButton, otherButton}, checkBoxSubstitutes()),
            outcome.checked ? 1 : 0};
}

void displayAlertDelayedSheet(const QString& title, const QString& text, const QString& defaultButton,
                              const QString& alternateButton, const QString& otherButton, int style, int seconds,
                              QObject* window, std::function<void(QString)> done)
{
    logLine(QStringLiteral("giveUpAfterSeconds : %d"), {seconds});
    const QStringList buttons = buttonTitles(defaultButton, alternateButton, otherButton);
    const std::array<QString, 3> titles{defaultButton, alternateButton, otherButton};
    presenter().showSheet(requestFor(title, text, buttons, style, seconds > 1 ? seconds : 0), window,
                          [titles, done = std::move(done)](const AlertOutcome& outcome) {
                              if (done) {
                                  done(chosenTitle(outcome.button, titles, delayedSubstitutes()));
                              }
                          });
}

std::optional<QString> displayDialog(const QString& title, const QString& text, const QString& defaultValue,
                                     const QString& defaultButton)
{
    const QStringList buttons{defaultButton.isEmpty() ? QStringLiteral("OK") : defaultButton, QStringLiteral("Cancel")};
    AlertRequest request = requestFor(title, text, buttons, 0, 0);
    request.harmless = 1;
    const ModalGateCloser gate;
    const std::optional<QString> typed = presenter().runTextInput(request, notNothing(defaultValue));
    if (!typed) {
        return std::nullopt;
    }
    return typed->isEmpty() ? notNothing(defaultValue) : *typed;
}

void utilsAlert::alertDidEndReturnCodeContextInfo(QObject* sheetWindow, int returnCode, void* /*contextInfo*/)
{
    logLine(QStringLiteral("returnCode          : %d"), {returnCode});
    if (sheetWindow && sheetWindow->metaObject()->indexOfMethod("hide()") >= 0) {
        QMetaObject::invokeMethod(sheetWindow, "hide", Qt::DirectConnection);
    }
}

QString utilsAlert::LocalisationString_localFichier_variable1_variable2_variable3_variable4_variable5(
    const QString& key, const QString& table, const QString& variable1, const QString& variable2,
    const QString& variable3, const QString& variable4, const QString& variable5)
{
    const bool unnamed = !table.isNull() && table.isEmpty();
    const QString text = localizedString(key, unnamed ? QStringLiteral("Localized") : table);
    QList<FormatArg> arguments;
    for (const QString& variable : {variable1, variable2, variable3, variable4, variable5}) {
        if (variable.isEmpty()) {
            break;
        }
        arguments.append(FormatArg(variable));
    }
    return arguments.isEmpty() ? text : formatText(text, arguments);
}

} // namespace tavrix
