#pragma once

#include "model/Document.h"

#include <QLineEdit>
#include <QListView>
#include <QStringListModel>
#include <QWidget>

#include <cstdint>
#include <vector>

namespace mirovane {

/// Finds one device of a type: a search box that narrows the list below it with every key. Main thread.
class CDevicePickList : public QWidget {
    Q_OBJECT

public:
    explicit CDevicePickList(QWidget* parent = nullptr);

    /// Offers the devices of the type, on the floor and in the Discovered/Misc window. The one that was
    /// picked stays; at first the first selected one is, or else the first.
    void offer(const CMirovaneDoc& document, std::int32_t type);

    void pick(std::int32_t recID);

    /// 0 when no device is left in the list.
    std::int32_t pickedRecID() const;

    QLineEdit& searchBox() { return *search_; }

protected:
    /// Up and Down in the search box move through the list.
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    struct Entry {
        std::int32_t RecID;
        QString text;
    };

    void narrow();

    std::vector<Entry> all_;
    std::vector<std::int32_t> shown_; ///< by line of the list
    QLineEdit* search_;
    QListView* list_;
    QStringListModel model_;
};

} // namespace mirovane
