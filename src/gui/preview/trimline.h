// SPDX-License-Identifier: GPL-3.0-or-later
// The time line of the preview: small pictures of the clip, the place that is shown, and the marks of a part.
#pragma once

#include <QImage>
#include <QList>
#include <QSlider>

#include <optional>

namespace tavrix
{

// Values are milliseconds of the clip. A press goes to a place and follows the mouse; on a mark it moves the mark.
class TrimLine : public QSlider
{
    Q_OBJECT
public:
    explicit TrimLine(QWidget* parent = nullptr);

    // Nothing: no such mark.
    void setMarks(std::optional<double> from, std::optional<double> to); // seconds
    void clearThumbnails();
    void setThumbnail(int number, const QImage& image);
    // How many small pictures fill the line, and their size in pixels of the screen.
    [[nodiscard]] int thumbnailCount() const;
    [[nodiscard]] QSize thumbnailSize() const;
    // Whether all of them are there.
    [[nodiscard]] bool isFilled() const;
    // Where the milliseconds lie, in the line's own coordinates.
    [[nodiscard]] int placeOf(int milliseconds) const;

    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSizeHint() const override;

Q_SIGNALS:
    void wentTo(double seconds);
    void fromMoved(double seconds);
    void toMoved(double seconds);
    // A mark was let go.
    void markReleased();
    void resized();

protected:
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    enum class Held { Nothing, Place, From, To };

    [[nodiscard]] QRect track() const;
    [[nodiscard]] double secondsAt(int x) const;
    [[nodiscard]] Held markAt(int x) const;
    void follow(int x);
    void paintMark(QPainter& painter, double seconds, bool opens) const;

    QList<QImage> thumbnails_;
    std::optional<double> from_;
    std::optional<double> to_;
    Held held_ = Held::Nothing;
};

} // namespace tavrix
