#include "ui/frame/MessageLogWindow.h"

#include "model/records/Text.h"
#include "ui/widgets/WindowPlacement.h"

#include <QFont>
#include <QFontMetrics>
#include <QGuiApplication>
#include <QKeyEvent>
#include <QPointer>
#include <QScreen>
#include <QScrollBar>
#include <QTextCursor>
#include <QVBoxLayout>

namespace mirovane {

namespace {

/// The log's own limit; the empty line after the last line end counts as one.
constexpr int lineLimit = 400;

QFont logFont() {
    QFont font;
    font.setFamilies({QStringLiteral("Courier New"), QStringLiteral("Liberation Mono")});
    font.setStyleHint(QFont::Monospace);
    font.setPointSize(10);
    return font;
}

/// Live Stat's longest usual line fits.
QSize defaultSize() {
    return {QFontMetrics(logFont()).horizontalAdvance(u'0') * 130, 420};
}

QPlainTextEdit* makeText(QWidget* parent) {
    auto* text = new QPlainTextEdit(parent);
    text->setObjectName(QStringLiteral("messageLogText"));
    text->setReadOnly(true);
    text->setUndoRedoEnabled(false);
    text->setLineWrapMode(QPlainTextEdit::NoWrap);
    text->setMaximumBlockCount(lineLimit);
    text->setFrameShape(QFrame::NoFrame);
    text->setFont(logFont());
    // Reading and copying by keyboard as well as by mouse.
    text->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    return text;
}

} // namespace

CMessageLogWindow::CMessageLogWindow(CMessageLog& log, CSettings& settings)
    : log_(log), text_(makeText(this)) {
    setObjectName(QStringLiteral("messageLogWindow"));
    setWindowTitle(QObject::tr("Message logs - Mirovane"));
    setAttribute(Qt::WA_QuitOnClose, false);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(text_);

    resize(defaultSize().boundedTo(QGuiApplication::primaryScreen()->availableSize() * 9 / 10));
    restorePlacement(*this, settings, messageLogPlacement);
    new CPlacementKeeper(*this, settings, messageLogPlacement);

    if (log.lines().empty())
        log.begin("Start Mirovane");
    for (const LogLine& line : log.lines())
        lineLogged(line);
    log.addListener(*this);
    connect(text_->verticalScrollBar(), &QScrollBar::valueChanged, this,
            [this] { following_ = followsEnd(); });
}

CMessageLogWindow::~CMessageLogWindow() {
    log_.removeListener(*this);
}

void CMessageLogWindow::lineLogged(const LogLine& line) {
    append(QString::fromStdString(displayText(line.shown())));
}

void CMessageLogWindow::present() {
    setWindowState(windowState() & ~Qt::WindowMinimized);
    show();
    raise();
    activateWindow();
    scrollToEnd();
}

void CMessageLogWindow::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_Escape)
        close();
    else
        QWidget::keyPressEvent(event);
}

void CMessageLogWindow::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    if (following_)
        scrollToEnd();
}

void CMessageLogWindow::append(const QString& line) {
    const bool follow = following_ || !isVisible();
    QTextCursor end(text_->document());
    end.movePosition(QTextCursor::End);
    end.insertText(line + u'\n');
    if (follow)
        scrollToEnd();
}

bool CMessageLogWindow::followsEnd() const {
    const QScrollBar* bar = text_->verticalScrollBar();
    return bar->value() >= bar->maximum() - 1;
}

void CMessageLogWindow::scrollToEnd() {
    QScrollBar* bar = text_->verticalScrollBar();
    bar->setValue(bar->maximum());
    following_ = true;
}

} // namespace mirovane
