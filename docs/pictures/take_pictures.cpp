// Takes the manual's screenshots, without a display: script/screenshots
//
// The windows are those of the program, with a copy of the demo site. Live Stat and Discover Now run while
// the pictures are taken; what they ask is on loopback. Style, font and sizes are fixed, so a picture has the
// same size everywhere.

#include "ui/frame/Desktop.h"

#include <QAbstractButton>
#include <QAbstractItemView>
#include <QApplication>
#include <QComboBox>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QLineEdit>
#include <QStyleFactory>
#include <QTableView>
#include <QTimer>
#include <QWidget>

#include <cstdio>
#include <cstdlib>
#include <functional>

namespace {

using namespace mirovane;

constexpr int patienceMs = 20'000;
constexpr QSize frameSize(1280, 800);

[[noreturn]] void giveUp(const QString& why) {
    std::fprintf(stderr, "take_pictures: %s\n", why.toLocal8Bit().constData());
    std::exit(1);
}

/// Events go on meanwhile.
void waitFor(const std::function<bool()>& done, const QString& what) {
    QElapsedTimer time;
    time.start();
    while (!done()) {
        if (time.elapsed() > patienceMs)
            giveUp(QStringLiteral("waited too long for ") + what);
        QApplication::processEvents(QEventLoop::AllEvents, 20);
    }
}

QWidget* window(const QString& name) {
    for (QWidget* widget : QApplication::topLevelWidgets())
        if (widget->isVisible() && widget->objectName() == name)
            return widget;
    return nullptr;
}

class CPictures {
public:
    CPictures(CDesktop& desktop, QString folder) : desktop_(desktop), folder_(std::move(folder)) {}

    void take() {
        frame();
        during("viewListView", "listViewWindow", [this](QWidget& list) {
            list.findChild<QTableView*>()->sortByColumn(7, Qt::AscendingOrder); // by name
            save(list, {1100, 420}, "list-view");
        });
        ofWindow("viewDiscoverMisc", "discoveredWindow", {620, 240}, "discovered");
        ofWindow("toolsApplications", "applicationsWindow", {900, 480}, "applications");
        ofWindow("fileExport", "exportDialog", {640, 480}, "export");
        liveStat();
        discoverNow();
        quickFind();
        properties();
        ofWindow("viewMessageLogs", "messageLogWindow", {820, 360}, "message-log");
    }

private:
    void frame() {
        CMainFrame& main = desktop_.frame();
        QElapsedTimer time;
        time.start();
        // The computers of the demo are found within a few runs of Live Stat.
        waitFor([&time] { return time.elapsed() > 6'000; }, QStringLiteral("Live Stat"));
        main.resize(frameSize);
        main.actions().action("viewZoomAll")->trigger();
        save(main, frameSize, "floor");
    }

    void ofWindow(const char* action, const char* name, QSize size, const char* file) {
        during(
            action, name, [&](QWidget& shown) { save(shown, size, file); });
    }

    void liveStat() {
        during(
            "toolsLiveStatOptions", "liveStatOptions",
            [this](QWidget& options) {
                save(options, {620, 470}, "options");
                press(options, "criteria");
                QWidget& criteria = waitForWindow(QStringLiteral("criteriaWindow"));
                auto* type = criteria.findChild<QComboBox*>(QStringLiteral("device"));
                type->setCurrentIndex(type->findText(QStringLiteral("Phone"), Qt::MatchContains));
                save(criteria, {1000, 680}, "criteria");
                criteria.close();
            });
    }

    void discoverNow() {
        during(
            "toolsDiscoverNow", "discoverNowWindow",
            [this](QWidget& shown) {
                press(shown, "discoverNowStart");
                auto* stop = shown.findChild<QAbstractButton*>(QStringLiteral("discoverNowStop"));
                waitFor([stop] { return stop->isVisible(); }, QStringLiteral("Discover Now to begin"));
                waitFor([stop] { return !stop->isVisible(); }, QStringLiteral("Discover Now to end"));
                shown.findChild<QAbstractItemView*>(QStringLiteral("discoverNowTable"))->scrollToTop();
                save(shown, {620, 380}, "discover-now");
            });
    }

    void quickFind() {
        during(
            "editQuickFind", "quickFind",
            [this](QWidget& popup) {
                popup.findChild<QLineEdit*>(QStringLiteral("quickFindText"))->setText(QStringLiteral("copy"));
                save(popup, popup.size(), "quick-find");
            });
    }

    void properties() {
        desktop_.comeUp({{}, QStringLiteral("sw-2a")});
        ofWindow("editProperties", "propertiesDialog", {760, 520}, "properties");
    }

    QWidget& waitForWindow(const QString& name) {
        waitFor([&name] { return window(name) != nullptr; }, name);
        return *window(name);
    }

    /// The command may come back at once or only when its window closes: what is done with the window is done
    /// from a timer, which runs in either case.
    void during(const char* action, const char* name, const std::function<void(QWidget&)>& run) {
        bool done = false;
        QTimer::singleShot(0, &desktop_.frame(), [&] {
            QWidget& shown = waitForWindow(QLatin1String(name));
            run(shown);
            shown.close();
            done = true;
        });
        QAction* command = desktop_.frame().actions().action(action);
        if (!command || !command->isEnabled())
            giveUp(QStringLiteral("no such command now: ") + QLatin1String(action));
        command->trigger();
        waitFor([&done] { return done; }, QLatin1String(name));
    }

    static void press(QWidget& in, const char* name) {
        auto* button = in.findChild<QAbstractButton*>(QLatin1String(name));
        if (!button)
            giveUp(QStringLiteral("no button ") + QLatin1String(name));
        QTimer::singleShot(0, button, &QAbstractButton::click);
    }

    void save(QWidget& widget, QSize size, const char* file) {
        widget.resize(size);
        for (int i = 0; i < 10; ++i) // what is laid out or painted with a delay
            QApplication::processEvents(QEventLoop::AllEvents, 30);
        const QString path = QDir(folder_).filePath(QLatin1String(file) + QStringLiteral(".png"));
        const QImage picture = widget.grab().toImage().convertToFormat(QImage::Format_RGB32);
        // Few colours: the manual's pages stay small.
        if (!picture.convertToFormat(QImage::Format_Indexed8, Qt::ThresholdDither).save(path))
            giveUp(QStringLiteral("cannot write ") + path);
    }

    CDesktop& desktop_;
    QString folder_;
};

} // namespace

int main(int argc, char** argv) {
    QApplication application(argc, argv);
    if (application.arguments().size() != 4) {
        std::fputs("usage: take_pictures OUT CONFIG DATAFILE\n", stderr);
        return 2;
    }
    QApplication::setStyle(QStyleFactory::create(QStringLiteral("Fusion")));
    QApplication::setFont(QFont(QStringLiteral("Liberation Sans"), 10));
    CDesktop desktop({QFile::encodeName(application.arguments()[2]).toStdString(), QStringLiteral("0")});
    desktop.start(QFile::encodeName(application.arguments()[3]).toStdString());
    CPictures(desktop, application.arguments()[1]).take();
    return desktop.endSession();
}
