// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QAbstractButton>
#include <QPointer>
#include <QString>

namespace tavrix
{

class appDelegate;

// The drop area: takes files from other programs and hands them to its delegate. It is a button too: who has no mouse,
// or nothing to drag, presses it to choose files.
class dragNDropView : public QAbstractButton
{
    Q_OBJECT
public:
    explicit dragNDropView(QWidget* parent = nullptr);

    [[nodiscard]] appDelegate* delegate() const;
    // Not owned; null takes no drop.
    void setDelegate(appDelegate* delegate);
    // Name of an image of the resources; nothing shows none.
    void setImageName(const QString& imageName);
    [[nodiscard]] QString imageName() const { return imageName_; }

Q_SIGNALS:
    void imageChanged();

protected:
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dragMoveEvent(QDragMoveEvent* event) override;
    void dragLeaveEvent(QDragLeaveEvent* event) override;
    void dropEvent(QDropEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    bool acceptClips(QDropEvent* event);
    void setHovered(bool hovered);

    QPointer<appDelegate> delegate_;
    QString imageName_;
    bool hovered_ = false;
};

} // namespace tavrix
