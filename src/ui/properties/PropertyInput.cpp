#include "ui/properties/PropertyInput.h"

#include "model/properties/FieldRules.h"
#include "ui/properties/PadlockIcon.h"
#include "ui/widgets/DialogText.h"

#include <QAction>
#include <QEvent>
#include <QGridLayout>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QScopedValueRollback>
#include <QTimer>

#include <algorithm>
#include <limits>

namespace mirovane {

namespace {

constexpr int linesOfText = 3;
constexpr int charactersInSight = 30;

/// Wants room for some lines at first, where Qt's own wants a page.
class CLines final : public QPlainTextEdit {
public:
    using QPlainTextEdit::QPlainTextEdit;

    QSize sizeHint() const override { return {QPlainTextEdit::sizeHint().width(), 2 * minimumHeight()}; }
};

} // namespace

CPropertyInput::CPropertyInput(CPropertiesForm& form, const char* name, const QString& label, Kind kind,
                               QWidget* parent)
    : QWidget(parent),
      form_(form),
      field_(name),
      kind_(kind),
      news_(makeNote("news")),
      note_(makeNote("note")) {
    kind == Kind::Line ? makeLine() : makeLines();
    input_->setObjectName(QStringLiteral("properties") + QLatin1String(name));
    input_->setAccessibleName(label);
    const auto height = kind == Kind::Line ? QSizePolicy::Fixed : QSizePolicy::Expanding;
    setSizePolicy(QSizePolicy::Expanding, height);
    input_->installEventFilter(this);
    setFocusProxy(input_);
    note_->setForegroundRole(QPalette::PlaceholderText);
    QFont bold = news_->font();
    bold.setBold(true);
    news_->setFont(bold);
    auto* grid = new QGridLayout(this);
    grid->setContentsMargins(0, 0, 0, 0);
    grid->setSpacing(1);
    grid->addWidget(input_, 0, 0);
    if (ruleRowOf(field_) && form.group() != PropertiesGroup::LocationMarkers) {
        makePadlock(label);
        grid->addWidget(padlock_, 0, 1, Qt::AlignTop);
    }
    grid->addWidget(news_, 1, 0, 1, 2);
    grid->addWidget(note_, 2, 0, 1, 2);
}

/// A long one is cut, the window is not widened.
QLabel* CPropertyInput::makeNote(const char* name) {
    auto* note = new QLabel(this);
    note->setObjectName(QLatin1String(name) + QString::fromStdString(field_));
    note->setTextFormat(Qt::PlainText);
    QFont small = note->font();
    small.setPointSizeF(small.pointSizeF() * 0.85);
    note->setFont(small);
    note->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Fixed);
    return note;
}

void CPropertyInput::makeLine() {
    auto* line = new QLineEdit(this);
    line->setMaxLength(std::numeric_limits<int>::max()); // Qt's own limit would cut what is stored
    line->setMinimumWidth(line->fontMetrics().averageCharWidth() * charactersInSight);
    connect(line, &QLineEdit::textEdited, this, &CPropertyInput::takeTyped);
    input_ = line;
}

void CPropertyInput::makeLines() {
    auto* lines = new CLines(this);
    lines->setTabChangesFocus(true);
    const int frame = 2 * lines->frameWidth() + 2 * static_cast<int>(lines->document()->documentMargin());
    lines->setMinimumHeight(lines->fontMetrics().lineSpacing() * linesOfText + frame);
    lines->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
    connect(lines, &QPlainTextEdit::textChanged, this, &CPropertyInput::takeTyped);
    input_ = lines;
}

/// The mouse has the button, the keyboard has Ctrl+K within the field: one more stop at every field would
/// double the way through the dialog.
void CPropertyInput::makePadlock(const QString& label) {
    padlock_ = new QToolButton(this);
    padlock_->setObjectName(QStringLiteral("padlock") + QString::fromStdString(field_));
    padlock_->setAccessibleName(tr("Keep Live Stat away from %1").arg(label));
    padlock_->setAutoRaise(true);
    padlock_->setCheckable(true);
    padlock_->setFocusPolicy(Qt::NoFocus);
    connect(padlock_, &QToolButton::clicked, this, &CPropertyInput::turnPadlock);
    auto* key = new QAction(input_);
    key->setShortcut(QKeySequence(QStringLiteral("Ctrl+K")));
    key->setShortcutContext(Qt::WidgetShortcut);
    connect(key, &QAction::triggered, this, &CPropertyInput::turnPadlock);
    input_->addAction(key);
}

