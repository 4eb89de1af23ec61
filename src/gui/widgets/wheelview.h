// SPDX-License-Identifier: GPL-3.0-or-later
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
    // Starts or stops the turning; a wheel that stands still is not drawn.
    void setSpinning(bool spinning);
    [[nodiscard]] QSize sizeHint() const override { return {24, 24}; }

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QTimer timer_;
    int step_ = 0;
};

} // namespace tavrix
