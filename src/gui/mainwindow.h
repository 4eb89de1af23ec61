#pragma once

#include <QMainWindow>
#include <QTranslator>

class QHBoxLayout;
class QVBoxLayout;

namespace tavrix
{

class appDelegate;
class BatchDrawer;
class DropPanel;
class EncodePanel;
class LeftOutBar;
class PreferencesSheet;

// The main window on the controller's model: drop area, destination, start and progress above, the drawer below.
class MainWindow : public QMainWindow
{
    Q_OBJECT
public:
    explicit MainWindow(appDelegate& controller);

    // Makes the controller the delegate of the drop area.
    void takeDrops();
    // Replaces the marked texts by those of the language in force.
    void localise();
    // Choosers whose answer is taken in like a drop.
    void chooseFiles();
    void chooseFolder();
    void showAbout();
    // All that is known of the selected clip, in a window of its own; nothing without a selection.
    void showInformation();
    // The report of a problem; its mail button sends it on the way of the controller.
    void showReport();
    // Grows toward a side by delta + 50 and stays on the screen; a maximised window keeps its size.
    void growToward(const QString& side, float delta);
    [[nodiscard]] PreferencesSheet& preferences() const { return *preferences_; }
    [[nodiscard]] BatchDrawer& batchDrawer() const { return *drawer_; }

protected:
    // What is dropped beside the drop area was meant for it: people do not aim.
    bool event(QEvent* event) override;
    void closeEvent(QCloseEvent* event) override;

private:
    void build();
    QHBoxLayout* buildUpper();
    QHBoxLayout* buildFoot();
    void watchDrawer();
    void watchTheme();
    void setOrder();
    void openPaths(const QStringList& paths);

    appDelegate& controller_;
    DropPanel* drop_ = nullptr;
    EncodePanel* encode_ = nullptr;
    BatchDrawer* drawer_ = nullptr;
    LeftOutBar* foot_ = nullptr;
    PreferencesSheet* preferences_ = nullptr;
    bool drawerWasOpen_ = false;
    int heightBefore_ = 0; // of the window before it grew for the drawer
    int heightOpen_ = 0;   // after that
    QTranslator toolkitTexts_;
};

} // namespace tavrix
