#pragma once

#include "app/batchtally.h"

#include <QList>
#include <QPair>
#include <QString>
#include <QWidget>

class QLabel;
class QListWidget;
class QPushButton;

namespace tavrix
{

class appDelegate;

// The bottom line of the window: what has just happened, and how many of the dropped files were left out and why.
class LeftOutBar : public QWidget
{
    Q_OBJECT
public:
    explicit LeftOutBar(appDelegate& controller, QWidget* parent = nullptr);

    // The widgets that take the focus, in the order of the Tab key.
    [[nodiscard]] QList<QWidget*> tabOrder() const;
    // One line about what has just happened; nothing clears it.
    void showNotice(const QString& text);

private:
    void listen();
    void refresh();
    void showList();
    void sumUp(bool stopped);

    appDelegate& controller_;
    QLabel* notice_;
    QPushButton* button_;
    QList<QPair<QString, QString>> leftOut_; // path, reason
    BatchTally tally_;
};

} // namespace tavrix
