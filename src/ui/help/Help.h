#pragma once

#include <QKeyEvent>
#include <QObject>

namespace mirovane {

/// Help on the thing pointed at, in every window of the program: F1 for what has the keyboard, Shift+F1 and a
/// click for anything else. Says which page of the manual it is; showing it is somebody else's business.
/// Lives as long as the program's windows. Main thread.
class CHelp : public QObject {
    Q_OBJECT

public:
    explicit CHelp(QObject* parent = nullptr);

    /// The next click asks, and does nothing else.
    void pointAtSomething();

Q_SIGNALS:
    void pageWanted(const QString& page);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    bool keyPressed(QObject* watched, const QKeyEvent& key);
};

} // namespace mirovane
