#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <utility>

namespace mirovane {

/// Answers of the registry's operations, in the platform's numbers.
enum class RegistryStatus : std::uint32_t {
    Success = 0,
    FileNotFound = 2, ///< no such key or value
    AccessDenied = 5,
    InvalidHandle = 6, ///< closed, or never opened
    NetPathNotFound = 53,
    MoreData = 234, ///< the value is longer than the buffer
    NoMoreItems = 259,
    CallFailed = 1725, ///< the computer was reached, but its answer makes no sense
};

/// The predefined root keys.
enum class RegistryRoot : std::uint8_t { LocalMachine, Users, ClassesRoot, CurrentUser };

/// 0 means that no key is open.
using RegistryHandle = std::uint32_t;

/// Read access, the only kind that is ever asked for.
constexpr std::uint32_t KEY_READ = 0x20019;

/// The operations of a remote registry that the look-ups need, with the names and contracts of the
/// platform that has them, so that the platform's own can be used there. One object serves one look-up on one
/// thread; whoever makes the look-up owns it. Nothing throws; every failure is a status.
class Registry {
public:
    virtual ~Registry() = default;

    /// `machineName` carries its two leading backslashes. `key` is written on success only, here and below. A
    /// provider may put off meeting the computer until a value or a name is read, but not for
    /// RegistryRoot::Users: the callers tell an unreachable computer by that connection.
    virtual RegistryStatus RegConnectRegistryA(const std::string& machineName, RegistryRoot root,
                                               RegistryHandle& key) = 0;

    /// `subKey` has its components parted by backslashes; a last backslash does not matter. Empty, it opens
    /// the same key again. A missing key may show itself only when a value of it is read.
    virtual RegistryStatus RegOpenKeyExA(RegistryHandle parent, const std::string& subKey,
                                         std::uint32_t access, RegistryHandle& key) = 0;

    /// The value's data as they are stored, whatever its type; texts with their final zero byte, in UTF-8. An
    /// empty name is the key's default value. `size` is the number of bytes written.
    virtual RegistryStatus RegQueryValueExA(RegistryHandle key, const std::string& valueName,
                                            std::span<char> buffer, std::size_t& size) = 0;

    /// Name of the sub-key number `index`; NoMoreItems behind the last one.
    virtual RegistryStatus RegEnumKeyA(RegistryHandle key, std::uint32_t index, std::string& name) = 0;

    virtual void RegCloseKey(RegistryHandle key) = 0;
};

/// An open key, closed at the end of its life.
class CRegistryKey {
public:
    explicit CRegistryKey(Registry& registry) : registry_(&registry) {}
    CRegistryKey(const CRegistryKey&) = delete;
    CRegistryKey& operator=(const CRegistryKey&) = delete;
    ~CRegistryKey() {
        if (handle_ != 0)
            registry_->RegCloseKey(handle_);
    }

    /// Each succeeds at most once per object.
    bool connect(const std::string& host, RegistryRoot root) {
        return registry_->RegConnectRegistryA(host, root, handle_) == RegistryStatus::Success;
    }
    bool open(const CRegistryKey& parent, const std::string& subKey) {
        return registry_->RegOpenKeyExA(parent.handle_, subKey, KEY_READ, handle_) == RegistryStatus::Success;
    }

    /// The value's data as text up to the first zero byte; false leaves `text` as it was. Data of more than
    /// 256 bytes are not read.
    bool readText(const std::string& valueName, std::string& text) const;

    /// False at the end of the list and at an error.
    bool subKeyName(std::uint32_t index, std::string& name) const {
        return registry_->RegEnumKeyA(handle_, index, name) == RegistryStatus::Success;
    }

private:
    Registry* registry_;
    RegistryHandle handle_ = 0;
};

/// Reads one value of a key below `root`; every key is closed again.
bool readRegistryText(const CRegistryKey& root, Registry& registry, const std::string& keyPath,
                      const std::string& valueName, std::string& text);

/// Case of ASCII letters does not count in names of keys and values.
bool sameRegistryName(const std::string& one, const std::string& other);

} // namespace mirovane
