#pragma once

#include <QTimer>
#include <QWidget>

namespace tavrix
{

// A spinning wheel; drawn only while it spins.
class WheelView : public QWidget
{
    Q_OBJECT
public:
    explicit WheelView(QWidget* parent = nullptr);
    void setSpinning(bool spinning);
    [[nodiscard]] bool isSpinning() const { return timer_.isActive(); }
    [[nodiscard]] QSize sizeHint() const override { return {24, 24}; }

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QTimer timer_;
    int step_ = 0;
};

} // namespace tavrix
