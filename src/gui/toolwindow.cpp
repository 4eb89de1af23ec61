#include "gui/toolwindow.h"

#include "base/posixfile.h"
#include "base/shownname.h"
#include "gui/images.h"
#include "gui/windowtext.h"
#include "sys/transfer.h"

#include <QClipboard>
#include <QCoreApplication>
#include <QFontDatabase>
#include <QGuiApplication>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QSocketNotifier>
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

ToolWindow::~ToolWindow()
{
    endTool();
}

void ToolWindow::showOutput(const QString& tool, const QStringList& arguments)
{
    endTool();
    view_->setPlainText(windowText("Win_toolWaiting"));
    if (!startTool(QCoreApplication::applicationDirPath() + QLatin1Char('/') + tool, arguments)) {
        view_->setPlainText(windowText("Win_toolFailed", {tool}));
        Q_EMIT finished();
    }
    show();
    raise();
    activateWindow();
    view_->setFocus();
}

bool ToolWindow::startTool(const QString& tool, const QStringList& arguments)
{
    Pipe pipe = makePipe(PipeReader::Parent);
    if (!pipe.isOpen()) {
        return false;
    }
    ChildSetup setup;
    setup.program = tool;
    setup.arguments = arguments;
    setup.output = pipe.writeEnd.get();
    setup.error = pipe.writeEnd.get();
    Result<ChildProcess, QString> child = ChildProcess::start(setup);
    if (!child) {
        return false;
    }
    child_.push_back(std::move(*child));
    pipe_ = std::move(pipe.readEnd);
    notifier_ = new QSocketNotifier(pipe_.get(), QSocketNotifier::Read, this);
    connect(notifier_, &QSocketNotifier::activated, this, &ToolWindow::takeOutput);
    return true;
}

void ToolWindow::takeOutput()
{
    QByteArray chunk;
    const ReadState state = readChunk(pipe_.get(), chunk);
    output_ += chunk;
    if (state != ReadState::End && output_.size() < mostBytes) {
        return;
    }
    view_->setPlainText(shownLines(QString::fromUtf8(output_)));
    endTool();
    Q_EMIT finished();
}

void ToolWindow::endTool()
{
    if (notifier_ != nullptr) {
        notifier_->setEnabled(false);
        notifier_->deleteLater(); // this may be one of its own calls
        notifier_ = nullptr;
    }
    pipe_ = Descriptor();
    killAndReap(child_);
    output_.clear();
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
