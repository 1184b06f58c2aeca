#include "tests/ui/frame/WindowFaults.h"

#include "ui/widgets/ReadableColours.h"

#include <QAbstractButton>
#include <QAbstractItemView>
#include <QAbstractSpinBox>
#include <QAction>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QGroupBox>
#include <QKeySequence>
#include <QLabel>
#include <QLineEdit>
#include <QMenuBar>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QRegularExpression>
#include <QTabBar>
#include <QTextEdit>
#include <QToolBar>

#include <algorithm>
#include <map>

namespace mirovane::test {

namespace {

constexpr QSize smallScreen(780, 540);    ///< 800 x 600 without title and panel
constexpr double leastContrast = 3.0;     ///< of texts that matter little, such as hints
constexpr double leastWhenDisabled = 2.2; ///< still to be read

QString letterOf(const QString& text) {
    return QKeySequence::mnemonic(text).toString();
}

QString nameOf(const QWidget& widget) {
    const QString name =
        widget.objectName().isEmpty() ? QLatin1String(widget.metaObject()->className()) : widget.objectName();
    return name + u' ' + widget.property("text").toString().left(30);
}

template <typename Widget>
QList<Widget*> visible(QWidget& window) {
    QList<Widget*> found;
    for (auto* each : window.findChildren<Widget*>())
        if (each->isVisible() && each->window() == &window)
            found << each;
    return found;
}

const QLabel* labelOf(QWidget& window, const QWidget& control) {
    for (const QLabel* label : visible<QLabel>(window))
        for (const QWidget* buddy = label->buddy(); buddy; buddy = buddy->focusProxy())
            if (buddy == &control)
                return label;
    return nullptr;
}

/// What a user works with; not the parts that Qt makes it of.
QList<QWidget*> controls(QWidget& window) {
    QList<QWidget*> all;
    for (QWidget* each : visible<QWidget>(window)) {
        const bool kind = qobject_cast<QAbstractButton*>(each) || qobject_cast<QLineEdit*>(each) ||
                          qobject_cast<QComboBox*>(each) || qobject_cast<QAbstractSpinBox*>(each) ||
                          qobject_cast<QPlainTextEdit*>(each) || qobject_cast<QTextEdit*>(each) ||
                          qobject_cast<QAbstractItemView*>(each);
        const QWidget* parent = each->parentWidget();
        const bool part =
            qobject_cast<const QComboBox*>(parent) || qobject_cast<const QAbstractSpinBox*>(parent) ||
            qobject_cast<const QLineEdit*>(parent) || qobject_cast<const QAbstractScrollArea*>(parent) ||
            each->objectName().startsWith(QLatin1String("qt_"));
        if (kind && !part)
            all << each;
    }
    return all;
}

/// Enter and Escape press these, or the mouse alone is meant, or a key of the main window leads there.
bool needsNoLetter(const QWidget& control) {
    const auto* push = qobject_cast<const QPushButton*>(&control);
    return (push && (push->isDefault() || push->text() == QLatin1String("OK") ||
                     push->text() == QLatin1String("Cancel") || push->text() == QLatin1String("Close"))) ||
           !(control.focusPolicy() & Qt::TabFocus) ||
           qobject_cast<const QDialogButtonBox*>(control.parentWidget()) ||
           qobject_cast<const QToolBar*>(control.parentWidget());
}

/// A letter of its own, of its label or of its group, or the keyboard is there at the beginning.
bool hasLetter(QWidget& window, const QWidget& control) {
    const QLabel* label = labelOf(window, control);
    const auto* group = qobject_cast<const QGroupBox*>(control.parentWidget());
    return window.focusWidget() == &control || !letterOf(control.property("text").toString()).isEmpty() ||
           (label && !letterOf(label->text()).isEmpty()) || (group && !letterOf(group->title()).isEmpty());
}

/// A few presses of Tab from a control with a letter: a field beside its check box, a list below its search
/// field.
bool isBehindLetter(QWidget& window, const QWidget& control) {
    constexpr int presses = 2;
    const QWidget* each = &control;
    for (int pressed = 0; pressed <= presses; each = each->previousInFocusChain()) {
        if (hasLetter(window, *each))
            return true;
        const bool stops = each->isVisible() && each->isEnabled() && (each->focusPolicy() & Qt::TabFocus);
        pressed += stops || each == &control ? 1 : 0;
        if (each->previousInFocusChain() == &control)
            break;
    }
    return false;
}

/// The grid of the criteria has more inputs than there are letters.
bool isInGrid(const QWidget& control) {
    static const QRegularExpression cell(QStringLiteral("^(row[0-9]+|exampleTest|exampleField)[A-Z]"));
    return cell.match(control.objectName()).hasMatch();
}

void findNameless(QWidget& window, QStringList& faults) {
    for (const QWidget* control : controls(window)) {
        const auto* button = qobject_cast<const QAbstractButton*>(control);
        if (control->accessibleName().isEmpty() && !(button && !button->text().isEmpty()) &&
            !labelOf(window, *control))
            faults << QStringLiteral("has no name: ") + nameOf(*control);
        if (!needsNoLetter(*control) && !isInGrid(*control) && !isBehindLetter(window, *control))
            faults << QStringLiteral("has no letter: ") + nameOf(*control);
    }
}

void findTwins(QWidget& window, QStringList& faults) {
    std::map<QString, QStringList> letters;
    const auto add = [&letters](const QString& text, bool counts = true) {
        if (const QString letter = letterOf(text); counts && !letter.isEmpty())
            letters[letter] << QString(text).left(30);
    };
    for (const auto* button : visible<QAbstractButton>(window))
        add(button->text());
    for (const auto* label : visible<QLabel>(window))
        add(label->text(), label->buddy());
    for (const auto* group : visible<QGroupBox>(window))
        add(group->title());
    for (const auto* tabs : visible<QTabBar>(window))
        for (int i = 0; i < tabs->count(); ++i)
            add(tabs->tabText(i));
    for (const auto* bar : visible<QMenuBar>(window))
        for (const QAction* action : bar->actions())
            add(action->text());
    for (const auto& [letter, texts] : letters)
        if (texts.size() > 1)
            faults << QStringLiteral("have the same letter: ") + texts.join(QStringLiteral(", "));
}

void findCut(QWidget& window, QStringList& faults) {
    for (const auto* label : visible<QLabel>(window)) {
        const int wanted =
            label->wordWrap() ? label->heightForWidth(label->width()) : label->minimumSizeHint().height();
        const bool narrow = !label->wordWrap() && label->minimumSizeHint().width() > label->width() &&
                            !label->text().contains(u'…');
        if (!label->text().isEmpty() && (narrow || wanted > label->height() + 1))
            faults << QStringLiteral("is cut: ") + nameOf(*label);
    }
    for (const QWidget* control : controls(window)) {
        const QSize least = control->minimumSizeHint();
        const bool hasText =
            qobject_cast<const QAbstractButton*>(control) || qobject_cast<const QComboBox*>(control);
        const bool meant = control->minimumWidth() == control->maximumWidth(); // hides the end of its entries
        if (hasText && !meant && (least.width() > control->width() || least.height() > control->height()))
            faults << QStringLiteral("is cut: ") + nameOf(*control);
    }
}

/// Where the keyboard is when the window opens.
void findStart(QWidget& window, QStringList& faults) {
    const QWidget* start = window.focusWidget();
    if (!start || !start->isVisible())
        faults << QStringLiteral("nothing has the keyboard");
    const QList<QWidget*> all = controls(window);
    const bool editable = std::ranges::any_of(all, [](const QWidget* each) {
        const bool box = qobject_cast<const QLineEdit*>(each) ||
                         qobject_cast<const QAbstractSpinBox*>(each) ||
                         qobject_cast<const QPlainTextEdit*>(each);
        return box && each->isEnabled() && !each->property("readOnly").toBool() &&
               (each->focusPolicy() & Qt::TabFocus);
    });
    const bool nothingYet = start && start->objectName() == QLatin1String("applicationAdd");
    if (editable && !nothingYet && qobject_cast<const QPushButton*>(start))
        faults << QStringLiteral("the keyboard begins at a button");
}

void findPale(QWidget& window, QStringList& faults) {
    for (const QWidget* each : visible<QWidget>(window)) {
        const bool input = qobject_cast<const QLineEdit*>(each) ||
                           qobject_cast<const QPlainTextEdit*>(each) ||
                           qobject_cast<const QAbstractItemView*>(each);
        if (!input && !qobject_cast<const QLabel*>(each) && !qobject_cast<const QAbstractButton*>(each))
            continue;
        const QColor text = each->palette().color(input ? QPalette::Text : each->foregroundRole());
        QColor ground = each->palette().color(input ? QPalette::Base : each->backgroundRole());
        if (ground.alpha() == 0)
            ground = window.palette().color(QPalette::Window);
        if (contrast(text, ground) < (each->isEnabled() ? leastContrast : leastWhenDisabled))
            faults << QStringLiteral("is pale (%1): ").arg(contrast(text, ground), 0, 'f', 1) + nameOf(*each);
    }
}

} // namespace

QStringList windowFaults(QWidget& window) {
    QStringList faults;
    findNameless(window, faults);
    findTwins(window, faults);
    findCut(window, faults);
    findPale(window, faults);
    const QSize least = window.minimumSizeHint().expandedTo(window.minimumSize());
    if (least.width() > smallScreen.width() || least.height() > smallScreen.height())
        faults << QStringLiteral("needs %1 x %2").arg(least.width()).arg(least.height());
    findStart(window, faults);
    return faults;
}

QPalette darkPalette() {
    const QColor window(43, 43, 48);
    const QColor base(30, 30, 34);
    const QColor text(235, 235, 235);
    QPalette palette(window);
    for (const auto role :
         {QPalette::WindowText, QPalette::Text, QPalette::ButtonText, QPalette::ToolTipText})
        palette.setColor(role, text);
    for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText})
        palette.setColor(QPalette::Disabled, role, QColor(130, 130, 130));
    palette.setColor(QPalette::Base, base);
    palette.setColor(QPalette::AlternateBase, window);
    palette.setColor(QPalette::PlaceholderText, QColor(235, 235, 235, 128));
    palette.setColor(QPalette::Highlight, QColor(42, 130, 218));
    palette.setColor(QPalette::HighlightedText, Qt::white);
    return palette;
}

} // namespace mirovane::test
