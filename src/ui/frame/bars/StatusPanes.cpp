#include "ui/frame/bars/StatusPanes.h"

#include <QFontMetrics>
#include <QMouseEvent>
#include <QStatusBar>
#include <QStringList>
#include <QTextDocument>

namespace mirovane {

namespace {

struct PaneDefinition {
    Indicator indicator;
    const char* name;
    const char* sizingText;
    const char* help;
};

constexpr std::array<PaneDefinition, indicatorCount> panes = {{
    {Indicator::Reminders, "paneReminders", "DUE(F4):9999",
     QT_TRANSLATE_NOOP("QObject", "Reminders that are due; a click shows the next one")},
    {Indicator::LiveDiscover, "paneLiveDiscover", "LD!",
     QT_TRANSLATE_NOOP("QObject", "Lit while Live Discover runs on this station")},
    {Indicator::LiveStat, "paneLiveStat", "LIVE!:99",
     QT_TRANSLATE_NOOP("QObject", "Devices in the last run of Live Stat")},
    {Indicator::Hidden, "paneHidden", "HIDE",
     QT_TRANSLATE_NOOP("QObject", "Lit while devices or the floor map are hidden")},
    {Indicator::Keyboard, "paneKeyboard", "CAP NUM SCRL",
     QT_TRANSLATE_NOOP("QObject", "Caps Lock, Num Lock, Scroll Lock")},
}};

/// Blank space left and right of a pane's text.
constexpr int padding = 6;

constexpr qsizetype longestToolTip = 1000;

QString toolTip(const PaneDefinition& definition, const IndicatorState& state) {
    QStringList lines{QObject::tr(definition.help)};
    if (definition.indicator == Indicator::LiveStat)
        lines << state.liveStatElsewhere;
    if (definition.indicator == Indicator::LiveDiscover) {
        lines << state.liveDiscoverElsewhere;
        if (state.discovered > 0)
            lines
                << QObject::tr("Devices discovered since the datafile was opened: %1").arg(state.discovered);
    }
    lines.removeAll(QString());
    // A tool tip takes what looks like markup for markup. Lines may wrap: names of stations can be long.
    return lines.size() == 1 ? lines.first()
                             : Qt::convertFromPlainText(lines.join(u'\n'), Qt::WhiteSpaceNormal);
}

QLabel* makePane(const PaneDefinition& definition) {
    auto* pane = new QLabel;
    pane->setObjectName(QLatin1String(definition.name));
    pane->setAccessibleName(QObject::tr(definition.help));
    pane->setAlignment(Qt::AlignCenter);
    pane->setFrameStyle(static_cast<int>(QFrame::Panel) | static_cast<int>(QFrame::Sunken));
    const int textWidth = pane->fontMetrics().horizontalAdvance(QLatin1String(definition.sizingText));
    pane->setMinimumWidth(textWidth + 2 * padding);
    return pane;
}

} // namespace

QString indicatorText(Indicator indicator, const IndicatorState& state) {
    switch (indicator) {
    case Indicator::Reminders:
        return state.remindersDue > 0 ? QObject::tr("[F4]Due:%1").arg(state.remindersDue) : QString();
    case Indicator::LiveDiscover:
        return state.liveDiscoverEnabled ? QObject::tr("LD!") : QString();
    case Indicator::LiveStat:
        return state.liveStatText;
    case Indicator::Hidden:
        return state.anyTypeHidden || state.floorMapHidden ? QObject::tr("HIDE") : QString();
    case Indicator::Keyboard:
        return state.keyboardText;
    }
    return {};
}

CMessagePane::CMessagePane(QWidget* parent) : QLabel(parent) {
    setObjectName(QStringLiteral("paneMessage"));
    setTextFormat(Qt::PlainText);
    setIndent(padding);
}

/// One line, whatever a device or a file calls itself.
void CMessagePane::setMessage(const QString& message) {
    message_ = message;
    for (QChar& c : message_)
        if (c < QChar(u' ') || c == QChar::LineSeparator || c == QChar::ParagraphSeparator)
            c = u' ';
    setAccessibleName(message);
    elide();
}

QSize CMessagePane::minimumSizeHint() const {
    return {0, QLabel::minimumSizeHint().height()};
}

void CMessagePane::resizeEvent(QResizeEvent* event) {
    QLabel::resizeEvent(event);
    elide();
}

void CMessagePane::elide() {
    const QString shown = fontMetrics().elidedText(message_, Qt::ElideRight, width() - 2 * padding);
    setText(shown);
    // A tool tip takes what looks like markup for markup. Lines may wrap: names of stations can be long.
    setToolTip(shown == message_ ? QString() : Qt::convertFromPlainText(message_.left(longestToolTip)));
}

CStatusPanes::CStatusPanes(QStatusBar& bar) : message_(new CMessagePane), pointer_(new QLabel) {
    bar.addWidget(message_, 1);
    pointer_->setObjectName(QStringLiteral("panePointer"));
    pointer_->setToolTip(QObject::tr("Where the pointer is on the floor map"));
    pointer_->setAccessibleName(pointer_->toolTip());
    pointer_->setAlignment(Qt::AlignCenter);
    pointer_->setMinimumWidth(pointer_->fontMetrics().horizontalAdvance(QStringLiteral("99999, 99999")) +
                              2 * padding);
    bar.addPermanentWidget(pointer_);
    for (const PaneDefinition& definition : panes) {
        QLabel* pane = makePane(definition);
        bar.addPermanentWidget(pane);
        indicators_[static_cast<std::size_t>(definition.indicator)] = pane;
    }
    indicators_[static_cast<std::size_t>(Indicator::Reminders)]->installEventFilter(this);
}

bool CStatusPanes::eventFilter(QObject* watched, QEvent* event) {
    const auto* pane = static_cast<QLabel*>(watched);
    const bool click = event->type() == QEvent::MouseButtonRelease &&
                       static_cast<QMouseEvent*>(event)->button() == Qt::LeftButton;
    if (click && !pane->text().isEmpty())
        Q_EMIT remindersClicked();
    return QObject::eventFilter(watched, event);
}

void CStatusPanes::showPointer(std::optional<MapPoint> at) {
    pointer_->setText(at ? QStringLiteral("%1, %2").arg(at->x).arg(at->y) : QString());
}

void CStatusPanes::refresh(const IndicatorState& state) {
    for (const PaneDefinition& definition : panes) {
        const QString text = indicatorText(definition.indicator, state);
        QLabel* pane = indicators_[static_cast<std::size_t>(definition.indicator)];
        if (pane->text() != text)
            pane->setText(text);
        const QString tip = toolTip(definition, state);
        if (pane->toolTip() != tip)
            pane->setToolTip(tip);
    }
}

} // namespace mirovane
