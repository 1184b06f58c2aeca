#pragma once

#include "model/properties/PropertiesForm.h"
#include "station/Station.h"
#include "ui/properties/PropertyInput.h"

#include <QBoxLayout>
#include <QDialog>
#include <QFormLayout>
#include <QLabel>
#include <QPushButton>
#include <QTimer>

#include <vector>

namespace mirovane {

/// What the three dialogs that edit devices have in common: the form, the buttons, and how they follow the
/// records while they are open. Changes nothing itself: it tells what the user decided. Main thread; the
/// station outlives it.
class CPropertiesDialog : public QDialog, private DocumentObserver {
    Q_OBJECT

public:
    enum class Decision { Cancel, Accept, Previous, Next };

    ~CPropertiesDialog() override;

    const CPropertiesForm& form() const { return form_; }

    /// What the user changed.
    virtual PropertiesEdit edit() const { return form_.edit({}); }

    /// The device has a neighbour to go to.
    void offerNeighbours(bool previous, bool next);

Q_SIGNALS:
    /// The dialog stays open until whoever is told closes it.
    void decided(mirovane::CPropertiesDialog::Decision decision);

    /// The row test is wanted, beginning with this row of the criteria.
    void testWanted(std::int32_t type, int row);

public Q_SLOTS:
    void accept() override { Q_EMIT decided(Decision::Accept); }
    void reject() override { Q_EMIT decided(Decision::Cancel); }

protected:
    CPropertiesDialog(CStation& station, PropertiesSet set, const QString& title, QWidget* parent);

    /// After the widgets of a dialog were made: banner and buttons around `body`, and the first showing.
    void finish(QLayout* body);

    CStation& station() { return station_; }
    CPropertiesForm& ownForm() { return form_; }

    /// "Rec ID:", "Modified:" and, where wanted, "Live Stat:".
    void addFacts(QFormLayout& rows, bool liveStat);

    /// A text field with its label.
    CPropertyInput* addText(const char* field, const QString& label, CPropertyInput::Kind kind);
    CPropertyInput* addTextRow(QFormLayout& rows, const char* field, const QString& label,
                               CPropertyInput::Kind kind = CPropertyInput::Kind::Line);

    /// "Priority:".
    void addPriority(QFormLayout& rows);

    /// Brings everything that is shown up to date.
    virtual void showForm();

    /// What is said below a text field.
    virtual FieldNote noteOf(const std::string& field) const;

    /// What is shown is out of date; once per turn of the event loop.
    void showSoon() { showSoon_.start(); }

private:
    // DocumentObserver
    void recordChanged(const CHardware& before, const CHardware& after) override;
    void recordRemoved(const CHardware&) override { showSoon(); }
    void documentReplaced() override { showSoon(); }

    QWidget* makeButtons();
    void showFacts();
    void showBanner();
    void wantTest();

    CStation& station_;
    CPropertiesForm form_;
    std::vector<CPropertyInput*> texts_;
    std::string lastField_;
    struct {
        bool previous = false;
        bool next = false;
    } neighbours_;
    QLabel* banner_;
    QLabel* recID_ = nullptr;
    QLabel* modified_ = nullptr;
    QLabel* liveStat_ = nullptr;
    class CChoiceInput* priority_ = nullptr;
    QPushButton* ok_ = nullptr;
    QPushButton* previous_ = nullptr;
    QPushButton* next_ = nullptr;
    QPushButton* test_ = nullptr;
    QTimer showSoon_;
};

} // namespace mirovane
