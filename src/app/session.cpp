// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/session.h"

#include "app/face.h"
#include "app/windowmodel.h"
#include "base/dialogue/alerts.h"

#include <utility>

namespace tavrix
{

After Session::after() const
{
    if (ending_) {
        return After::Ending;
    }
    return model_.mainEncProgressInt.intValue() != 0 ? After::Stopped : After::GoOn;
}

After Session::tell(const QString& title, const QString& text)
{
    displayAlert(title, text, 0, nullptr);
    return after();
}

Answer Session::ask(const Question& question)
{
    AlertRequest request;
    request.title = question.title;
    request.text = question.text;
    request.buttons = question.buttons;
    request.seconds = question.seconds > 1 ? question.seconds : 0;
    request.hasCheckBox = !question.checkBox.isEmpty();
    request.checkBoxTitle = question.checkBox;
    request.harmless = question.harmless;
    const AlertOutcome outcome = displayRequest(request);
    return {after(), outcome.button < 0 ? 0 : outcome.button, outcome.checked};
}

ChosenFolder Session::chooseFolder()
{
    QString folder = face_.selectFolder(QString());
    return {after(), std::move(folder)};
}

void Session::sheet(const QString& title, const QString& text)
{
    displayAlertSheet(title, text, face_.window());
}

} // namespace tavrix
