// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/window/batchdrawer.h"

#include "app/appdelegate.h"
#include "app/partfile.h"
#include "base/dialogue/shownvalues.h"
#include "gui/widgets/binding.h"
#include "gui/widgets/windowtext.h"
#include "gui/window/batchdelegate.h"
#include "gui/window/batchview.h"
#include "gui/window/rowdetails.h"
#include "platform/desktop.h"

#include <QAction>
#include <QComboBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QMenu>
#include <QPushButton>
#include <QVBoxLayout>

#include <algorithm>

namespace tavrix
{

BatchDrawer::~BatchDrawer()
{
    // The list outlives its view.
    controller_.model().encBatchArrayController.setRowWords({});
}

BatchDrawer::BatchDrawer(appDelegate& controller, QWidget* parent)
    : QWidget(parent), controller_(controller),
      details_(new RowDetails(controller.model().encBatchArrayController, this)),
      list_(new BatchView(controller.model().encBatchArrayController, this))
{
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(6);
    auto* head = new QHBoxLayout;
    buildHead(head);
    layout->addLayout(head);
    buildList();
    layout->addWidget(list_, 1);
    auto* buttons = new QHBoxLayout;
    buildButtons(buttons);
    layout->addLayout(buttons);

    Drawer& drawer = controller_.model().drawer;
    setObjectName(drawer.objectName());
    follow(drawer, this, [this, &drawer] { setVisible(drawer.isOpen()); });
    BatchList& rows = controller_.model().encBatchArrayController;
    followRows(rows, this, [this] {
        refreshHead();
        refreshButtons();
    });
    connect(&rows, &BatchList::selectionChanged, this, [this] {
        refreshHead();
        refreshButtons();
    });
    connect(&controller_, &appDelegate::rowStarted, this, &BatchDrawer::refreshHead);
    refreshHead();
    refreshButtons();
}

void BatchDrawer::buildHead(QHBoxLayout* line)
{
    count_ = new QLabel(this);
    count_->setObjectName(QStringLiteral("batchCountStr"));
    count_->setProperty("role", QStringLiteral("step"));
    line->addWidget(count_, 1);
    auto* caption = new QLabel(QStringLiteral("@@Win_rowFormat"), this);
    caption->setProperty("role", QStringLiteral("caption"));
    line->addWidget(caption);
    format_ = new QComboBox(this);
    format_->setObjectName(QStringLiteral("rowFormatBt"));
    format_->setAccessibleName(QStringLiteral("@@Win_acc_rowFormat"));
    format_->setToolTip(QStringLiteral("@@Win_tip_rowFormat"));
    format_->setPlaceholderText(QStringLiteral("@@Win_rowFormatNone"));
    for (int out = 0; out < outputFormatCount; ++out) {
        format_->addItem(formatText(QStringLiteral("@@Win_format%d"), {out}));
        format_->setItemData(out, wrappedTip(formatCaption(out)), Qt::ToolTipRole);
    }
    connect(format_, &QComboBox::activated, this, &BatchDrawer::setFormat);
    caption->setBuddy(format_);
    line->addWidget(format_);
}

void BatchDrawer::buildList()
{
    BatchList& rows = controller_.model().encBatchArrayController;
    list_->setObjectName(rows.objectName());
    list_->setAccessibleName(QStringLiteral("@@Win_acc_batch"));
    list_->setItemDelegate(new BatchDelegate(controller_.model(), *details_, list_));
    rows.setRowWords([this](int row) { return details_->spokenWords(row); });
    connect(list_, &BatchView::previewWished, this, &BatchDrawer::previewSelected);
    connect(list_, &BatchView::removalWished, this, &BatchDrawer::removeSelected);
    connect(list_, &QListView::doubleClicked, this, [this] { previewSelected(); });
    connect(list_, &QListView::customContextMenuRequested, this, &BatchDrawer::showMenu);
    connect(&controller_, &appDelegate::rowStarted, this, &BatchDrawer::followRow);
    const auto redraw = [this] {
        list_->viewport()->update();
    };
    connect(details_, &RowDetails::changed, list_, redraw);
    connect(&controller_.model().encStopBt, &Control::changed, list_, redraw);
    connect(&controller_, &appDelegate::rowStep, this, [this](int row, int pass, int passes, double fraction) {
        details_->setStep({row, pass, passes, fraction});
    });
    connect(&controller_, &appDelegate::rowFinished, this, [this] { details_->setStep({}); });
}

QPushButton* BatchDrawer::addButton(QHBoxLayout* line, const char* name, const char* text, const char* tip)
{
    auto* button = new QPushButton(QLatin1String(text), this);
    button->setObjectName(QLatin1String(name));
    button->setToolTip(QLatin1String(tip));
    line->addWidget(button);
    return button;
}

void BatchDrawer::buildButtons(QHBoxLayout* line)
{
    WindowModel& model = controller_.model();
    preview_ = addButton(line, "", "@@Win_preview", "@@Win_acc_preview");
    bindControl(preview_, model.previewBt);
    connect(preview_, &QPushButton::clicked, this, &BatchDrawer::previewSelected);
    show_ = addButton(line, "showOutputBt", "@@Win_showOutput", "@@Win_tip_showOutput");
    connect(show_, &QPushButton::clicked, this, &BatchDrawer::showOutputOfSelected);
    line->addStretch(1);
    remove_ = addButton(line, "", "@@Win_remove", "@@Win_acc_remove");
    bindControl(remove_, model.batchEncRemoveBt);
    connect(remove_, &QPushButton::clicked, this, &BatchDrawer::removeSelected);
    removeConverted_ = addButton(line, "removeConvertedBt", "@@Win_removeConverted", "@@Win_tip_removeConverted");
    connect(removeConverted_, &QPushButton::clicked, this, [this] { controller_.removeConverted(); });
    removeAll_ = addButton(line, "", "@@Win_removeAll", "@@Win_acc_removeAll");
    bindControl(removeAll_, model.batchEncRemoveAllBt);
    connect(removeAll_, &QPushButton::clicked, this,
            [this, &model] { controller_.encBatchRemoveAll(&model.batchEncRemoveAllBt); });
}

QList<QWidget*> BatchDrawer::tabOrder() const
{
    return {format_, list_, preview_, show_, remove_, removeConverted_, removeAll_};
}

void BatchDrawer::showTexts()
{
    list_->setEmptyWords(windowText("Win_listEmpty"));
    refreshHead();
}

void BatchDrawer::removeSelected()
{
    controller_.encBatchRemove(&controller_.model().batchEncRemoveBt);
}

void BatchDrawer::previewSelected()
{
    selectAny();
    controller_.iba_preview(controller_.model().encBatchArrayController.selectedRow());
}

// What asks for one clip means the first where nobody has chosen.
void BatchDrawer::selectAny()
{
    BatchList& rows = controller_.model().encBatchArrayController;
    if (rows.selectedRow() < 0 && rows.count() > 0) {
        rows.setSelectedRow(0);
    }
}

void BatchDrawer::showOutputOfSelected()
{
    const BatchList& rows = controller_.model().encBatchArrayController;
    if (const int row = rows.selectedRow(); row >= 0 && !rows.row(row).output.isEmpty()) {
        revealInFinder(rows.row(row).output);
    }
}

// The row being encoded keeps the format that its output is made in.
void BatchDrawer::setFormat(int out)
{
    BatchList& rows = controller_.model().encBatchArrayController;
    for (const int row : rows.selectedRows()) {
        if (!rows.row(row).isCurrent()) {
            rows.setOut(row, out);
        }
    }
}

void BatchDrawer::convertWhole()
{
    BatchList& rows = controller_.model().encBatchArrayController;
    for (const int row : rows.selectedRows()) {
        if (!rows.row(row).isCurrent()) {
            rows.setPart(row, std::nullopt);
        }
    }
}

// The list goes along with the batch, unless the user has scrolled to another place.
void BatchDrawer::followRow(int row)
{
    const BatchList& rows = controller_.model().encBatchArrayController;
    const QRect before = list_->visualRect(rows.index(qMax(0, row - 1)));
    if (before.intersects(list_->viewport()->rect())) {
        list_->scrollTo(rows.index(row));
    }
}

QString BatchDrawer::countWords() const
{
    const BatchList& rows = controller_.model().encBatchArrayController;
    double seconds = 0;
    for (int i = 0; i < rows.count(); ++i) {
        seconds += convertedRecord(rows.row(i)).value(record::w_duration).toDouble();
    }
    const QString clips = rows.count() == 1 ? windowText("Win_oneClip") : windowText("Win_clips", {rows.count()});
    if (rows.count() == 0) {
        return clips;
    }
    const qint64 bytes = details_->sizeOfAll();
    return bytes == 0 ? windowText("Win_clipsAndLength", {clips, durationWords(seconds)})
                      : windowText("Win_clipsLengthAndSize", {clips, durationWords(seconds), shownSize(bytes)});
}

void BatchDrawer::refreshHead()
{
    const BatchList& rows = controller_.model().encBatchArrayController;
    count_->setText(countWords());
    int common = -1;
    bool any = false;
    bool several = false;
    for (const int row : rows.selectedRows()) {
        if (row < rows.count() && !rows.row(row).isCurrent()) {
            several = several || (any && rows.row(row).out != common);
            common = rows.row(row).out;
            any = true;
        }
    }
    const int selected = rows.selectedRow();
    const bool running = !any && selected >= 0 && selected < rows.count();
    format_->setEnabled(any);
    format_->setPlaceholderText(windowText(several ? "Win_rowFormatSeveral" : "Win_rowFormatNone"));
    format_->setCurrentIndex(running ? rows.row(selected).out : several ? -1 : common);
}

void BatchDrawer::refreshButtons()
{
    const BatchList& rows = controller_.model().encBatchArrayController;
    const int selected = rows.selectedRow();
    show_->setEnabled(selected >= 0 && selected < rows.count() && !rows.row(selected).output.isEmpty());
    bool converted = false;
    for (int i = 0; i < rows.count() && !converted; ++i) {
        converted = rows.row(i).isConverted();
    }
    removeConverted_->setEnabled(converted);
}

void BatchDrawer::showMenu(const QPoint& place)
{
    BatchList& rows = controller_.model().encBatchArrayController;
    const int row = list_->indexAt(place).row();
    if (row < 0) {
        return;
    }
    if (!rows.selectedRows().contains(row)) {
        rows.setSelectedRow(row);
    }
    auto* menu = new QMenu(this);
    menu->setObjectName(QStringLiteral("rowMenu"));
    menu->setAttribute(Qt::WA_DeleteOnClose);
    menu->addAction(windowText("Win_preview"), this, &BatchDrawer::previewSelected);
    menu->addAction(window()->findChild<QAction*>(QStringLiteral("menuInformation")));
    menu->addAction(windowText("Win_showOutput"), this, &BatchDrawer::showOutputOfSelected)
        ->setEnabled(show_->isEnabled());
    menu->addAction(windowText("Win_wholeClip"), this, &BatchDrawer::convertWhole)
        ->setEnabled(std::ranges::any_of(
            rows.selectedRows(), [&rows](int one) { return rows.row(one).part && !rows.row(one).isCurrent(); }));
    menu->addAction(windowText("Win_remove"), this, &BatchDrawer::removeSelected);
    menu->addAction(windowText("Win_removeConverted"), this, [this] { controller_.removeConverted(); })
        ->setEnabled(removeConverted_->isEnabled());
    addFormats(menu->addMenu(windowText("Win_rowFormatMenu")));
    menu->popup(list_->viewport()->mapToGlobal(place));
}

void BatchDrawer::addFormats(QMenu* menu)
{
    for (int out = 0; out < outputFormatCount; ++out) {
        QAction* action = menu->addAction(formatName(out), this, [this, out] { setFormat(out); });
        action->setCheckable(true);
        action->setChecked(format_->currentIndex() == out);
    }
    menu->setEnabled(format_->isEnabled());
}

} // namespace tavrix
