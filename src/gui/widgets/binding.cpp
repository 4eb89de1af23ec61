// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/widgets/binding.h"

#include "base/text/shownname.h"
#include "gui/widgets/segmentedview.h"
#include "gui/widgets/wheelview.h"

#include <QAbstractItemModel>
#include <QLabel>
#include <QLineEdit>
#include <QProgressBar>
#include <QTimer>

namespace tavrix
{

namespace
{

// Progress bars count in whole steps; thousandths keep short clips smooth.
constexpr int progressSteps = 1000;

} // namespace

void followRows(const QAbstractItemModel& rows, QObject* context, std::function<void()> function)
{
    auto* soon = new QTimer(context);
    soon->setSingleShot(true);
    QObject::connect(soon, &QTimer::timeout, context, std::move(function));
    const auto start = [soon] {
        soon->start(0);
    };
    QObject::connect(&rows, &QAbstractItemModel::rowsInserted, soon, start);
    QObject::connect(&rows, &QAbstractItemModel::rowsRemoved, soon, start);
    QObject::connect(&rows, &QAbstractItemModel::rowsMoved, soon, start);
    QObject::connect(&rows, &QAbstractItemModel::modelReset, soon, start);
    QObject::connect(&rows, &QAbstractItemModel::dataChanged, soon, start);
    start();
}

void bindControl(QWidget* widget, Control& control, const std::function<bool()>& shownToo)
{
    widget->setObjectName(control.objectName());
    QSizePolicy policy = widget->sizePolicy();
    policy.setRetainSizeWhenHidden(true);
    widget->setSizePolicy(policy);
    follow(control, widget, [widget, &control, shownToo] {
        widget->setVisible(!control.isHidden() || (shownToo && shownToo()));
        widget->setEnabled(control.isEnabled());
    });
}

void bindText(QLabel* label, TextField& field, bool keepOwnText)
{
    bindControl(label, field);
    label->setTextFormat(Qt::PlainText);
    follow(field, label, [label, &field, keepOwnText] {
        if (!keepOwnText || !field.stringValue().isEmpty()) {
            label->setText(shownText(field.stringValue()));
        }
        // An empty label would be told of as one without a content.
        if (!keepOwnText) {
            label->setVisible(!field.isHidden() && !label->text().isEmpty());
        }
    });
}

void bindText(QLineEdit* edit, TextField& field)
{
    bindControl(edit, field);
    follow(field, edit, [edit, &field] {
        if (edit->text() != field.stringValue()) {
            edit->setText(field.stringValue());
        }
    });
    QObject::connect(edit, &QLineEdit::textEdited, &field,
                     [&field](const QString& text) { field.setStringValue(text); });
}

void bindProgress(QProgressBar* bar, ProgressBar& control)
{
    bindControl(bar, control);
    bar->setTextVisible(false);
    follow(control, bar, [bar, &control] {
        const double span = control.maxValue() - control.minValue();
        if (control.isIndeterminate() && control.isAnimating()) {
            bar->setRange(0, 0);
            return;
        }
        bar->setRange(0, progressSteps);
        const double part = span > 0 ? (control.doubleValue() - control.minValue()) / span : 0;
        bar->setValue(qRound(qBound(0.0, part, 1.0) * progressSteps));
    });
}

void bindWheel(WheelView* wheel, SpinningIndicator& control)
{
    bindControl(wheel, control);
    // A wheel that stands still is nothing to tell of either.
    follow(control, wheel, [wheel, &control] {
        wheel->setSpinning(control.isAnimating());
        wheel->setVisible(control.isAnimating() && !control.isHidden());
    });
}

void bindSegments(SegmentedView* view, SegmentedControl& control, std::function<void()> action,
                  const std::function<bool()>& shownToo)
{
    bindControl(view, control, shownToo);
    view->nameSegments(control.objectName());
    follow(control, view, [view, &control] {
        for (int i = 0; i < control.segmentCount(); ++i) {
            view->setImageName(i, control.imageName(i));
        }
        view->setSelectedSegment(control.selectedSegment());
    });
    QObject::connect(view, &SegmentedView::pressed, &control, [&control, action = std::move(action)](int segment) {
        control.setSelectedSegment(segment);
        action();
    });
}

} // namespace tavrix
