#pragma once

#include <QDialog>
#include <QImage>
#include <QLabel>
#include <QPushButton>
#include <QScrollArea>

#include <vector>

namespace mirovane {

/// A picture as it is called and where it is found from here.
struct PictureFile {
    QString name;
    QString path;
};

/// Shows the pictures of a location marker one after the other, and the pages of each. Scales them, prints
/// them, and says of a file that cannot be shown why. Main thread.
class CPictureViewer final : public QDialog {
    Q_OBJECT

public:
    CPictureViewer(std::vector<PictureFile> files, int first, QWidget* parent);

    /// The page that is shown; null when it cannot be.
    const QImage& image() const { return image_; }

    /// Percent of the picture's own size.
    int scale() const { return static_cast<int>(scale_ * 100 + 0.5); }

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void showEvent(QShowEvent* event) override;

private:
    QWidget* makeButtons();
    void turn(int pages);
    void load();
    void fit();
    void scaleBy(double factor);
    void showScaled();
    void print();

    std::vector<PictureFile> files_;
    int file_;
    int page_ = 0;
    int pages_ = 1;
    QImage image_;
    double scale_ = 1.0;
    bool fits_ = true; ///< follows the window's size until the user scales
    QScrollArea* area_;
    QLabel* picture_;
    QLabel* place_ = nullptr;
    QPushButton* before_ = nullptr;
    QPushButton* after_ = nullptr;
    std::vector<QPushButton*> needPicture_;
};

} // namespace mirovane
