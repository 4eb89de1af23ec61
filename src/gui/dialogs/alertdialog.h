// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/dialogue/alerts.h"

#include <QDialog>
#include <QList>
#include <QTimer>

class QCheckBox;
class QLabel;
class QLineEdit;
class QPushButton;
class QVBoxLayout;

namespace tavrix
{

// An alert as a dialog: plain texts, one to three buttons, an optional check box, and for timed alerts a visible
// countdown. The default button stands at the right end.
class AlertDialog : public QDialog
{
    Q_OBJECT
public:
    // One second of a timed alert lasts ten ticks.
    AlertDialog(const AlertRequest& request, int tickMilliseconds, QWidget* parent);

    [[nodiscard]] AlertOutcome outcome() const;
    // Adds a text field that holds the value.
    void addTextField(const QString& value);
    [[nodiscard]] QString typedText() const;
    // Answers by the harmless button, or as a time-out when there is none.
    void dismiss();

protected:
    void reject() override;

private:
    void buildWords(QVBoxLayout* column);
    void buildButtons(QVBoxLayout* column);
    void startCountdown(int tickMilliseconds);
    void tick();
    void showRemaining();
    void answer(int button);

    AlertRequest request_;
    QTimer timer_;
    QList<QPushButton*> buttons_;
    QCheckBox* checkBox_ = nullptr;
    QLabel* countdown_ = nullptr;
    QLineEdit* field_ = nullptr;
    QVBoxLayout* column_ = nullptr;
    int ticks_ = 0;
    int button_ = -1;
};

} // namespace tavrix
