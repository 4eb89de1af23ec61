#pragma once

#include <QWidget>

namespace tavrix
{

class appDelegate;
class dragNDropView;

// The drop area with its words, and what an analysis shows in it: wheel, number of the clip, stop control.
class DropPanel : public QWidget
{
    Q_OBJECT
public:
    explicit DropPanel(appDelegate& controller, QWidget* parent = nullptr);

    [[nodiscard]] dragNDropView* dropView() const { return view_; }

Q_SIGNALS:
    void chooseFiles();
    void chooseFolder();

private:
    void buildWords();
    void buildAnalysisLine();
    void askWhat();

    appDelegate& controller_;
    dragNDropView* view_;
};

} // namespace tavrix
