#pragma once

#include <QLocalServer>
#include <QObject>
#include <QString>

#include <functional>
#include <optional>

namespace mirovane {

/// What a start of the program asks of a window that is open already.
struct HandoverRequest {
    QString datafile; ///< canonical path; empty: any window will do
    QString find;     ///< device to show; empty: none
};

enum class HandoverAnswer {
    Elsewhere, ///< the window has another datafile open
    Shown,     ///< it came up, with the device if one was asked for
    NotFound,  ///< it came up, but no device fits
};

/// The user's own folder for sockets, which ends with his login.
QString handoverFolder();

/// Asks every window that listens in the folder, in turn. Nothing when none has the datafile open, or answers
/// in time: a window that hangs must not keep another from opening. What a killed program left in the folder
/// is removed.
std::optional<HandoverAnswer> handOver(const QString& folder, const HandoverRequest& request);

/// An open window's ear for later starts. Main thread.
class CHandoverServer : public QObject {
    Q_OBJECT

public:
    using Handler = std::function<HandoverAnswer(const HandoverRequest&)>;

    CHandoverServer(const QString& folder, Handler handler);

    /// False: later starts open windows of their own.
    bool listening() const { return server_.isListening(); }

private:
    void serve();

    Handler handler_;
    QLocalServer server_;
};

} // namespace mirovane
