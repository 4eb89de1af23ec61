// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// Message boxes. The logic here knows no widget: a face (window, terminal, test) presents what is asked.

#include <QObject>
#include <QString>
#include <QStringList>

#include <functional>
#include <optional>

namespace tavrix
{

// What a face must show. Texts are plain text, never markup; "%" stands for itself.
struct AlertRequest {
    QString title;
    QString text;
    QStringList buttons; // one to three titles: default, alternate, other
    int style = 0;       // 2 = critical
    int seconds = 0;     // 0 = wait for an answer; else the face closes by itself after that time, below 0 at once
    bool hasCheckBox = false;
    QString checkBoxTitle; // "" = the face's own words
    // Index of the button that changes nothing, -1 = none is known to. A single button is harmless by itself.
    int harmless = -1;

    [[nodiscard]] int harmlessButton() const;
};

struct AlertOutcome {
    int button = 0; // index in AlertRequest::buttons, -1 = timed out
    bool checked = false;
};

class AlertPresenter
{
public:
    virtual ~AlertPresenter() = default;
    // Application-modal: returns when answered or timed out. The caller has closed the RunLoopGate.
    virtual AlertOutcome runModal(const AlertRequest& request) = 0;
    // Sheet on a window: returns at once; sheets queue. `done` may be empty.
    virtual void showSheet(const AlertRequest& request, QObject* window, std::function<void(AlertOutcome)> done) = 0;
    // Text input with the given default value and the buttons [default title, "Cancel"]; no value when cancelled.
    virtual std::optional<QString> runTextInput(const AlertRequest& request, const QString& defaultValue) = 0;
};

// Not owned; null returns to the built-in presenter, which answers every question by its default at once.
void setAlertPresenter(AlertPresenter* presenter);

// Shows an application-modal alert and logs how it was closed; no layer above the gate needs to know. All modal alerts
// of the program but the plain displayAlert() come this way.
AlertOutcome displayRequest(const AlertRequest& request);

// Single default button. Style 2 is critical. Without window: modal, answers 1000. With window: a sheet, answers 0.
int displayAlert(const QString& title, const QString& text, int style, QObject* window);
void displayAlertSheet(const QString& title, const QString& text, QObject* window);
// Title of the chosen button; after `seconds` the default's. The alternate counts only with a default, the other only
// with an alternate. Missing titles answer "OK", "Button 2", "Bouton 3". 1 second or less waits for an answer.
QString displayAlertDelayed(const QString& title, const QString& text, const QString& defaultButton,
                            const QString& alternateButton, const QString& otherButton, int style, int seconds);
struct CheckBoxAnswer {
    QString button;
    int checked = 0; // 1 or 0
};
// Always timed, 10 seconds when 0 is given. Missing titles answer "button 1", "button 2", "button 3".
CheckBoxAnswer displayAlertDelayedCheckbox(const QString& title, const QString& text, const QString& defaultButton,
                                           const QString& alternateButton, const QString& otherButton, int style,
                                           int seconds, const QString& checkBoxTitle);
void displayAlertDelayedSheet(const QString& title, const QString& text, const QString& defaultButton,
                              const QString& alternateButton, const QString& otherButton, int style, int seconds,
                              QObject* window, std::function<void(QString)> done = {});
// Typed text, or the default value when nothing was typed; no value when cancelled.
std::optional<QString> displayDialog(const QString& title, const QString& text, const QString& defaultValue,
                                     const QString& defaultButton);

// Sheet end handler and variable localisation under their traditional class name.
class utilsAlert
{
public:
    static void alertDidEndReturnCodeContextInfo(QObject* sheetWindow, int returnCode, void* contextInfo);
    // Text of the key in the table ("" names "Localized", nothing "Localizable"), formatted with the variables that
    // lead the list without an empty one.
    [[nodiscard]] static QString LocalisationString_localFichier_variable1_variable2_variable3_variable4_variable5(
        const QString& key, const QString& table, const QString& variable1, const QString& variable2,
        const QString& variable3, const QString& variable4, const QString& variable5);
};

} // namespace tavrix