// ---- showing

QString CPropertyInput::inputText() const {
    if (const auto* line = qobject_cast<const QLineEdit*>(input_))
        return line->text();
    return qobject_cast<const QPlainTextEdit*>(input_)->toPlainText();
}

void CPropertyInput::setInputText(const QString& text) {
    if (auto* line = qobject_cast<QLineEdit*>(input_))
        line->setText(text);
    else
        qobject_cast<QPlainTextEdit*>(input_)->setPlainText(text);
}

void CPropertyInput::refresh(const FieldNote& note) {
    const CPropertiesForm::Shown shown = form_.text(field_);
    const QString text = qText(shown.text);
    const QScopedValueRollback quiet(showing_, true);
    if (text != inputText()) {
        setInputText(text);
        if (input_->hasFocus())
            selectHint();
    }
    QPalette colours;
    if (shown.source == CPropertiesForm::Source::Shared)
        for (const auto state : {QPalette::Active, QPalette::Inactive})
            colours.setColor(state, QPalette::Text, palette().color(state, QPalette::PlaceholderText));
    input_->setPalette(colours);
    if (padlock_)
        showPadlock();
    showNote(note);
}

void CPropertyInput::showPadlock() {
    const auto kept = form_.kept(field_);
    padlock_->setChecked(kept.value_or(false));
    padlock_->setIcon(padlockIcon(kept, palette()));
    padlock_->setToolTip(!kept   ? tr("Live Stat keeps away from this field of some of the devices (Ctrl+K)")
                         : *kept ? tr("Live Stat keeps away from this field: its text ends in >> (Ctrl+K)")
                                 : tr("Shut the padlock to keep Live Stat away from this field (Ctrl+K)"));
}

void CPropertyInput::showNote(const FieldNote& note) {
    shown_ = note;
    if (form_.changedElsewhere(field_)) {
        const auto now = form_.shared(field_);
        const bool typed = form_.text(field_).source == CPropertiesForm::Source::User;
        shown_.news = typed && now ? tr("Changed meanwhile, now: \"%1\"").arg(qText(*now).simplified())
                                   : tr("Changed meanwhile");
    }
    elideNotes();
    news_->setToolTip(shown_.news);
    note_->setToolTip(shown_.text);
    news_->setVisible(!shown_.news.isEmpty());
    note_->setVisible(!shown_.text.isEmpty());
    input_->setAccessibleDescription((shown_.news + u'\n' + shown_.text).trimmed());
}

/// The tooltips have all of it.
void CPropertyInput::elideNotes() {
    const auto elided = [this](const QLabel& label, const QString& text) {
        QStringList lines = text.split(u'\n');
        for (QString& line : lines)
            line = label.fontMetrics().elidedText(line, Qt::ElideRight, std::max(width(), 100));
        return lines.join(u'\n');
    };
    news_->setText(elided(*news_, shown_.news));
    note_->setText(elided(*note_, shown_.text));
}

void CPropertyInput::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    elideNotes();
}

// ---- typing

void CPropertyInput::takeTyped() {
    if (showing_)
        return;
    form_.enter(field_, storedText(inputText()));
    Q_EMIT edited();
}

void CPropertyInput::turnPadlock() {
    form_.setKept(field_, !form_.kept(field_).value_or(false));
    Q_EMIT edited();
}

/// What stands for several devices' texts is replaced by the first key.
void CPropertyInput::selectHint() {
    const auto source = form_.text(field_).source;
    if (source != CPropertiesForm::Source::Shared && source != CPropertiesForm::Source::Various)
        return;
    if (auto* line = qobject_cast<QLineEdit*>(input_))
        line->selectAll();
    else
        qobject_cast<QPlainTextEdit*>(input_)->selectAll();
}

bool CPropertyInput::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::FocusIn) {
        // A click puts the cursor down after the focus came.
        QTimer::singleShot(0, this, &CPropertyInput::selectHint);
        Q_EMIT entered();
    }
    return QWidget::eventFilter(watched, event);
}

} // namespace mirovane
