#pragma once

#include <QWidget>

namespace tavrix
{

class appDelegate;
class dragNDropView;
class SegmentedView;

// The drop area with its words, and what an analysis shows in it: wheel, number of the clip, stop control.
class DropPanel : public QWidget
{
    Q_OBJECT
public:
    explicit DropPanel(appDelegate& controller, QWidget* parent = nullptr);

    [[nodiscard]] dragNDropView* dropView() const { return view_; }
    // The widgets that take the focus, in the order of the Tab key.
    [[nodiscard]] QList<QWidget*> tabOrder() const;

Q_SIGNALS:
    // What a person wants to pick instead of dropping it.
    void chooseFiles();
    void chooseFolder();

private:
    void buildWords();
    void buildAnalysisLine();
    void askWhat();

    appDelegate& controller_;
    dragNDropView* view_;
    SegmentedView* stop_ = nullptr;
};

} // namespace tavrix
