// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QObject>
#include <QString>
#include <QStringList>

#include <vector>

// The observable controls of the main window, free of any widget: they carry the state that the step machines read and
// write. A face binds widgets or terminal lines to them. Every setter emits changed() when the state really changes.
namespace tavrix
{

class Control : public QObject
{
    Q_OBJECT
public:
    // The object name is the control's name; faces and tests find it by that.
    explicit Control(const char* name, QObject* parent = nullptr);

    [[nodiscard]] bool isHidden() const { return hidden_; }
    void setHidden(bool hidden);
    [[nodiscard]] bool isEnabled() const { return enabled_; }
    void setEnabled(bool enabled);

Q_SIGNALS:
    void changed();

protected:
    template <typename T> void assign(T& field, const T& value)
    {
        if (!(field == value)) {
            field = value;
            Q_EMIT changed();
        }
    }

private:
    bool hidden_ = false;
    bool enabled_ = true;
};

// A text; null is shown as empty.
class TextField : public Control
{
    Q_OBJECT
public:
    using Control::Control;
    [[nodiscard]] QString stringValue() const { return text_; }
    void setStringValue(const QString& text) { assign(text_, text); }

private:
    QString text_;
};

class IntegerField : public Control
{
    Q_OBJECT
public:
    using Control::Control;
    [[nodiscard]] int intValue() const { return value_; }
    void setIntValue(int value) { assign(value_, value); }

private:
    int value_ = 0;
};

// A row of segments with images or labels; -1 means that none is selected.
class SegmentedControl : public Control
{
    Q_OBJECT
public:
    // One segment per image name ("" for none), none selected.
    SegmentedControl(const char* name, const QStringList& imageNames, QObject* parent = nullptr);

    [[nodiscard]] int segmentCount() const { return static_cast<int>(imageNames_.size()); }
    [[nodiscard]] int selectedSegment() const { return selected_; }
    // Out of range is ignored.
    void setSelectedSegment(int segment);
    // Nothing for a segment out of range, which the setter ignores.
    [[nodiscard]] QString imageName(int segment) const { return imageNames_.value(segment); }
    void setImageName(int segment, const QString& imageName);

private:
    QStringList imageNames_;
    int selected_ = -1;
};

// A two-state button or menu item: state 0 is off, 1 on.
class StateButton : public Control
{
    Q_OBJECT
public:
    using Control::Control;
    [[nodiscard]] int state() const { return state_; }
    void setState(int state) { assign(state_, state); }
    [[nodiscard]] QString title() const { return title_; }
    void setTitle(const QString& title) { assign(title_, title); }

private:
    int state_ = 0;
    QString title_;
};

class ProgressBar : public Control
{
    Q_OBJECT
public:
    using Control::Control;
    [[nodiscard]] bool isIndeterminate() const { return indeterminate_; }
    void setIndeterminate(bool indeterminate) { assign(indeterminate_, indeterminate); }
    [[nodiscard]] double minValue() const { return minimum_; }
    [[nodiscard]] double maxValue() const { return maximum_; }
    // In any unit; the value is not brought into the range.
    void setRange(double minimum, double maximum);
    [[nodiscard]] double doubleValue() const { return value_; }
    void setDoubleValue(double value) { assign(value_, value); }
    // By less than 0 too.
    void incrementBy(double delta) { setDoubleValue(value_ + delta); }
    [[nodiscard]] bool isAnimating() const { return animating_; }
    void startAnimation() { assign(animating_, true); }
    void stopAnimation() { assign(animating_, false); }

private:
    bool indeterminate_ = true;
    bool animating_ = false;
    double minimum_ = 0;
    double maximum_ = 100;
    double value_ = 0;
};

class SpinningIndicator : public Control
{
    Q_OBJECT
public:
    using Control::Control;
    [[nodiscard]] bool isAnimating() const { return animating_; }
    void startAnimation() { assign(animating_, true); }
    void stopAnimation() { assign(animating_, false); }

private:
    bool animating_ = false;
};

// Shows an image of the resources by name; null shows nothing.
class ImageView : public Control
{
    Q_OBJECT
public:
    using Control::Control;
    [[nodiscard]] QString imageName() const { return imageName_; }
    void setImageName(const QString& imageName) { assign(imageName_, imageName); }

private:
    QString imageName_;
};

// The drawer that shows the batch list.
class Drawer : public Control
{
    Q_OBJECT
public:
    using Control::Control;
    [[nodiscard]] bool isOpen() const { return open_; }
    void open() { assign(open_, true); }
    void close() { assign(open_, false); }

private:
    bool open_ = false;
};

} // namespace tavrix
