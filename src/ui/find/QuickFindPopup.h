#pragma once

#include "ui/find/QuickFindModel.h"

#include <QFrame>
#include <QLabel>
#include <QLineEdit>
#include <QTreeView>

namespace mirovane {

/// The quick find: a line to type into and, below it, the devices that fit, best first. The arrow keys walk
/// through them while the cursor stays in the line; Enter chooses, Esc and a click elsewhere close it.
class CQuickFindPopup : public QFrame {
    Q_OBJECT

public:
    /// Document and icons outlive it.
    CQuickFindPopup(const CMirovaneDoc& document, CIconSet& icons, QWidget* parent);

    /// Below `at` (global), as wide as it fits into the screen there. `typed` replaces what was typed last.
    void present(QPoint at, const QString& typed = {});

    QLineEdit& line() { return *line_; }

Q_SIGNALS:
    void deviceChosen(const mirovane::DeviceKey& device);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void layOut();
    void look();
    void choose(const QModelIndex& index);
    bool walk(int key);

    CQuickFindModel model_;
    QLineEdit* line_;
    QTreeView* list_;
    QLabel* status_;
};

/// For a toolbar: looks like the quick find's line and opens it, with the first letter that is typed.
class CQuickFindField : public QLineEdit {
    Q_OBJECT

public:
    explicit CQuickFindField(QWidget* parent = nullptr);

Q_SIGNALS:
    /// `typed`: what the quick find starts with.
    void wanted(const QString& typed);

protected:
    void mousePressEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
};

} // namespace mirovane
