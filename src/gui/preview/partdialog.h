// SPDX-License-Identifier: GPL-3.0-or-later
// Saves a clip, or a part of it, as a file of its own.
#pragma once

#include "base/text/cliptime.h"

#include <QDialog>
#include <QString>

#include <optional>

class QComboBox;
class QLabel;
class QProgressBar;
class QPushButton;

namespace tavrix
{

class ToolProcess;

// Asks for the kind and the size, then for the name, and lets a program of its own do the work: window and encode go on
// meanwhile. Closing it ends that program, which leaves nothing behind.
class PartDialog : public QDialog
{
    Q_OBJECT
public:
    PartDialog(const QString& clip, const std::optional<ClipPart>& part, QWidget* parent);
    ~PartDialog() override;

    [[nodiscard]] bool isWorking() const;

public Q_SLOTS:
    void reject() override;

private:
    void buildChoice();
    void buildWork();
    void chooseFile();
    void save(const QString& path);
    void takeOutput(const QByteArray& bytes);
    void takeLine(const QString& line);
    void takeEnd(int status);
    void showWork(bool working);
    void say(const QString& words, bool warns);
    [[nodiscard]] bool isSound() const;

    QString clip_;
    std::optional<ClipPart> part_;
    QComboBox* kind_ = nullptr;
    QComboBox* size_ = nullptr;
    QLabel* words_ = nullptr;
    QProgressBar* progress_ = nullptr;
    QPushButton* save_ = nullptr;
    QPushButton* cancel_ = nullptr;
    ToolProcess* tool_;
    QString destination_;
    QByteArray open_;    // begins the line that is not yet whole
    QString lastLine_;   // that the program has written for people
    QString warning_;    // what the file lacks
    bool asked_ = false; // to end
};

} // namespace tavrix
