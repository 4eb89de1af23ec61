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

private:
    void buildDestination(QVBoxLayout* layout);
    void buildFormat(QVBoxLayout* layout);
    void buildStart(QVBoxLayout* layout);
    void buildProgress(QVBoxLayout* layout);

    appDelegate& controller_;
};

} // namespace tavrix
