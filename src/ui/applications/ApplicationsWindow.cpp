#include "ui/applications/ApplicationsWindow.h"

#include "applications/ApplicationCommand.h"
#include "applications/ApplicationStarter.h"
#include "platform/process/Terminal.h"
#include "ui/applications/ApplicationRows.h"
#include "ui/widgets/DialogText.h"
#include "ui/widgets/ScrollBody.h"
#include "ui/widgets/WindowPlacement.h"

#include <QApplication>
#include <QHBoxLayout>
#include <QHideEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

namespace mirovane {

namespace {

constexpr std::chrono::milliseconds saveDelay{2000};

constexpr int wantedWidth = 870; // a command of some sixty characters is seen whole

constexpr const char* instructions =
    "To run Program/Command:\n"
    "1) check the \"On Menu\" box. (checked items will be added to the menu, \"Application\", for "
    "execution)\n"
    "2) Type a friendly name (This name will be displayed on the menu, \"Application\")\n"
    "3) Type the command to execute\n"
    " (note: to execute a command at least once, one equipment must be selected. Multiple selection will "
    "executed the\n"
    "command multiple times.)";

constexpr const char* variables =
    "To substitute environment variables, use the following (note: not case sensitive):\n"
    "$mvN = Name; $mvI = IP Address; $mvU = Username; $mvJ = Jack;  $mvC = Comment;\n"
    "$mv/ = / Text;  $mv\\ = \\ Text;       $mv- = - Text;          $mv| = | Text;  $mvT = Todo;\n"
    "$mvW = a window will pop-up to allow more text to be inserted before the command is executed;";

QLabel* makeLabel(const QString& text) {
    auto* label = new QLabel(text);
    label->setTextFormat(Qt::PlainText);
    return label;
}

QString joined(const std::vector<std::string>& words) {
    std::string line;
    for (const std::string& word : words)
        line += (line.empty() ? "" : " ") + word;
    return shownText(line);
}

/// Words for people: quotes where a word holds blanks or nothing at all.
QString readable(const ProgramWords& words) {
    QStringList shown;
    for (const std::string& word : words) {
        const QString text = shownText(word).simplified();
        shown << (text.isEmpty() || text.contains(u' ') ? u'"' + text + u'"' : text);
    }
    return shown.join(u' ');
}

QString placeText(ProgramPlace place) {
    switch (place) {
    case ProgramPlace::Terminal:
        return QObject::tr("Opens in a terminal");
    case ProgramPlace::Browser:
        return QObject::tr("Opens in the web browser");
    case ProgramPlace::OwnWindow:
        break;
    }
    return QObject::tr("Starts the program");
}

} // namespace

QString commandExplained(const std::string& command, const CHardware* device) {
    const CApplicationCommand application(command);
    if (splitCommandLine(command).empty())
        return {};
    if (const std::string problem = application.problem(); !problem.empty())
        return QObject::tr("Cannot be started: ") + shownText(problem);
    if (!device)
        return placeText(application.place());
    const auto filled = application.fill(*device, "...");
    if (!filled.refusal.empty())
        return QObject::tr("Not started for the selected device: ") + shownText(filled.refusal);
    return placeText(application.place()) + QStringLiteral(": ") + readable(filled.words);
}

CApplicationsWindow::CApplicationsWindow(CStation& station, CSettings& settings, Asking asking,
                                         QWidget* parent)
    : QDialog(parent),
      station_(station),
      settings_(settings),
      asking_(std::move(asking)),
      rows_(new CApplicationRows(station, asking_.mayDelete)),
      terminal_(new QLineEdit),
      add_(new QPushButton(QObject::tr("&Add"))),
      explanation_(makeLabel({})) {
    setObjectName(QStringLiteral("applicationsWindow"));
    setWindowTitle(QObject::tr("External Applications"));
    explanation_->setObjectName(QStringLiteral("applicationExplained"));
    explanation_->setForegroundRole(QPalette::PlaceholderText);
    explanation_->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Fixed); // cut off, never wider

    auto* body = new QWidget;
    auto* layout = new QVBoxLayout(body);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(makeLabel(qText(instructions)));
    layout->addSpacing(6);
    layout->addWidget(rows_);
    layout->addWidget(explanation_);
    layout->addSpacing(6);
    layout->addWidget(makeLabel(qText(variables)));
    layout->addSpacing(6);
    auto* hint = makeLabel(tr("Ping, ssh, traceroute and the like open in a terminal; write term: before any "
                              "other command that should, noterm: before one that should not."));
    hint->setWordWrap(true);
    layout->addWidget(hint);
    layout->addWidget(makeTerminal());
    layout->addStretch();
    auto* whole = new QVBoxLayout(this);
    whole->addWidget(new CScrollBody(body), 1);
    whole->addWidget(makeButtons());

