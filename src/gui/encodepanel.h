#pragma once

#include <QWidget>

class QVBoxLayout;

namespace tavrix
{

class appDelegate;

// Right side of the window: destination, output format of new clips, start button, the running encode.
class EncodePanel : public QWidget
{
    Q_OBJECT
public:
    explicit EncodePanel(appDelegate& controller, QWidget* parent = nullptr);

    // The widgets that take the focus, in the order of the Tab key.
    [[nodiscard]] QList<QWidget*> tabOrder() const { return order_; }

private:
    void buildDestination(QVBoxLayout* layout);
    void buildFormat(QVBoxLayout* layout);
    void buildStart(QVBoxLayout* layout);
    void buildProgress(QVBoxLayout* layout);

    appDelegate& controller_;
    QList<QWidget*> order_; // as they are built, from top to bottom
};

} // namespace tavrix
