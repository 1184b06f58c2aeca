#pragma once

#include "ui/dialogs/ExportRequest.h"

#include <QDialog>
#include <QString>

#include <functional>
#include <optional>

class QCheckBox;
class QLabel;
class QLineEdit;
class QPlainTextEdit;
class QRadioButton;

namespace mirovane {

/// "Export": where the List View's rows go and in which form, with the first lines as they will be in the
/// file. Stores and writes nothing itself.
class CExportDialog final : public QDialog {
    Q_OBJECT

public:
    /// Asks for a file, starting from the path given; nothing when the user cancels.
    using Browse = std::function<std::optional<QString>(QWidget& parent, const QString& start)>;

    CExportDialog(ExportRequest request, Browse browse, QWidget* parent = nullptr);

    /// As the controls stand. A text that nobody touched keeps its bytes.
    ExportSettings settings() const;

private:
    QWidget* makeFileRow();
    QWidget* makeDelimiterGroup();
    QWidget* makeOptions();
    QWidget* makePreview();
    QWidget* makeFailure();
    QWidget* makeButtons();
    void fill();
    void connectControls();
    void browse();
    QString suggestion() const;
    void showTarget();
    void showPreview();

    ExportRequest request_;
    Browse browse_;
    QString shownFilename_;
    QString shownCustomText_;
    QLineEdit* filename_ = nullptr;
    QLabel* target_ = nullptr;
    QRadioButton* tab_ = nullptr;
    QRadioButton* custom_ = nullptr;
    QLineEdit* customText_ = nullptr;
    QCheckBox* quoteAll_ = nullptr;
    QCheckBox* quoteComment_ = nullptr;
    QCheckBox* includeHeader_ = nullptr;
    QCheckBox* auto_ = nullptr;
    QPlainTextEdit* preview_ = nullptr;
};

} // namespace mirovane
