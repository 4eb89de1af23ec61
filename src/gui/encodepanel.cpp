#include "gui/encodepanel.h"

#include "app/appdelegate.h"
#include "gui/binding.h"
#include "gui/elidedlabel.h"
#include "gui/folderline.h"
#include "gui/segmentedview.h"
#include "gui/steplabel.h"
#include "gui/windowtext.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QProgressBar>
#include <QPushButton>
#include <QToolButton>
#include <QVBoxLayout>

namespace tavrix
{

EncodePanel::EncodePanel(appDelegate& controller, QWidget* parent) : QWidget(parent), controller_(controller)
{
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(6);
    buildDestination(layout);
    layout->addSpacing(6);
    buildFormat(layout);
    layout->addStretch(1);
    buildStart(layout);
    layout->addSpacing(4);
    buildProgress(layout);
}

void EncodePanel::buildDestination(QVBoxLayout* layout)
{
    WindowModel& model = controller_.model();
    layout->addWidget(stepLabel("@@Win_destination", this));
    auto* folder =
        new FolderLine(controller_, model.mainEncDstPathStr, model.mainEncDstSelectBt, model.mainEncDstRevealBt, this);
    layout->addWidget(folder);
    order_ << folder->tabOrder();
}

void EncodePanel::buildFormat(QVBoxLayout* layout)
{
    WindowModel& model = controller_.model();
    layout->addWidget(stepLabel("@@Win_format", this));
    auto* line = new QHBoxLayout;
    auto* name = new QLabel(this);
    name->setObjectName(QStringLiteral("formatNameStr"));
    name->setTextFormat(Qt::PlainText);
    follow(model.prefCheckMatrix, name,
           [name, &model] { name->setText(formatName(model.prefCheckMatrix.selectedSegment())); });
    line->addWidget(name, 1);
    auto* change = new QPushButton(QStringLiteral("@@Win_changeFormat"), this);
    change->setObjectName(QStringLiteral("changeFormatBt"));
    change->setAccessibleName(QStringLiteral("@@Win_acc_changeFormat"));
    connect(change, &QPushButton::clicked, this, [this] { controller_.iba_menuPref(); });
    line->addWidget(change);
    order_ << change;
    layout->addLayout(line);
}

void EncodePanel::buildStart(QVBoxLayout* layout)
{
    WindowModel& model = controller_.model();
    auto* line = new QHBoxLayout;
    auto* drawer = new QPushButton(QStringLiteral("@@Win_batch"), this);
    drawer->setObjectName(QStringLiteral("drawerToggleBt"));
    drawer->setCheckable(true);
    drawer->setAccessibleName(QStringLiteral("@@Win_acc_drawer"));
    follow(model.drawer, drawer, [drawer, &model] { drawer->setChecked(model.drawer.isOpen()); });
    connect(drawer, &QPushButton::clicked, this, [this, drawer, &model] {
        controller_.iba_drawerToggle();
        drawer->setChecked(model.drawer.isOpen());
    });
    line->addWidget(drawer);
    line->addStretch(1);
    auto* start = new QPushButton(QStringLiteral("@@Win_start"), this);
    start->setProperty("role", QStringLiteral("primary"));
    start->setAccessibleName(QStringLiteral("@@Win_acc_start"));
    start->setMinimumSize(150, 34);
    bindControl(start, model.batchEncGoBt);
    connect(start, &QPushButton::clicked, this, [this] { controller_.iba_batchEncGoBt(); });
    line->addWidget(start);
    order_ << drawer << start;
    layout->addLayout(line);
}

void EncodePanel::buildProgress(QVBoxLayout* layout)
{
    WindowModel& model = controller_.model();
    auto* words = new QHBoxLayout;
    auto* name = new ElidedLabel(this);
    name->setAccessibleName(QStringLiteral("@@Win_acc_encodedName"));
    bindText(name, model.mainEncProgressCaptionStr);
    words->addWidget(name, 1);
    auto* percent = new QLabel(this);
    percent->setAccessibleName(QStringLiteral("@@Win_acc_percent"));
    bindText(percent, model.mainEncProgressPercentStr);
    percent->setMinimumWidth(percent->fontMetrics().horizontalAdvance(QStringLiteral("100 %")) + 6);
    percent->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    words->addWidget(percent);
    layout->addLayout(words);

    auto* line = new QHBoxLayout;
    auto* bar = new QProgressBar(this);
    bar->setAccessibleName(QStringLiteral("@@Win_acc_progress"));
    bindProgress(bar, model.encTaskProgress);
    // An empty bar would look like something that has stopped.
    const auto showBar = [bar, &model] {
        bar->setVisible(model.batchEncGoBt.state() == 1 && !model.encTaskProgress.isHidden());
    };
    follow(model.batchEncGoBt, bar, showBar);
    follow(model.encTaskProgress, bar, showBar);
    line->addWidget(bar, 1);
    auto* control = new SegmentedView(model.encStopBt.segmentCount(), this);
    control->setAccessibleName(QStringLiteral("@@Win_acc_encodeControl"));
    bindSegments(control, model.encStopBt, [this, &model] { controller_.iba_encStopBt(&model.encStopBt); });
    line->addWidget(control);
    for (int i = 0; i < control->segmentCount(); ++i) {
        order_ << control->segment(i);
    }
    layout->addLayout(line);
}

} // namespace tavrix
