// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// What all machines of the controller share.

#include <QString>
#include <QStringList>

namespace tavrix
{

class ApplicationFace;
class WindowModel;

// What has become of the work while a modal alert was open: nothing that was known before it holds unasked after it.
enum class [[nodiscard]] After{
    GoOn,
    Stopped, // the batch is to stop
    Ending,  // the program ends: children and rows are gone
};

// A modal question. Texts are plain and in the user's language.
struct Question {
    QString title;
    QString text;
    QStringList buttons; // one to three; the first is the default, which the end of the time stands for too
    int harmless = 0;    // index of the button that changes nothing
    int seconds = 0;     // 2 or more: time for an answer; else it waits
    QString checkBox;    // nothing or "": none
};

struct [[nodiscard]] ChosenFolder {
    After after = After::GoOn;
    QString folder; // nothing when none was chosen
};

struct [[nodiscard]] Answer {
    After after = After::GoOn;
    int button = 0; // index in Question::buttons
    bool checked = false;
};

// The window model, the face, the end of the program, and the only place that shows a modal alert.
class Session
{
public:
    // Neither is owned; both outlive the session.
    Session(WindowModel& model, ApplicationFace& face) : model_(model), face_(face) {}
    Session(const Session&) = delete;
    Session& operator=(const Session&) = delete;

    [[nodiscard]] WindowModel& model() { return model_; }
    [[nodiscard]] const WindowModel& model() const { return model_; }
    [[nodiscard]] ApplicationFace& face() { return face_; }

    // From the first step of a quit on, and for ever.
    [[nodiscard]] bool isEnding() const { return ending_; }
    void end() { ending_ = true; }

    // A modal alert with one button.
    After tell(const QString& title, const QString& text = QString());
    Answer ask(const Question& question);
    // The face's folder chooser, which is modal too.
    ChosenFolder chooseFolder();
    // A sheet on the window: it never waits for its answer.
    void sheet(const QString& title, const QString& text = QString());

private:
    After after() const;

    WindowModel& model_;
    ApplicationFace& face_;
    bool ending_ = false;
};

} // namespace tavrix
