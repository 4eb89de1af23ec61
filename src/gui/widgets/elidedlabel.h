// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QLabel>

namespace tavrix
{

// A one-line label that shortens a long text in its middle instead of widening the window.
class ElidedLabel : public QLabel
{
    Q_OBJECT
public:
    using QLabel::QLabel;
    [[nodiscard]] QSize minimumSizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;
};

} // namespace tavrix
