#include "ui/list/ListViewWindow.h"

#include "ui/list/ListViewMenus.h"
#include "ui/widgets/DialogText.h"

#include <QGuiApplication>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLocale>
#include <QMenuBar>
#include <QPointer>
#include <QScreen>
#include <QVBoxLayout>

#include <chrono>
#include <functional>
#include <utility>

namespace mirovane {

namespace {

constexpr QSize firstSize(1100, 560);
constexpr QSize smallestSize(420, 200);

/// Around the table.
constexpr int edge = 10;

constexpr std::chrono::seconds noteTime{4};

} // namespace

CListViewWindow::CListViewWindow(CStation& station, CSettings& settings)
    : station_(station),
      settings_(settings),
      rows_(station.document(), station.selection(), station.listExport().listView()),
      table_(new CListTable(rows_, this)),
      widths_(new CListColumnWidths(*table_->horizontalHeader(), settings_)),
      status_(new QLabel(this)),
      datafile_(station.datafile().path()) {
    setObjectName(QStringLiteral("listViewWindow"));
    setWindowTitle(tr("List View - Mirovane"));
    setAttribute(Qt::WA_QuitOnClose, false);
    layOut();
    setMinimumSize(smallestSize);
    resize(firstSize.boundedTo(QGuiApplication::primaryScreen()->availableSize() * 9 / 10));
    placement_ = new CPlacementKeeper(*this, settings_, listViewPlacement);
    noteEnds_.setSingleShot(true);
    connect(&noteEnds_, &QTimer::timeout, this, [this] { say({}); });
    connect(table_, &CListTable::rowActivated, this, &CListViewWindow::activateRow);
    connect(table_, &CListTable::searched, this, &CListViewWindow::noteSearch);
    connect(&rows_, &CListViewModel::updated, this, &CListViewWindow::showStatus);
    connect(&rows_, &CListViewModel::updated, this, &CListViewWindow::followFloor);
    connect(&rows_, &CListViewModel::rearranged, this, &CListViewWindow::startOverInAnotherDatafile);
    station_.addObserver(*this);
}

CListViewWindow::~CListViewWindow() {
    station_.removeObserver(*this);
    hide(); // the table must not lose the focus when its rows are gone
    widths_->flush();
}

void CListViewWindow::layOut() {
    auto* bar = new QMenuBar(this);
    bar->setNativeMenuBar(false); // a window of its own has menus of its own
    new CListViewMenus(*bar,
                       {rows_, *table_, *widths_, settings_, [this] { rows_.refill(); }, [this] { close(); },
                        [this] {
                            rows_.flush();
                            if (rows_.selectedCount() > 0)
                                Q_EMIT propertiesWanted();
                        }});
    status_->setObjectName(QStringLiteral("listStatus"));
    status_->setTextFormat(Qt::PlainText);
    status_->setContentsMargins(edge, 0, edge, 0);
    auto* top = new QHBoxLayout;
    top->setContentsMargins(0, 0, 0, 0);
    top->setSpacing(0);
    top->addWidget(bar, 1);
    top->addWidget(status_);
    auto* middle = new QVBoxLayout;
    middle->setContentsMargins(edge, edge / 2, edge, edge);
    middle->addWidget(table_);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addLayout(top);
    layout->addLayout(middle);
    table_->setFocus();
}

void CListViewWindow::present() {
    if (!isVisible())
        restorePlacement(*this, settings_, listViewPlacement);
    setWindowState(windowState() & ~Qt::WindowMinimized);
    show();
    raise();
    activateWindow();
}

/// A window that is minimised goes on; only one that was closed lets go of the document.
void CListViewWindow::showEvent(QShowEvent* event) {
    QWidget::showEvent(event);
    if (event->spontaneous())
        return;
    rows_.setLive(true);
    widths_->fit(*table_);
    followFloor();
    widths_->makeRoomFor(static_cast<int>(ListColumn::ID),
                         QString::number(station_.document().nextRecordID()));
}

void CListViewWindow::hideEvent(QHideEvent* event) {
    QWidget::hideEvent(event);
    if (event->spontaneous())
        return;
    rows_.setLive(false);
    widths_->flush();
}

void CListViewWindow::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_Escape)
        close();
    else
        QWidget::keyPressEvent(event);
}

void CListViewWindow::startOverInAnotherDatafile() {
    if (datafile_ == station_.datafile().path())
        return;
    datafile_ = station_.datafile().path();
    table_->goToStart();
    widths_->fit(*table_);
}

/// The device that was selected on the floor is where the next key acts from.
void CListViewWindow::followFloor() {
    const CSelection& selection = station_.selection();
    const std::int32_t chosen = selection.count() == 1 ? selection.members().front()->RecID : 0;
    if (chosen == std::exchange(followed_, chosen) || chosen == 0 || chosen == table_->currentDevice())
        return;
    table_->goToDevice(chosen);
}

void CListViewWindow::activateRow(std::int32_t recID) {
    const CHardware* device = station_.document().findDevice(recID);
    if (!device)
        return;
    if (device->onFloor())
        Q_EMIT showOnFloor(recID);
    else
        say(tr("Not on the floor: it waits in Discovered/Misc"));
}

// ---- the line beside the menus

void CListViewWindow::noteSearch(const QString& text, bool found) {
    if (text.isEmpty()) {
        say({});
        return;
    }
    const QString column = qText(listColumns()[static_cast<std::size_t>(rows_.state().column)].title);
    say((found ? tr("%1: \u201c%2\u201d") : tr("%1: \u201c%2\u201d not found")).arg(column, text));
}

void CListViewWindow::say(const QString& note) {
    note_ = note;
    if (note.isEmpty())
        noteEnds_.stop();
    else
        noteEnds_.start(noteTime);
    showStatus();
}

void CListViewWindow::showStatus() {
    const QLocale locale;
    const int shown = rows_.rowCount();
    const int all = static_cast<int>(station_.document().deviceCount());
    QString text = tr("%1 of %2 devices").arg(locale.toString(shown), locale.toString(all));
    if (shown == all)
        text = all == 1 ? tr("1 device") : tr("%1 devices").arg(locale.toString(all));
    if (rows_.selectedCount() > 0)
        text += tr(", %1 selected").arg(locale.toString(rows_.selectedCount()));
    if (!note_.isEmpty())
        text = note_ + tr("   \u00b7   ") + text;
    if (text != status_->text())
        status_->setText(text);
}

} // namespace mirovane
