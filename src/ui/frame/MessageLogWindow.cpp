#include "ui/frame/MessageLogWindow.h"

#include "ui/widgets/DialogText.h"
#include "ui/widgets/WindowPlacement.h"

#include <QFont>
#include <QFontMetrics>
#include <QGuiApplication>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QPointer>
#include <QScreen>
#include <QScrollBar>
#include <QTextCursor>
#include <QVBoxLayout>

#include <algorithm>
#include <string_view>

namespace mirovane {

namespace {

/// The log's own limit; the empty line after the last line end counts as one.
constexpr int lineLimit = 400;

constexpr std::string_view noStatisticsSetting = "MessageLogNoStatistics";

QFont logFont() {
    QFont font;
    font.setFamilies({QStringLiteral("Courier New"), QStringLiteral("Liberation Mono")});
    font.setStyleHint(QFont::Monospace);
    font.setPointSize(10);
    return font;
}

/// Live Stat's longest usual line fits.
QSize sizeAtFirst() {
    return {QFontMetrics(logFont()).horizontalAdvance(u'0') * 130, 420};
}

QPlainTextEdit* makeText(QWidget* parent) {
    auto* text = new QPlainTextEdit(parent);
    text->setObjectName(QStringLiteral("messageLogText"));
    text->setAccessibleName(QObject::tr("Messages"));
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
    : log_(log),
      settings_(settings),
      filter_(new QLineEdit),
      noStatistics_(new QCheckBox(tr("&Without statistics"))),
      text_(makeText(this)) {
    setObjectName(QStringLiteral("messageLogWindow"));
    setWindowTitle(tr("Message logs - Mirovane"));
    setAttribute(Qt::WA_QuitOnClose, false);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    auto* top = new QHBoxLayout;
    top->setSpacing(0);
    top->addWidget(makeMenu(), 0, Qt::AlignVCenter);
    top->addLayout(makeFilter(), 1);
    layout->addLayout(top);
    layout->addWidget(text_);
    text_->setFocus();

    resize(sizeAtFirst().boundedTo(QGuiApplication::primaryScreen()->availableSize() * 9 / 10));
    restorePlacement(*this, settings, messageLogPlacement);
    new CPlacementKeeper(*this, settings, messageLogPlacement);

    if (log.lines().empty())
        log.begin("Start Mirovane");
    refill();
    log.addListener(*this);
    connect(text_->verticalScrollBar(), &QScrollBar::valueChanged, this,
            [this] { following_ = followsEnd(); });
}

QMenuBar* CMessageLogWindow::makeMenu() {
    auto* bar = new QMenuBar(this);
    bar->setNativeMenuBar(false); // a window of its own has menus of its own
    QMenu* menu = bar->addMenu(tr("&Log"));
    QAction* file = menu->addAction(tr("&Open log file"));
    file->setObjectName(QStringLiteral("messageLogOpenFile"));
    connect(file, &QAction::triggered, this, &CMessageLogWindow::logFileWanted);
    menu->addSeparator();
    connect(menu->addAction(tr("&Close")), &QAction::triggered, this, &QWidget::close);
    return bar;
}

QLayout* CMessageLogWindow::makeFilter() {
    filter_->setObjectName(QStringLiteral("messageLogFilter"));
    filter_->setPlaceholderText(tr("words that a line must have"));
    filter_->setClearButtonEnabled(true);
    noStatistics_->setObjectName(QStringLiteral("messageLogNoStatistics"));
    noStatistics_->setToolTip(tr("Leaves out the counts of Live Stat's runs"));
    noStatistics_->setChecked(settings_.read(noStatisticsSetting, 0) != 0);
    auto* label = new QLabel(tr("&Filter:"));
    label->setBuddy(filter_);
    auto* row = new QHBoxLayout;
    constexpr int edge = 6;
    row->setContentsMargins(edge, edge, edge, edge);
    row->setSpacing(edge);
    row->addWidget(label);
    row->addWidget(filter_, 1);
    row->addWidget(noStatistics_);
    connect(filter_, &QLineEdit::textChanged, this, &CMessageLogWindow::refill);
    connect(noStatistics_, &QCheckBox::toggled, this, [this](bool on) {
        settings_.write(noStatisticsSetting, on ? 1 : 0);
        refill();
    });
    return row;
}

CMessageLogWindow::~CMessageLogWindow() {
    log_.removeListener(*this);
}

void CMessageLogWindow::lineLogged(const LogLine& line) {
    if (passes(line))
        append(shownText(line.shown()));
}

bool CMessageLogWindow::passes(const LogLine& line) const {
    if (line.kind == LogKind::Statistics && noStatistics_->isChecked())
        return false;
    const QStringList words = filter_->text().split(u' ', Qt::SkipEmptyParts);
    if (words.isEmpty())
        return true;
    const QString shown = shownText(line.shown());
    return std::ranges::all_of(
        words, [&shown](const QString& word) { return shown.contains(word, Qt::CaseInsensitive); });
}

void CMessageLogWindow::refill() {
    text_->clear();
    for (const LogLine& line : log_.lines())
        lineLogged(line);
    scrollToEnd();
}

void CMessageLogWindow::present() {
    setWindowState(windowState() & ~Qt::WindowMinimized);
    show();
    raise();
    activateWindow();
    scrollToEnd();
}

void CMessageLogWindow::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_Escape && !filter_->text().isEmpty())
        filter_->clear();
    else if (event->key() == Qt::Key_Escape)
        close();
    else if (event->matches(QKeySequence::Find))
        filter_->setFocus();
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
