#pragma once

#include <QString>
#include <QStringList>

class QWidget;

namespace mirovane {

enum class DuplicateAnswer { Apply, Cancel, ShowOther };

/// What the Properties dialogs ask the user, so that tests can answer. Main thread; each call returns when
/// the user has decided.
class PropertiesPrompts {
public:
    virtual ~PropertiesPrompts() = default;

    /// Another device has the same value. `other` names it.
    virtual DuplicateAnswer askDuplicate(QWidget& parent, const QString& question, const QString& other) = 0;

    /// Files to be added to a marker's pictures; none when the user cancels.
    virtual QStringList choosePictures(QWidget& parent, const QString& folder) = 0;

    virtual void fail(QWidget& parent, const QString& text) = 0;
};

/// With message boxes and the file dialog.
class CWidgetPropertiesPrompts final : public PropertiesPrompts {
public:
    DuplicateAnswer askDuplicate(QWidget& parent, const QString& question, const QString& other) override;
    QStringList choosePictures(QWidget& parent, const QString& folder) override;
    void fail(QWidget& parent, const QString& text) override;
};

} // namespace mirovane
