// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/preview/trimline.h"

#include "gui/widgets/theme.h"

#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>

#include <algorithm>
#include <cmath>

namespace tavrix
{

namespace
{

constexpr int lineHeight = 52;
constexpr int markWidth = 9;
constexpr int reach = 7; // pixels beside a mark that still count as the mark
constexpr double perSecond = 1000;

} // namespace

TrimLine::TrimLine(QWidget* parent) : QSlider(Qt::Horizontal, parent)
{
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    setFocusPolicy(Qt::StrongFocus);
}

QSize TrimLine::sizeHint() const
{
    return {400, lineHeight};
}

QSize TrimLine::minimumSizeHint() const
{
    return {160, lineHeight};
}

QRect TrimLine::track() const
{
    return rect().adjusted(markWidth, 3, -markWidth, -3);
}

int TrimLine::thumbnailCount() const
{
    constexpr int usual = 78;
    return qMax(1, track().width() / usual);
}

QSize TrimLine::thumbnailSize() const
{
    return (QSizeF(static_cast<double>(track().width()) / thumbnailCount(), track().height()) * devicePixelRatioF())
        .toSize();
}

void TrimLine::setMarks(std::optional<double> from, std::optional<double> to)
{
    from_ = from;
    to_ = to;
    update();
}

void TrimLine::clearThumbnails()
{
    thumbnails_.clear();
    update();
}

void TrimLine::setThumbnail(int number, const QImage& image)
{
    thumbnails_.resize(qMax(thumbnails_.size(), qsizetype{thumbnailCount()}));
    if (number >= 0 && number < thumbnails_.size()) {
        thumbnails_[number] = image;
        update();
    }
}

bool TrimLine::isFilled() const
{
    return thumbnails_.size() == thumbnailCount() &&
           std::ranges::none_of(thumbnails_, [](const QImage& image) { return image.isNull(); });
}

int TrimLine::placeOf(int milliseconds) const
{
    const QRect line = track();
    const double share = maximum() > 0 ? static_cast<double>(milliseconds) / maximum() : 0;
    return line.left() + qRound(qBound(0.0, share, 1.0) * line.width());
}

double TrimLine::secondsAt(int x) const
{
    const QRect line = track();
    const double share = line.width() > 0 ? static_cast<double>(x - line.left()) / line.width() : 0;
    return qBound(0.0, share, 1.0) * maximum() / perSecond;
}

TrimLine::Held TrimLine::markAt(int x) const
{
    const auto lies = [this, x](const std::optional<double>& mark, int side) {
        return mark && std::abs(placeOf(qRound(*mark * perSecond)) + side * markWidth / 2 - x) <= reach;
    };
    // The marks stand outside of the part.
    if (lies(from_, -1)) {
        return Held::From;
    }
    return lies(to_, 1) ? Held::To : Held::Place;
}

void TrimLine::follow(int x)
{
    const double seconds = secondsAt(x);
    switch (held_) {
    case Held::Nothing:
        break;
    case Held::Place:
        Q_EMIT wentTo(seconds);
        break;
    case Held::From:
        Q_EMIT fromMoved(seconds);
        break;
    case Held::To:
        Q_EMIT toMoved(seconds);
        break;
    }
}

void TrimLine::mousePressEvent(QMouseEvent* event)
{
    if (event->button() != Qt::LeftButton) {
        QWidget::mousePressEvent(event);
        return;
    }
    held_ = markAt(qRound(event->position().x()));
    setSliderDown(held_ == Held::Place);
    if (held_ == Held::Place) {
        follow(qRound(event->position().x()));
    }
}

void TrimLine::mouseMoveEvent(QMouseEvent* event)
{
    follow(qRound(event->position().x()));
}

void TrimLine::mouseReleaseEvent(QMouseEvent* /*event*/)
{
    setSliderDown(false);
    const bool mark = held_ == Held::From || held_ == Held::To;
    held_ = Held::Nothing;
    if (mark) {
        Q_EMIT markReleased();
    }
}

// The window goes from picture to picture by the keys that would move a slider.
void TrimLine::keyPressEvent(QKeyEvent* event)
{
    event->ignore();
}

void TrimLine::wheelEvent(QWheelEvent* event)
{
    event->ignore();
}

void TrimLine::resizeEvent(QResizeEvent* event)
{
    QSlider::resizeEvent(event);
    Q_EMIT resized();
}

void TrimLine::paintMark(QPainter& painter, double seconds, bool opens) const
{
    const QRect line = track();
    const int place = placeOf(qRound(seconds * perSecond));
    const QRect mark(opens ? place - markWidth : place, line.top() - 2, markWidth, line.height() + 4);
    painter.setPen(Qt::NoPen);
    painter.setBrush(currentTheme().accent);
    painter.drawRoundedRect(mark, 3, 3);
    painter.setPen(QPen(currentTheme().accentText, 2));
    painter.drawLine(mark.center().x() + 1, mark.center().y() - 7, mark.center().x() + 1, mark.center().y() + 7);
}

void TrimLine::paintEvent(QPaintEvent* /*event*/)
{
    const Theme& theme = currentTheme();
    const QRect line = track();
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.fillRect(line, Qt::black);
    for (qsizetype i = 0; i < thumbnails_.size(); ++i) {
        const int left = line.left() + static_cast<int>(line.width() * i / thumbnails_.size());
        const int right = line.left() + static_cast<int>(line.width() * (i + 1) / thumbnails_.size());
        const QSize size = thumbnails_.at(i).size().scaled(right - left, line.height(), Qt::KeepAspectRatio);
        const QPoint corner(left + (right - left - size.width()) / 2, line.top() + (line.height() - size.height()) / 2);
        painter.drawImage(QRect(corner, size), thumbnails_.at(i));
    }
    if (from_ || to_) {
        QColor veil = theme.windowBottom;
        veil.setAlpha(190);
        const int begin = from_ ? placeOf(qRound(*from_ * perSecond)) : line.left();
        const int end = to_ ? placeOf(qRound(*to_ * perSecond)) : line.left() + line.width();
        painter.fillRect(QRect(line.left(), line.top(), begin - line.left(), line.height()), veil);
        painter.fillRect(QRect(end, line.top(), line.left() + line.width() - end, line.height()), veil);
        painter.setBrush(Qt::NoBrush);
        painter.setPen(QPen(theme.accent, 2));
        painter.drawRect(QRect(begin, line.top(), end - begin, line.height()));
    }
    if (from_) {
        paintMark(painter, *from_, true);
    }
    if (to_) {
        paintMark(painter, *to_, false);
    }
    const int place = placeOf(value());
    painter.fillRect(QRect(place - 2, line.top() - 3, 4, line.height() + 6), Qt::black);
    painter.fillRect(QRect(place - 1, line.top() - 3, 2, line.height() + 6), Qt::white);
    if (hasFocus()) {
        painter.setBrush(Qt::NoBrush);
        painter.setPen(QPen(theme.accent, 2));
        painter.drawRoundedRect(rect().adjusted(1, 1, -1, -1), 4, 4);
    }
}

} // namespace tavrix
