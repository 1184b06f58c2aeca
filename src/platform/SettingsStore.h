#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace mirovane {

/// Where one user's settings live: named 32-bit integers and texts in the group "Settings", and the list of
/// recently used datafiles. Main thread only. A value that cannot be read counts as absent; a write that
/// fails is ignored, because losing a preference must never stop the work.
class SettingsStore {
public:
    virtual ~SettingsStore() = default;

    virtual std::optional<std::int32_t> readInteger(const std::string& name) const = 0;
    virtual void writeInteger(const std::string& name, std::int32_t value) = 0;
    virtual std::optional<std::string> readText(const std::string& name) const = 0;
    virtual void writeText(const std::string& name, const std::string& value) = 0;

    /// Paths, most recent first.
    virtual std::vector<std::string> readRecentFiles() const = 0;
    virtual void writeRecentFiles(const std::vector<std::string>& paths) = 0;
};

/// Forgets everything at its end: for tests and for `--render`, which must leave no trace.
class CMemorySettingsStore final : public SettingsStore {
public:
    std::optional<std::int32_t> readInteger(const std::string& name) const override {
        return find(integers_, name);
    }
    void writeInteger(const std::string& name, std::int32_t value) override { integers_[name] = value; }
    std::optional<std::string> readText(const std::string& name) const override { return find(texts_, name); }
    void writeText(const std::string& name, const std::string& value) override { texts_[name] = value; }
    std::vector<std::string> readRecentFiles() const override { return recentFiles_; }
    void writeRecentFiles(const std::vector<std::string>& paths) override { recentFiles_ = paths; }

    const std::map<std::string, std::int32_t>& integers() const { return integers_; }
    const std::map<std::string, std::string>& texts() const { return texts_; }

private:
    template <typename T>
    static std::optional<T> find(const std::map<std::string, T>& values, const std::string& name) {
        const auto found = values.find(name);
        return found == values.end() ? std::nullopt : std::optional<T>(found->second);
    }

    std::map<std::string, std::int32_t> integers_;
    std::map<std::string, std::string> texts_;
    std::vector<std::string> recentFiles_;
};

} // namespace mirovane
