#pragma once

#include "platform/SettingsStore.h"

#include <string>
#include <vector>

namespace mirovane {

/// The datafiles opened or saved last, most recent first, each once. Written to the user's settings at every
/// change.
class CRecentFiles {
public:
    static constexpr std::size_t capacity = 4;

    explicit CRecentFiles(SettingsStore& store);

    const std::vector<std::string>& paths() const { return paths_; }
    void add(const std::string& path);
    void remove(const std::string& path);

private:
    SettingsStore& store_;
    std::vector<std::string> paths_;
};

} // namespace mirovane
