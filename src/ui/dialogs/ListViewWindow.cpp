#include "ui/dialogs/ListViewWindow.h"

#include "ui/dialogs/DialogText.h"
#include "ui/dialogs/ListViewMenus.h"

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

namespace mirovane {

namespace {

constexpr QSize firstSize(1100, 560);
constexpr QSize smallestSize(420, 200);

/// Around the table.
constexpr int edge = 10;

constexpr std::chrono::seconds noteTime{4};

} // namespace

CListViewWindow::CListViewWindow(CStation& station)
    : station_(station),
      rows_(station.document(), station.listView()),
      table_(new ListTable(rows_, this)),
      widths_(new ListColumnWidths(*table_->horizontalHeader(), station.settings())),
      status_(new QLabel(this)),
      datafile_(station.document().path()) {
    setObjectName(QStringLiteral("listViewWindow"));
    setWindowTitle(QStringLiteral("List View - Mirovane"));
    setAttribute(Qt::WA_QuitOnClose, false);
    layOut();
    setMinimumSize(smallestSize);
    resize(firstSize.boundedTo(QGuiApplication::primaryScreen()->availableSize() * 9 / 10));
    placement_ = new PlacementKeeper(*this, station.settings(), listViewPlacement);
    noteEnds_.setSingleShot(true);
    connect(&noteEnds_, &QTimer::timeout, this, [this] { say({}); });
    connect(table_, &ListTable::rowActivated, this, &CListViewWindow::activateRow);
    connect(table_, &ListTable::searched, this, &CListViewWindow::noteSearch);
    connect(&rows_, &ListViewModel::updated, this, &CListViewWindow::showStatus);
    connect(&rows_, &ListViewModel::rearranged, this, &CListViewWindow::startOverInAnotherDatafile);
    watchStation();
}

CListViewWindow::~CListViewWindow() {
    hide(); // the table must not lose the focus when its rows are gone
    widths_->flush();
}

void CListViewWindow::layOut() {
    auto* bar = new QMenuBar(this);
    bar->setNativeMenuBar(false); // a window of its own has menus of its own
    new ListViewMenus(*bar, {rows_, *table_, *widths_, [this] { rows_.refill(); },
                             [this] {
                                 close();
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

/// The station may outlive the window by a while.
void CListViewWindow::watchStation() {
    const auto chain = [this](std::function<void()>& callback, void (ListViewModel::*then)()) {
        callback = [self = QPointer<CListViewWindow>(this), before = callback, then] {
            if (before)
                before();
            if (self)
                (self->rows_.*then)();
        };
    };
    chain(station_.onRedraw, &ListViewModel::flush);
    chain(station_.onListRefill, &ListViewModel::settleOrder);
}

void CListViewWindow::present() {
    if (!isVisible())
        restorePlacement(*this, station_.settings(), listViewPlacement);
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
    if (datafile_ == station_.document().path())
        return;
    datafile_ = station_.document().path();
    table_->goToStart();
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
        text = note_ + QStringLiteral("   \u00b7   ") + text;
    if (text != status_->text())
        status_->setText(text);
}

} // namespace mirovane
