// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QSvgRenderer>
#include <QWidget>

namespace tavrix
{

// One vector slide, fitted into the widget.
class SlideView : public QWidget
{
    Q_OBJECT
public:
    explicit SlideView(QWidget* parent = nullptr);
    // A drawing in SVG; empty shows nothing.
    void setSlide(const QByteArray& drawing);

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QSvgRenderer renderer_;
};

} // namespace tavrix
