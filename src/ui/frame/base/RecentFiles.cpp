#include "ui/frame/base/RecentFiles.h"

namespace mirovane {

CRecentFiles::CRecentFiles(SettingsStore& store) : store_(store), paths_(store.readRecentFiles()) {
    if (paths_.size() > capacity)
        paths_.resize(capacity);
}

void CRecentFiles::add(const std::string& path) {
    std::erase(paths_, path);
    paths_.insert(paths_.begin(), path);
    if (paths_.size() > capacity)
        paths_.resize(capacity);
    store_.writeRecentFiles(paths_);
}

void CRecentFiles::remove(const std::string& path) {
    if (std::erase(paths_, path) > 0)
        store_.writeRecentFiles(paths_);
}

} // namespace mirovane
