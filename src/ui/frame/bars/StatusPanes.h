#pragma once

#include "model/records/Hardware.h"

#include <QLabel>
#include <QString>

#include <array>
#include <optional>

class QStatusBar;

namespace mirovane {

/// The indicator panes of the status bar, left to right.
enum class Indicator { Reminders, LiveDiscover, LiveStat, Hidden, Keyboard };
constexpr std::size_t indicatorCount = 5;

/// What decides the texts of the indicator panes.
struct IndicatorState {
    int remindersDue = 0;
    bool liveDiscoverEnabled = false;
    QString liveDiscoverElsewhere; ///< which other station runs it, in words; empty when none does
    std::size_t discovered = 0;    ///< devices since the datafile was opened; in the pane's tool tip
    QString liveStatText;          ///< empty while Live Stat is off
    QString liveStatElsewhere;     ///< as with Live Discover
    bool anyTypeHidden = false;
    bool floorMapHidden = false;
    QString keyboardText;
};

QString indicatorText(Indicator indicator, const IndicatorState& state);

/// One line that is cut off with an ellipsis where the pane ends, instead of making the window wider.
class CMessagePane : public QLabel {
    Q_OBJECT

public:
    explicit CMessagePane(QWidget* parent = nullptr);

    void setMessage(const QString& message);
    const QString& message() const { return message_; }
    QSize minimumSizeHint() const override;

protected:
    void resizeEvent(QResizeEvent* event) override;

private:
    void elide();

    QString message_;
};

/// The panes in a window's status bar: the last status line, then the indicators, each as wide as its sizing
/// text.
class CStatusPanes : public QObject {
    Q_OBJECT

public:
    explicit CStatusPanes(QStatusBar& bar);

    void SetStatusText(const QString& text) { message_->setMessage(text); }
    void refresh(const IndicatorState& state);

    /// Where the pointer is on the map; nothing while it is elsewhere.
    void showPointer(std::optional<MapPoint> at);

Q_SIGNALS:
    /// On the pane of due reminders, while any is due.
    void remindersClicked();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    CMessagePane* message_;
    QLabel* pointer_;
    std::array<QLabel*, indicatorCount> indicators_{};
};

} // namespace mirovane
