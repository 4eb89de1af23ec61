#include "gui/droppanel.h"

#include "app/appdelegate.h"
#include "gui/binding.h"
#include "gui/dragndropview.h"
#include "gui/segmentedview.h"
#include "gui/wheelview.h"
#include "gui/windowtext.h"

#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QMenu>
#include <QToolButton>
#include <QVBoxLayout>

namespace tavrix
{

DropPanel::DropPanel(appDelegate& controller, QWidget* parent)
    : QWidget(parent), controller_(controller), view_(new dragNDropView(this))
{
    auto* outer = new QVBoxLayout(this);
    outer->setContentsMargins(0, 0, 0, 0);
    outer->addWidget(view_);
    view_->setMinimumSize(250, 200);
    view_->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
    view_->setAccessibleName(QStringLiteral("@@Win_acc_drop"));
    WindowModel& model = controller_.model();
    view_->setObjectName(model.dragndropImgView.objectName());
    follow(model.dragndropImgView, view_, [this, &model] { view_->setImageName(model.dragndropImgView.imageName()); });

    auto* layout = new QVBoxLayout(view_);
    layout->setContentsMargins(14, 10, 14, 12);
    layout->addStretch(1);
    buildWords();
    buildAnalysisLine();
    connect(view_, &dragNDropView::activated, this, &DropPanel::askWhat);
}

void DropPanel::buildWords()
{
    WindowModel& model = controller_.model();
    auto* words = new QWidget(view_);
    auto* grid = new QGridLayout(words);
    grid->setContentsMargins(0, 0, 0, 0);
    auto* caption = new QLabel(QStringLiteral("@@Win_dropCaption"), words);
    caption->setProperty("role", QStringLiteral("title"));
    caption->setAlignment(Qt::AlignCenter);
    caption->setWordWrap(true);
    bindText(caption, model.dragndropCaptionStr, true);
    // Both texts share one place: the caption while the area takes drops, the action while it does not.
    auto* action = new QLabel(QStringLiteral("@@Win_dropAction"), words);
    action->setProperty("role", QStringLiteral("title"));
    action->setAlignment(Qt::AlignCenter);
    action->setWordWrap(true);
    bindText(action, model.dragndropActionStr, true);
    grid->addWidget(caption, 0, 0);
    grid->addWidget(action, 0, 0);
    auto* hint = new QLabel(QStringLiteral("@@Win_dropHint"), words);
    hint->setProperty("role", QStringLiteral("caption"));
    hint->setAlignment(Qt::AlignCenter);
    QSizePolicy policy = hint->sizePolicy();
    policy.setRetainSizeWhenHidden(true);
    hint->setSizePolicy(policy);
    grid->addWidget(hint, 1, 0);
    follow(model.dragndropCaptionStr, hint,
           [hint, &model] { hint->setVisible(!model.dragndropCaptionStr.isHidden()); });
    for (QLabel* label : {caption, action, hint}) {
        label->setAttribute(Qt::WA_TransparentForMouseEvents);
    }
    words->setAttribute(Qt::WA_TransparentForMouseEvents);
    view_->layout()->addWidget(words);
}

void DropPanel::buildAnalysisLine()
{
    WindowModel& model = controller_.model();
    auto* line = new QHBoxLayout;
    line->addStretch(1);
    auto* wheel = new WheelView(view_);
    bindWheel(wheel, model.analyseWheelProgInd);
    wheel->setAccessibleName(QStringLiteral("@@Win_acc_wheel"));
    line->addWidget(wheel);
    auto* number = new QLabel(view_);
    bindText(number, model.analyseCaptionStr);
    number->setMinimumWidth(number->fontMetrics().horizontalAdvance(QStringLiteral("0000/0000")));
    number->setAlignment(Qt::AlignCenter);
    number->setAccessibleName(QStringLiteral("@@Win_acc_analysisNumber"));
    line->addWidget(number);
    stop_ = new SegmentedView(model.analyseStopBt.segmentCount(), view_);
    bindSegments(stop_, model.analyseStopBt, [this] { controller_.iba_analysisStopBt(); });
    stop_->setAccessibleName(QStringLiteral("@@Win_acc_analysisStop"));
    stop_->setCursor(Qt::ArrowCursor);
    line->addWidget(stop_);
    line->addStretch(1);
    static_cast<QVBoxLayout*>(view_->layout())->addLayout(line);
}

QList<QWidget*> DropPanel::tabOrder() const
{
    return {view_, stop_->segment(0)};
}

void DropPanel::askWhat()
{
    auto* menu = new QMenu(this);
    menu->setObjectName(QStringLiteral("dropMenu"));
    menu->setAttribute(Qt::WA_DeleteOnClose);
    menu->addAction(windowText("Win_chooseClips"), this, &DropPanel::chooseFiles);
    menu->addAction(windowText("Win_chooseFolder"), this, &DropPanel::chooseFolder);
    menu->popup(view_->mapToGlobal(view_->rect().center()));
    menu->setActiveAction(menu->actions().constFirst());
}

} // namespace tavrix
