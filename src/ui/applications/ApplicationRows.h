#pragma once

#include "applications/Applications.h"
#include "station/Station.h"

#include <QString>
#include <QTimer>
#include <QWidget>

#include <array>
#include <functional>
#include <optional>
#include <string>
#include <vector>

class QCheckBox;
class QGridLayout;
class QLineEdit;
class QPushButton;
class QScrollBar;

namespace mirovane {

/// The External Applications of a document in rows of four controls, five of them in view, with a scroll bar
/// over all. Up and Down go from entry to entry. The station outlives the widget. Main thread.
///
/// An entry is stored when its check mark changes and when one of its boxes is left. Entries that another
/// station changed meanwhile are shown as soon as they are read; what is being typed stays, and goes into the
/// entry that it was typed for, or into a new one when that one is gone.
class CApplicationRows : public QWidget, private DocumentObserver {
    Q_OBJECT

public:
    /// `mayDelete` asks the user, with the name of the entry.
    CApplicationRows(CStation& station, std::function<bool(const std::string& name)> mayDelete,
                     QWidget* parent = nullptr);
    ~CApplicationRows() override;

    /// Appends an empty entry, scrolls to it and puts the cursor into it.
    void addEntry();

    /// Moves the entry with the cursor up (-1) or down (1), and the cursor with it.
    void moveEntry(int step);

    /// What is typed but not yet stored, as if the box had been left.
    void store();

Q_SIGNALS:
    /// The user changed the document's entries.
    void stored();

    /// The last entry was deleted.
    void emptied();

    /// The command that the user is working on, as it is in its box.
    void commandShown(const QString& command);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;

private:
    static constexpr int rowCount = 5;

    struct Row {
        QCheckBox* onMenu = nullptr;
        QLineEdit* name = nullptr;
        QLineEdit* command = nullptr;
        QPushButton* remove = nullptr;
        ApplicationValues shown; ///< the entry's values, with which the boxes were filled
        QString shownName;
        QString shownCommand;

        std::array<QWidget*, 4> controls() const;
        void setVisible(bool visible);
        bool edited() const;
        ApplicationValues values() const;
    };

    /// A row that was edited, while the entries around it change.
    struct Edit {
        int row = 0;
        int column = 0; ///< where the cursor is
        ApplicationValues shown;
        ApplicationValues values;
    };

    // DocumentObserver
    void recordAdded(const CHardware& record) override { changed(record); }
    void recordChanged(const CHardware& before, const CHardware& after) override {
        changed(before);
        changed(after);
    }
    void recordRemoved(const CHardware& record) override { changed(record); }
    void orderChanged() override { refreshSoon_.start(); }
    void documentReplaced() override { refreshSoon_.start(); }

    /// The entry in this row of the window.
    std::size_t placeOf(int row) const {
        return static_cast<std::size_t>(first_) + static_cast<std::size_t>(row);
    }
    void changed(const CHardware& record);
    void makeHeader(QGridLayout& grid);
    void makeRow(QGridLayout& grid, int number);
    void refresh();
    std::optional<Edit> openEdit() const;
    int placeFor(const Edit& edit) const;
    void resume(const Edit& edit, int place);
    void removeEntry(int row);
    void scrollTo(int first);
    void fillRows();
    void fillRow(int number);
    void edit(const char* name, const std::function<void(CMirovaneDoc&)>& change);
    void moveFocus(const QWidget* from, int step);
    void focus(int row, int column);

    CStation& station_;
    std::function<bool(const std::string&)> mayDelete_;
    std::array<Row, rowCount> rows_;
    std::vector<ApplicationValues> entries_; ///< as of the last refresh
    QScrollBar* bar_;
    int first_ = 0; ///< entry in the first row
    QTimer refreshSoon_;
};

} // namespace mirovane
