#pragma once

#include "model/MessageLog.h"
#include "model/Settings.h"

#include <QCheckBox>
#include <QLineEdit>
#include <QMenuBar>
#include <QPlainTextEdit>
#include <QWidget>

namespace mirovane {

/// "Message logs - Mirovane": the message log to read and to copy from. Made before the first line is logged
/// and only shown and hidden afterwards, so it misses none. A line costs the same whether the log holds ten
/// or 400.
///
/// The last line stays in view, except while somebody has scrolled up to read: then his place stays until he
/// scrolls back to the end or calls the window up again. A filter above the text leaves the lines that have
/// all of its words.
class CMessageLogWindow : public QWidget, private LogListener {
    Q_OBJECT

public:
    /// Both outlive the window.
    CMessageLogWindow(CMessageLog& log, CSettings& settings);
    ~CMessageLogWindow() override;

    /// Shows the window, restores it when it is minimised, brings it to the top and its last line into view.
    void present();

Q_SIGNALS:
    /// The file with the lines that outlive the program is to be shown.
    void logFileWanted();

protected:
    void keyPressEvent(QKeyEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    void lineLogged(const LogLine& line) override;
    QMenuBar* makeMenu();
    QLayout* makeFilter();
    bool passes(const LogLine& line) const;
    void refill();
    void append(const QString& line);
    bool followsEnd() const;
    void scrollToEnd();

    CMessageLog& log_;
    CSettings& settings_;
    QLineEdit* filter_;
    QCheckBox* noStatistics_;
    QPlainTextEdit* text_;
    bool following_ = true;
};

} // namespace mirovane
