// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/dialogs/toolwindow.h"

#include "base/text/shownname.h"
#include "gui/preview/toolprocess.h"
#include "gui/widgets/images.h"
#include "gui/widgets/windowtext.h"

#include <QClipboard>
#include <QFontDatabase>
#include <QGuiApplication>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QVBoxLayout>

namespace tavrix
{

namespace
{

// What a tool prints beyond this is not read: nobody reads so much, and a tool gone wild must not fill the memory.
constexpr qsizetype mostBytes = qsizetype{4} << 20;

} // namespace

ToolWindow::ToolWindow(const QString& objectName, QWidget* owner)
    : QWidget(owner, Qt::Window), view_(new QPlainTextEdit(this)), buttons_(new QHBoxLayout)
{
    setObjectName(objectName);
    setWindowIcon(imageNamed(QStringLiteral("tavrix")));
    setAttribute(Qt::WA_StyledBackground);
    setAttribute(Qt::WA_DeleteOnClose);
    auto* layout = new QVBoxLayout(this);
    view_->setObjectName(objectName + QStringLiteral("Text"));
    view_->setReadOnly(true);
    view_->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    // The text is laid out in columns.
    view_->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
    view_->setLineWrapMode(QPlainTextEdit::NoWrap);
    view_->setTabChangesFocus(true);
    layout->addWidget(view_, 1);
    auto* copy = new QPushButton(windowText("Win_toolCopy"), this);
    copy->setObjectName(objectName + QStringLiteral("CopyBt"));
    connect(copy, &QPushButton::clicked, this, [this] { QGuiApplication::clipboard()->setText(text()); });
    buttons_->addWidget(copy);
    buttons_->addStretch(1);
    auto* close = new QPushButton(windowText("Win_done"), this);
    close->setObjectName(objectName + QStringLiteral("CloseBt"));
    close->setDefault(true);
    connect(close, &QPushButton::clicked, this, &QWidget::close);
    buttons_->addWidget(close);
    layout->addLayout(buttons_);
    resize(940, 640);
}

void ToolWindow::showOutput(const QString& tool, const QStringList& arguments)
{
    delete tool_;
    tool_ = new ToolProcess(this);
    connect(tool_, &ToolProcess::wrote, this, &ToolWindow::takeOutput);
    connect(tool_, &ToolProcess::ended, this, &ToolWindow::finish);
    output_.clear();
    view_->setPlainText(windowText("Win_toolWaiting"));
    if (!tool_->start(tool, arguments)) {
        output_ = windowText("Win_toolFailed", {tool}).toUtf8();
        finish();
    }
    show();
    raise();
    activateWindow();
    view_->setFocus();
}

void ToolWindow::takeOutput(const QByteArray& bytes)
{
    output_ += bytes;
    if (output_.size() >= mostBytes) {
        finish();
    }
}

void ToolWindow::finish()
{
    view_->setPlainText(shownLines(QString::fromUtf8(output_)));
    output_.clear();
    // This may be one of its own calls.
    tool_->disconnect(this);
    tool_->deleteLater();
    tool_ = nullptr;
    Q_EMIT finished();
}

QString ToolWindow::text() const
{
    return view_->toPlainText();
}

void ToolWindow::keyPressEvent(QKeyEvent* event)
{
    if (event->key() == Qt::Key_Escape) {
        close();
    } else {
        QWidget::keyPressEvent(event);
    }
}

} // namespace tavrix
