#pragma once

#include "ui/floor/paint/IconSet.h"

#include <QDir>
#include <QPaintEvent>
#include <QPainter>
#include <QPixmap>
#include <QWidget>

#include <array>
#include <cstdint>
#include <cstring>
#include <fstream>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

namespace mirovane::bench {

/// The other side of the start: as few lines as do the work, no checks, no caches.
struct PlainRecord {
    std::int32_t state, type, x, y;
    std::array<std::string, 11> texts;
};

class PlainReader {
public:
    explicit PlainReader(std::string_view bytes) : bytes_(bytes) {}

    std::int32_t number() {
        std::int32_t value;
        std::memcpy(&value, bytes_.data() + at_, sizeof value);
        at_ += sizeof value;
        return value;
    }
    std::string text() {
        std::size_t length = static_cast<unsigned char>(bytes_[at_++]);
        if (length == 255) {
            length =
                static_cast<unsigned char>(bytes_[at_]) + 256u * static_cast<unsigned char>(bytes_[at_ + 1]);
            at_ += 2;
        }
        at_ += length;
        return std::string(bytes_.substr(at_ - length, length));
    }
    void skip(std::size_t count) { at_ += count; }
    bool atEnd() const { return at_ >= bytes_.size(); }

private:
    std::string_view bytes_;
    std::size_t at_ = 0;
};

inline std::vector<PlainRecord> readPlainly(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    std::ostringstream bytes;
    bytes << file.rdbuf();
    const std::string all = bytes.str();
    PlainReader in(all);
    in.skip(2);
    std::vector<PlainRecord> records;
    while (!in.atEnd()) {
        in.skip(records.empty() ? 15 : 2);
        PlainRecord& record = records.emplace_back();
        record.state = in.number();
        record.type = in.number();
        record.x = in.number();
        record.y = in.number();
        for (std::size_t i = 0; i < 6; ++i)
            record.texts[i] = in.text();
        in.skip(15 * 4);
        for (std::size_t i = 6; i < 10; ++i)
            record.texts[i] = in.text();
        in.skip(5 * 4 + 12);
        record.texts[10] = in.text();
        in.skip(4);
    }
    return records;
}

/// The map, an icon and a label for each device that lies in the window.
class PlainFloor : public QWidget {
public:
    PlainFloor(const std::vector<PlainRecord>& records, const QString& mapFile)
        : records_(records), map_(mapFile) {
        QDir icons;
        for (const QString& folder : CIconSet::ownFolders())
            if (icons.setPath(folder); icons.exists())
                break;
        for (const QString& name : icons.entryList({QStringLiteral("*.bmp")}))
            icons_.emplace_back(icons.filePath(name));
    }

protected:
    void paintEvent(QPaintEvent*) override {
        QPainter painter(this);
        painter.drawPixmap(0, 0, map_);
        for (const PlainRecord& record : records_) {
            if (record.type < 1 || !rect().contains(record.x, record.y))
                continue;
            const auto icon = static_cast<std::size_t>(record.type * 3 + record.state) % icons_.size();
            painter.drawPixmap(record.x, record.y, icons_[icon]);
            painter.drawText(QRect(record.x - 50, record.y + 32, 132, 16), Qt::AlignCenter,
                             QString::fromStdString(record.texts[4]));
        }
    }

private:
    const std::vector<PlainRecord>& records_;
    QPixmap map_;
    std::vector<QPixmap> icons_;
};

} // namespace mirovane::bench
