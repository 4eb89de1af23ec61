// SPDX-License-Identifier: GPL-3.0-or-later
// A window that shows the text which one of this program's own tools prints.
#pragma once

#include <QByteArray>
#include <QWidget>

class QHBoxLayout;
class QPlainTextEdit;

namespace tavrix
{

class ToolProcess;

// The tool runs beside the window: a file that is slow to read keeps nobody waiting, and one that is made to break its
// reader breaks the tool alone. The window goes for good when it is closed, and the tool with it.
class ToolWindow : public QWidget
{
    Q_OBJECT
public:
    ToolWindow(const QString& objectName, QWidget* owner);

    // Shows the window and what the tool prints on both of its streams. The tool lies beside this program; what an
    // earlier one still prints is dropped.
    void showOutput(const QString& tool, const QStringList& arguments);
    [[nodiscard]] QString text() const;
    // True until the tool has printed everything.
    [[nodiscard]] bool isWaiting() const { return tool_ != nullptr; }

protected:
    // Where more buttons may stand, after the copy button.
    [[nodiscard]] QHBoxLayout& buttons() const { return *buttons_; }
    void keyPressEvent(QKeyEvent* event) override;

Q_SIGNALS:
    void finished();

private:
    void takeOutput(const QByteArray& bytes);
    void finish();

    QPlainTextEdit* view_;
    QHBoxLayout* buttons_;
    ToolProcess* tool_ = nullptr; // until it has printed everything
    QByteArray output_;
};

} // namespace tavrix
