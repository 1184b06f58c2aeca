#pragma once

#include <QDialog>

#include <cstdint>

class QSpinBox;

namespace mirovane {

/// The three numbers of the Custom Zoom dialog.
struct CustomZoom {
    std::int32_t ZoomPercent = 100;
    std::int32_t ZoomDevicesPercent = 100;
    std::int32_t ZoomFontScale = 0;

    bool operator==(const CustomZoom&) const = default;
};

/// What each of the numbers may be.
struct CustomZoomLimits {
    std::int32_t smallestZoom = 5;
    std::int32_t largestZoom = 10000;
    std::int32_t largestFontScale = 400; ///< and the smallest one below 0
};

class CCustomZoomDialog : public QDialog {
    Q_OBJECT

public:
    CCustomZoomDialog(const CustomZoom& start, const CustomZoomLimits& limits, QWidget* parent = nullptr);

    CustomZoom zoom() const;

private:
    QSpinBox* floormap_;
    QSpinBox* devices_;
    QSpinBox* fontScale_;
};

} // namespace mirovane
