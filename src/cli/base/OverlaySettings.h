#pragma once

#include "platform/SettingsStore.h"

#include <map>

namespace mirovane {

/// A user's settings with some values replaced for this process only. What is written to a replaced value
/// stays here too; everything else goes through to the user's store, which outlives this object.
class COverlaySettingsStore final : public SettingsStore {
public:
    explicit COverlaySettingsStore(SettingsStore& user) : user_(user) {}

    void replace(const std::string& name, std::int32_t value) { replaced_[name] = value; }

    /// Every value of it.
    void replaceAll(const CMemorySettingsStore& values) {
        replaced_.insert(values.integers().begin(), values.integers().end());
        replacedTexts_.insert(values.texts().begin(), values.texts().end());
    }

    /// The user's own values again.
    void clear() {
        replaced_.clear();
        replacedTexts_.clear();
    }

    std::optional<std::int32_t> readInteger(const std::string& name) const override {
        const auto found = replaced_.find(name);
        return found == replaced_.end() ? user_.readInteger(name) : std::optional(found->second);
    }
    void writeInteger(const std::string& name, std::int32_t value) override {
        if (const auto found = replaced_.find(name); found != replaced_.end())
            found->second = value;
        else
            user_.writeInteger(name, value);
    }
    std::optional<std::string> readText(const std::string& name) const override {
        const auto found = replacedTexts_.find(name);
        return found == replacedTexts_.end() ? user_.readText(name) : std::optional(found->second);
    }
    void writeText(const std::string& name, const std::string& value) override {
        if (const auto found = replacedTexts_.find(name); found != replacedTexts_.end())
            found->second = value;
        else
            user_.writeText(name, value);
    }
    std::vector<std::string> readRecentFiles() const override { return user_.readRecentFiles(); }
    void writeRecentFiles(const std::vector<std::string>& paths) override { user_.writeRecentFiles(paths); }

private:
    SettingsStore& user_;
    std::map<std::string, std::int32_t> replaced_;
    std::map<std::string, std::string> replacedTexts_;
};

} // namespace mirovane
