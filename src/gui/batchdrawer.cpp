#include "gui/batchdrawer.h"

#include "app/appdelegate.h"
#include "gui/batchdelegate.h"
#include "gui/binding.h"
#include "gui/rowdetails.h"
#include "gui/windowtext.h"

#include <QAction>
#include <QComboBox>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QListView>
#include <QMenu>
#include <QPushButton>
#include <QVBoxLayout>

namespace tavrix
{

BatchDrawer::BatchDrawer(appDelegate& controller, QWidget* parent)
    : QWidget(parent), controller_(controller),
      details_(new RowDetails(controller.model().encBatchArrayController, this)), list_(new QListView(this))
{
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
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
    for (const auto signal : {&QAbstractItemModel::rowsInserted, &QAbstractItemModel::rowsRemoved}) {
        connect(&rows, signal, this, &BatchDrawer::refreshHead);
    }
    connect(&rows, &QAbstractItemModel::modelReset, this, &BatchDrawer::refreshHead);
    connect(&rows, &QAbstractItemModel::dataChanged, this, &BatchDrawer::refreshHead);
    connect(&rows, &BatchList::selectionChanged, this, &BatchDrawer::showSelection);
    refreshHead();
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
    format_->setPlaceholderText(QStringLiteral("@@Win_rowFormatNone"));
    for (int out = 0; out < outputFormatCount; ++out) {
        format_->addItem(formatText(QStringLiteral("@@Win_format%d"), {out}));
    }
    connect(format_, &QComboBox::activated, this, [this](int out) {
        BatchList& rows = controller_.model().encBatchArrayController;
        rows.setOut(rows.selectedRow(), out);
    });
    caption->setBuddy(format_);
    line->addWidget(format_);
}

void BatchDrawer::buildList()
{
    BatchList& rows = controller_.model().encBatchArrayController;
    list_->setObjectName(rows.objectName());
    list_->setAccessibleName(QStringLiteral("@@Win_acc_batch"));
    list_->setModel(&rows);
    list_->setItemDelegate(new BatchDelegate(rows, *details_, list_));
    // Without these every row would be measured whenever one is added.
    list_->setUniformItemSizes(true);
    list_->setVerticalScrollMode(QAbstractItemView::ScrollPerPixel);
    list_->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    list_->setSelectionMode(QAbstractItemView::SingleSelection);
    list_->setEditTriggers(QAbstractItemView::NoEditTriggers);
    list_->setContextMenuPolicy(Qt::CustomContextMenu);
    list_->setMinimumHeight(90);
    list_->installEventFilter(this);
    connect(list_->selectionModel(), &QItemSelectionModel::selectionChanged, this, &BatchDrawer::takeSelection);
    connect(list_, &QListView::doubleClicked, this, [this] { previewSelected(); });
    connect(list_, &QListView::customContextMenuRequested, this, &BatchDrawer::showMenu);
    connect(&controller_, &appDelegate::rowStarted, this, &BatchDrawer::followRow);
    connect(details_, &RowDetails::changed, list_->viewport(), qOverload<>(&QWidget::update));
}

void BatchDrawer::buildButtons(QHBoxLayout* line)
{
    WindowModel& model = controller_.model();
    preview_ = new QPushButton(QStringLiteral("@@Win_preview"), this);
    preview_->setAccessibleName(QStringLiteral("@@Win_acc_preview"));
    bindControl(preview_, model.previewBt);
    connect(preview_, &QPushButton::clicked, this, &BatchDrawer::previewSelected);
    line->addWidget(preview_);
    line->addStretch(1);
    remove_ = new QPushButton(QStringLiteral("@@Win_remove"), this);
    remove_->setAccessibleName(QStringLiteral("@@Win_acc_remove"));
    bindControl(remove_, model.batchEncRemoveBt);
    connect(remove_, &QPushButton::clicked, this, &BatchDrawer::removeSelected);
    line->addWidget(remove_);
    removeAll_ = new QPushButton(QStringLiteral("@@Win_removeAll"), this);
    removeAll_->setAccessibleName(QStringLiteral("@@Win_acc_removeAll"));
    bindControl(removeAll_, model.batchEncRemoveAllBt);
    connect(removeAll_, &QPushButton::clicked, this,
            [this, &model] { controller_.encBatchRemoveAll(&model.batchEncRemoveAllBt); });
    line->addWidget(removeAll_);
}

QList<QWidget*> BatchDrawer::tabOrder() const
{
    return {format_, list_, preview_, remove_, removeAll_};
}

void BatchDrawer::removeSelected()
{
    controller_.encBatchRemove(&controller_.model().batchEncRemoveBt);
}

void BatchDrawer::previewSelected()
{
    controller_.iba_preview(controller_.model().encBatchArrayController.selectedRow());
}

void BatchDrawer::showSelection()
{
    const BatchList& rows = controller_.model().encBatchArrayController;
    const QModelIndex wanted = rows.index(rows.selectedRow());
    if (wanted.isValid()) {
        list_->setCurrentIndex(wanted);
    } else {
        list_->clearSelection();
    }
    refreshHead();
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

void BatchDrawer::takeSelection()
{
    const QModelIndexList selected = list_->selectionModel()->selectedIndexes();
    controller_.model().encBatchArrayController.setSelectedRow(selected.isEmpty() ? -1 : selected.first().row());
}

void BatchDrawer::refreshHead()
{
    const BatchList& rows = controller_.model().encBatchArrayController;
    count_->setText(rows.count() == 1 ? windowText("Win_oneClip") : windowText("Win_clips", {rows.count()}));
    const int selected = rows.selectedRow();
    const bool any = selected >= 0 && selected < rows.count();
    const bool running = any && rows.row(selected).isCurrent();
    format_->setEnabled(any && !running);
    format_->setCurrentIndex(any ? rows.row(selected).out : -1);
}

void BatchDrawer::showMenu(const QPoint& place)
{
    BatchList& rows = controller_.model().encBatchArrayController;
    const int row = list_->indexAt(place).row();
    if (row < 0) {
        return;
    }
    rows.setSelectedRow(row);
    auto* menu = new QMenu(this);
    menu->setObjectName(QStringLiteral("rowMenu"));
    menu->setAttribute(Qt::WA_DeleteOnClose);
    menu->addAction(windowText("Win_preview"), this, &BatchDrawer::previewSelected);
    menu->addAction(window()->findChild<QAction*>(QStringLiteral("menuInformation")));
    menu->addAction(windowText("Win_remove"), this, &BatchDrawer::removeSelected);
    QMenu* formats = menu->addMenu(windowText("Win_rowFormat"));
    for (int out = 0; out < outputFormatCount; ++out) {
        QAction* action = formats->addAction(formatName(out), this, [&rows, row, out] { rows.setOut(row, out); });
        action->setCheckable(true);
        action->setChecked(rows.row(row).out == out);
    }
    formats->setEnabled(!rows.row(row).isCurrent());
    menu->popup(list_->viewport()->mapToGlobal(place));
}

bool BatchDrawer::eventFilter(QObject* watched, QEvent* event)
{
    BatchList& rows = controller_.model().encBatchArrayController;
    if (watched == list_ && event->type() == QEvent::FocusIn && rows.selectedRow() < 0 && rows.count() > 0) {
        // The arrow keys cannot select the only row of a list: there is no way to move to it.
        const QModelIndex last = list_->currentIndex();
        const QModelIndex seen = last.isValid() ? last : list_->indexAt(list_->viewport()->rect().center());
        rows.setSelectedRow(qMax(0, seen.row()));
    }
    if (watched == list_ && event->type() == QEvent::KeyPress) {
        const int key = static_cast<QKeyEvent*>(event)->key();
        if (key == Qt::Key_Space || key == Qt::Key_Return || key == Qt::Key_Enter) {
            previewSelected();
            return true;
        }
        if (key == Qt::Key_Delete || key == Qt::Key_Backspace) {
            removeSelected();
            return true;
        }
    }
    return QWidget::eventFilter(watched, event);
}

} // namespace tavrix
