#include "ui/properties/PictureViewer.h"

#include "ui/properties/DialogButtons.h"
#include "ui/widgets/WaitCursor.h"
#include "ui/widgets/WindowPlacement.h"

#include <QCoreApplication>
#include <QFileInfo>
#include <QHBoxLayout>
#include <QImageReader>
#include <QKeyEvent>
#include <QPainter>
#include <QPrintDialog>
#include <QPrinter>
#include <QVBoxLayout>

#include <algorithm>
#include <cmath>

namespace mirovane {

namespace {

constexpr double step = 1.25;
constexpr double smallest = 0.02;
constexpr double largest = 8.0;
constexpr double mostPixels = 60e6; ///< of a picture that is magnified: four bytes each
constexpr QSize viewerSize(760, 560);
constexpr int drawnDetail = 3; ///< a drawn page is measured in 72 to an inch: too coarse to read or print

bool isDrawn(const QByteArray& format) {
    return format == "pdf" || format.startsWith("svg");
}

/// A drawing has no ground of its own, and the window's may be as dark as its lines.
QImage onPaper(const QImage& picture) {
    if (!picture.hasAlphaChannel())
        return picture;
    QImage paper(picture.size(), QImage::Format_RGB32);
    paper.fill(Qt::white);
    QPainter(&paper).drawImage(0, 0, picture);
    return paper;
}

/// As many pixels as are worth having.
void setDetail(QImageReader& reader) {
    QSizeF size = reader.size();
    if (isDrawn(reader.format()))
        size *= drawnDetail;
    const double pixels = size.width() * size.height();
    if (pixels > mostPixels)
        size *= std::sqrt(mostPixels / pixels);
    if (size.toSize() != reader.size())
        reader.setScaledSize(size.toSize());
}

/// The pictures of an animation are no pages, and some formats count what they cannot turn to.
int pagesOf(QImageReader& reader) {
    return reader.supportsAnimation() || !reader.jumpToImage(0) ? 1 : std::max(1, reader.imageCount());
}

QString remedyFor(const QString& path) {
    const bool lacking = path.endsWith(QLatin1String(".pdf"), Qt::CaseInsensitive) &&
                         !QImageReader::supportedImageFormats().contains("pdf");
    return lacking ? QCoreApplication::translate("mirovane::CPictureViewer",
                                                 "\n\nFor PDF files this computer needs the package "
                                                 "qt6-image-formats-plugin-pdf.")
                   : QString();
}

} // namespace

CPictureViewer::CPictureViewer(std::vector<PictureFile> files, int first, QWidget* parent)
    : QDialog(parent),
      files_(std::move(files)),
      file_(first),
      area_(new QScrollArea(this)),
      picture_(new QLabel(area_)) {
    setObjectName(QStringLiteral("pictureViewer"));
    setWindowTitle(tr("Pictures"));
    picture_->setObjectName(QStringLiteral("picture"));
    picture_->setAlignment(Qt::AlignCenter);
    picture_->setTextFormat(Qt::PlainText);
    area_->setWidget(picture_);
    area_->setAlignment(Qt::AlignCenter);
    area_->setObjectName(QStringLiteral("pictureArea"));
    area_->setAccessibleName(tr("Picture"));
    area_->installEventFilter(this);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(area_, 1);
    layout->addWidget(makeButtons());
    fitToScreen(*this, viewerSize);
    load();
}

QWidget* CPictureViewer::makeButtons() {
    auto* buttons = new QWidget(this);
    auto* line = new QHBoxLayout(buttons);
    line->setContentsMargins(0, 0, 0, 0);
    const auto add = [&](const char* name, const QString& text, auto pressed) {
        QPushButton* button = addButton(*line, name, text);
        connect(button, &QPushButton::clicked, this, pressed);
        return button;
    };
    before_ = add(
        "pictureBefore", tr("Pre&vious"), [this] { turn(-1); });
    after_ = add("pictureAfter", tr("&Next"), [this] { turn(1); });
    place_ = new QLabel(buttons);
    place_->setObjectName(QStringLiteral("picturePlace"));
    place_->setTextFormat(Qt::PlainText);
    place_->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
    line->addWidget(place_, 1);
    needPicture_ = {add(
                        "pictureLarger", tr("Zoom &In"), [this] { scaleBy(step); }),
                    add(
                        "pictureSmaller", tr("Zoom &Out"), [this] { scaleBy(1 / step); }),
                    add(
                        "pictureFit", tr("&Fit"),
                        [this] {
                            fits_ = true;
                            fit();
                        }),
                    add(
                        "picturePrint", tr("&Print..."), [this] { print(); })};
    add("pictureClose", tr("&Close"), [this] { accept(); });
    return buttons;
}

/// Pages of one file, then the next file.
void CPictureViewer::turn(int pages) {
    const int page = page_ + pages;
    if (page >= 0 && page < pages_) {
        page_ = page;
    } else {
        const int file = file_ + pages;
        if (file < 0 || file >= static_cast<int>(files_.size()))
            return;
        file_ = file;
        page_ = 0;
    }
    load();
}

void CPictureViewer::load() {
    const CWaitCursor wait; // a picture may be on a slow share
    const PictureFile& file = files_.at(static_cast<std::size_t>(file_));
    QImageReader reader(file.path);
    reader.setAutoTransform(true);
    pages_ = pagesOf(reader);
    const bool there = QFileInfo::exists(file.path);
    image_ = {};
    if (there && (page_ == 0 || reader.jumpToImage(page_))) {
        setDetail(reader);
        image_ = onPaper(reader.read());
    }
    if (image_.isNull())
        picture_->setText(there ? tr("The picture cannot be shown: %1\n\n%2%3")
                                      .arg(reader.errorString(), file.path, remedyFor(file.path))
                                : tr("There is no such file:\n\n%1").arg(file.name));
    const QString page = pages_ > 1 ? tr(", page %1 of %2").arg(page_ + 1).arg(pages_) : QString();
    place_->setText(tr("%1 of %2%3").arg(file_ + 1).arg(files_.size()).arg(page));
    setWindowTitle(QFileInfo(file.path).fileName());
    before_->setEnabled(file_ > 0 || page_ > 0);
    after_->setEnabled(file_ + 1 < static_cast<int>(files_.size()) || page_ + 1 < pages_);
    for (QPushButton* button : needPicture_)
        button->setEnabled(!image_.isNull());
    fits_ = true;
    fit();
}

// ---- scaling

/// As large as the window allows, but not larger than it is.
void CPictureViewer::fit() {
    if (image_.isNull()) {
        picture_->adjustSize();
        return;
    }
    const QSize room = area_->maximumViewportSize();
    scale_ = std::min({1.0, room.width() / static_cast<double>(image_.width()),
                       room.height() / static_cast<double>(image_.height())});
    showScaled();
}

void CPictureViewer::scaleBy(double factor) {
    if (image_.isNull())
        return;
    fits_ = false;
    const double pixels = static_cast<double>(image_.width()) * image_.height();
    const double most = std::max(1.0, std::min(largest, std::sqrt(mostPixels / pixels)));
    scale_ = std::clamp(scale_ * factor, smallest, most);
    showScaled();
}

void CPictureViewer::showScaled() {
    const QSize size = (QSizeF(image_.size()) * scale_).toSize().expandedTo(QSize(1, 1));
    const qreal ratio = devicePixelRatioF();
    QPixmap pixmap =
        QPixmap::fromImage(image_.scaled(size * ratio, Qt::IgnoreAspectRatio, Qt::SmoothTransformation));
    pixmap.setDevicePixelRatio(ratio);
    picture_->setPixmap(pixmap);
    picture_->resize(size);
}

void CPictureViewer::resizeEvent(QResizeEvent* event) {
    QDialog::resizeEvent(event);
    if (fits_)
        fit();
}

void CPictureViewer::showEvent(QShowEvent* event) {
    QDialog::showEvent(event);
    fit();
}

/// The picture takes the keyboard for the arrows, which move it. It would take the keys for turning, too.
bool CPictureViewer::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::KeyPress) {
        const int pressed = static_cast<QKeyEvent*>(event)->key();
        if (pressed == Qt::Key_PageDown || pressed == Qt::Key_PageUp) {
            turn(pressed == Qt::Key_PageDown ? 1 : -1);
            return true;
        }
    }
    return QDialog::eventFilter(watched, event);
}

void CPictureViewer::keyPressEvent(QKeyEvent* event) {
    switch (event->key()) {
    case Qt::Key_PageDown:
        return turn(1);
    case Qt::Key_PageUp:
        return turn(-1);
    case Qt::Key_Plus:
        return scaleBy(step);
    case Qt::Key_Minus:
        return scaleBy(1 / step);
    default:
        QDialog::keyPressEvent(event);
    }
}

// ---- printing

void CPictureViewer::print() {
    QPrinter printer(QPrinter::HighResolution);
    printer.setDocName(windowTitle());
    if (image_.width() > image_.height())
        printer.setPageOrientation(QPageLayout::Landscape);
    QPrintDialog dialog(&printer, this);
    if (dialog.exec() != QDialog::Accepted)
        return;
    QPainter painter;
    if (!painter.begin(&printer)) {
        place_->setText(tr("The printer cannot be used."));
        return;
    }
    const QRect page = painter.viewport();
    const QSize size = image_.size().scaled(page.size(), Qt::KeepAspectRatio);
    painter.drawImage(QRect(page.topLeft(), size), image_);
}

} // namespace mirovane
