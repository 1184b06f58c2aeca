#pragma once

#include "platform/SettingsStore.h"

#include <memory>

class QSettings;

namespace mirovane {

/// One user's settings in an INI file that he can read: mirovane/mirovane.ini below the XDG config folder, or
/// mirovane.ini in a folder of his choice. Values that this program does not know stay in the file. Several
/// programs may have it open; each sees what the others wrote.
class CIniSettingsStore final : public SettingsStore {
public:
    /// An empty `folder` means the user's config folder.
    explicit CIniSettingsStore(const std::string& folder = {});
    ~CIniSettingsStore() override;

    std::optional<std::int32_t> readInteger(const std::string& name) const override;
    void writeInteger(const std::string& name, std::int32_t value) override;
    std::optional<std::string> readText(const std::string& name) const override;
    void writeText(const std::string& name, const std::string& value) override;
    std::vector<std::string> readRecentFiles() const override;

    /// Keeps the first four.
    void writeRecentFiles(const std::vector<std::string>& paths) override;

    std::string fileName() const;

private:
    std::unique_ptr<QSettings> settings_;
};

} // namespace mirovane
