// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QList>
#include <QWidget>

class QToolButton;

namespace tavrix
{

// A row of joined buttons with images or labels, of which one may be selected. A press tells the owner; what is then
// selected is the owner's business. The arrow keys go from segment to segment.
class SegmentedView : public QWidget
{
    Q_OBJECT
public:
    explicit SegmentedView(int segments, QWidget* parent = nullptr);

    [[nodiscard]] int segmentCount() const { return static_cast<int>(buttons_.size()); }
    // Null for an index out of range.
    [[nodiscard]] QToolButton* segment(int index) const { return buttons_.value(index); }
    [[nodiscard]] QString label(int segment) const;
    // Out of range is ignored.
    void setLabel(int segment, const QString& text);
    void setImageName(int segment, const QString& imageName);
    void setImageSize(const QSize& size);
    // -1 selects none.
    void setSelectedSegment(int segment);
    // Gives every segment the object name "<name>.<number>".
    void nameSegments(const QString& name);

Q_SIGNALS:
    void pressed(int segment);

protected:
    void keyPressEvent(QKeyEvent* event) override;
    void changeEvent(QEvent* event) override;

private:
    QList<QToolButton*> buttons_;
    QList<QString> imageNames_;
};

} // namespace tavrix
