#pragma once

#include <QString>
#include <QStringList>

namespace mirovane {

struct KeyboardLocks {
    bool caps = false;
    bool num = false;
    bool scroll = false;

    bool operator==(const KeyboardLocks&) const = default;
};

/// "CAP NUM SCRL", only those that are on.
QString keyboardText(const KeyboardLocks& locks);

/// The lights of the keyboards of this computer, as the kernel shows them. Neither Qt nor every window system
/// tells the state of the locks, the lights do. All off when there is no keyboard with lights, or when the
/// display belongs to another computer than the one this program runs on.
class CKeyboardLights {
public:
    explicit CKeyboardLights(QString folder = QStringLiteral("/sys/class/leds"));

    /// False for a display reached over the network: its keyboard is not ours.
    static bool displayIsLocal(const QString& displayName);

    KeyboardLocks read() const;

private:
    bool anyLit(const QStringList& files) const;

    QStringList caps_;
    QStringList num_;
    QStringList scroll_;
};

} // namespace mirovane