    connect(rows_, &CApplicationRows::stored, this, &CApplicationsWindow::saveSoon);
    connect(rows_, &CApplicationRows::emptied, this, [this] { add_->setFocus(); });
    connect(rows_, &CApplicationRows::commandShown, this, &CApplicationsWindow::explain);
    saveTimer_.setSingleShot(true);
    connect(&saveTimer_, &QTimer::timeout, this, &CApplicationsWindow::saveLater);
    fitToScreen(*this, QSize(wantedWidth, 0));
    // The only box there is without entries is the terminal's: whoever types at once would name another one.
    if (applicationRecords(station_.document()).empty())
        add_->setFocus();
}

CApplicationsWindow::~CApplicationsWindow() {
    hide(); // stores, while there is still somebody to store for
}

void CApplicationsWindow::present() {
    setWindowState(windowState() & ~Qt::WindowMinimized);
    show();
    raise();
    activateWindow();
}

void CApplicationsWindow::store() {
    rows_->store();
    storeTerminal();
}

QWidget* CApplicationsWindow::makeTerminal() {
    auto* line = new QWidget;
    auto* layout = new QHBoxLayout(line);
    layout->setContentsMargins(0, 0, 0, 0);
    auto* label = new QLabel(tr("&Terminal of this user:"));
    label->setBuddy(terminal_);
    terminal_->setObjectName(QStringLiteral("applicationTerminal"));
    terminal_->setText(shownText(settings_.store().readText(terminalSetting).value_or("")));
    const QString found = joined(installedTerminal());
    terminal_->setPlaceholderText(found.isEmpty() ? tr("none is installed; for example: xterm -e") : found);
    connect(terminal_, &QLineEdit::editingFinished, this, &CApplicationsWindow::storeTerminal);
    layout->addWidget(label);
    layout->addWidget(terminal_, 1);
    return line;
}

QWidget* CApplicationsWindow::makeButtons() {
    auto* line = new QWidget;
    auto* layout = new QHBoxLayout(line);
    layout->setContentsMargins(0, 0, 0, 0);
    add_->setObjectName(QStringLiteral("applicationAdd"));
    auto* close = new QPushButton(tr("&Close"));
    close->setObjectName(QStringLiteral("applicationClose"));
    for (QPushButton* button : {add_, close})
        button->setAutoDefault(false); // Enter belongs to the boxes
    connect(add_, &QPushButton::clicked, rows_, &CApplicationRows::addEntry);
    connect(close, &QPushButton::clicked, this, &QDialog::accept);
    layout->addWidget(add_);
    layout->addWidget(makeMove(tr("Move &Up"), "applicationUp", -1));
    layout->addWidget(makeMove(tr("Move D&own"), "applicationDown", 1));
    layout->addStretch();
    layout->addWidget(close);
    return line;
}

/// The cursor stays in its row: it says which entry is meant.
QPushButton* CApplicationsWindow::makeMove(const QString& text, const char* name, int step) {
    auto* button = new QPushButton(text);
    button->setObjectName(QLatin1String(name));
    button->setAutoDefault(false);
    button->setFocusPolicy(Qt::NoFocus);
    button->setToolTip(step < 0 ? tr("Move the entry with the cursor up (Alt+Up)")
                                : tr("Move the entry with the cursor down (Alt+Down)"));
    connect(button, &QPushButton::clicked, this, [this, step] { rows_->moveEntry(step); });
    return button;
}

void CApplicationsWindow::explain(const QString& command) {
    const auto targets = applicationTargets(station_.selection());
    explanation_->setText(commandExplained(storedText(command), targets.empty() ? nullptr : targets.front()));
}

void CApplicationsWindow::storeTerminal() {
    SettingsStore& store = settings_.store();
    const std::string typed = storedText(terminal_->text().trimmed());
    if (typed != store.readText(terminalSetting).value_or(""))
        store.writeText(terminalSetting, typed);
}

/// However it is closed: by its button, by Escape, by the window manager or together with the program.
void CApplicationsWindow::hideEvent(QHideEvent* event) {
    QDialog::hideEvent(event);
    if (event->spontaneous()) // only minimised
        return;
    store();
    if (const auto error = save(); error && asking_.saveFailed)
        asking_.saveFailed(*error);
}

void CApplicationsWindow::saveSoon() {
    unsaved_ = true;
    saveTimer_.start(saveDelay);
}

/// Not behind the back of somebody who is being asked something: a save may read the datafile again.
void CApplicationsWindow::saveLater() {
    if (QApplication::activeModalWidget())
        saveTimer_.start(saveDelay);
    else
        save();
}

/// The log tells of a failure; the periodic save goes on trying.
std::optional<FileError> CApplicationsWindow::save() {
    saveTimer_.stop();
    const bool wanted = std::exchange(unsaved_, false) && station_.document().modified();
    if (!wanted)
        return std::nullopt;
    return station_.saveDatafile().error;
}

} // namespace mirovane
