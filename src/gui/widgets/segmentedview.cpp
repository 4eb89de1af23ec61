// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/widgets/segmentedview.h"

#include "base/dialogue/localisation.h"
#include "gui/widgets/images.h"

#include <QEvent>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QToolButton>

namespace tavrix
{

SegmentedView::SegmentedView(int segments, QWidget* parent) : QWidget(parent)
{
    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(2);
    for (int i = 0; i < segments; ++i) {
        auto* button = new QToolButton(this);
        button->setCheckable(true);
        button->setFocusPolicy(Qt::StrongFocus);
        connect(button, &QToolButton::clicked, this, [this, button, i] {
            // A click toggles by itself; which segment is selected is decided by the owner alone.
            button->setChecked(!button->isChecked());
            Q_EMIT pressed(i);
        });
        layout->addWidget(button);
        buttons_ << button;
        imageNames_ << QString();
    }
    setFocusProxy(buttons_.value(0));
}

QString SegmentedView::label(int segment) const
{
    return segment >= 0 && segment < segmentCount() ? buttons_.at(segment)->text() : QString();
}

void SegmentedView::setLabel(int segment, const QString& text)
{
    if (segment >= 0 && segment < segmentCount()) {
        buttons_.at(segment)->setText(text);
        buttons_.at(segment)->setAccessibleName(text);
    }
}

void SegmentedView::setImageName(int segment, const QString& imageName)
{
    if (segment < 0 || segment >= segmentCount() || imageName.isEmpty() || imageNames_.at(segment) == imageName) {
        return;
    }
    imageNames_[segment] = imageName;
    QToolButton* button = buttons_.at(segment);
    button->setIcon(imageNamed(imageName));
    const QString words = localizedString(QStringLiteral("Win_image_") + imageName, QStringLiteral("Window"));
    button->setAccessibleName(words);
    button->setToolTip(words);
}

void SegmentedView::setImageSize(const QSize& size)
{
    for (QToolButton* button : buttons_) {
        button->setIconSize(size);
    }
}

void SegmentedView::setSelectedSegment(int segment)
{
    for (int i = 0; i < segmentCount(); ++i) {
        buttons_.at(i)->setChecked(i == segment);
    }
}

void SegmentedView::nameSegments(const QString& name)
{
    for (int i = 0; i < segmentCount(); ++i) {
        buttons_.at(i)->setObjectName(name + QLatin1Char('.') + QString::number(i));
    }
}

// Images are light or dark, as the theme is.
void SegmentedView::changeEvent(QEvent* event)
{
    if (event->type() == QEvent::StyleChange) {
        for (int i = 0; i < segmentCount(); ++i) {
            if (!imageNames_.at(i).isEmpty()) {
                buttons_.at(i)->setIcon(imageNamed(imageNames_.at(i)));
            }
        }
    }
    QWidget::changeEvent(event);
}

void SegmentedView::keyPressEvent(QKeyEvent* event)
{
    const int step = event->key() == Qt::Key_Right ? 1 : event->key() == Qt::Key_Left ? -1 : 0;
    const int focused = static_cast<int>(buttons_.indexOf(qobject_cast<QToolButton*>(focusWidget())));
    if (step == 0 || focused < 0) {
        QWidget::keyPressEvent(event);
        return;
    }
    buttons_.at(qBound(0, focused + step, segmentCount() - 1))->setFocus(Qt::TabFocusReason);
}

} // namespace tavrix
