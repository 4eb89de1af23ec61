#include "gui/binding.h"

#include "base/shownname.h"
#include "gui/segmentedview.h"
#include "gui/wheelview.h"

#include <QLabel>
#include <QLineEdit>
#include <QProgressBar>

namespace tavrix
{

namespace
{

// Progress bars count in whole steps; thousandths keep short clips smooth.
constexpr int progressSteps = 1000;

} // namespace

void bindControl(QWidget* widget, Control& control)
{
    widget->setObjectName(control.objectName());
    QSizePolicy policy = widget->sizePolicy();
    policy.setRetainSizeWhenHidden(true);
    widget->setSizePolicy(policy);
    follow(control, widget, [widget, &control] {
        widget->setVisible(!control.isHidden());
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
    follow(control, wheel, [wheel, &control] { wheel->setSpinning(control.isAnimating()); });
}

void bindSegments(SegmentedView* view, SegmentedControl& control, std::function<void()> action)
{
    bindControl(view, control);
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
