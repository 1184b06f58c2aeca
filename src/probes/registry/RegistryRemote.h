#pragma once

#include "platform/process/ProcessRun.h"
#include "probes/registry/Registry.h"

#include <chrono>
#include <cstdint>
#include <map>
#include <optional>
#include <stop_token>
#include <string>
#include <vector>

namespace mirovane {

/// Where and as whom the registries of other computers are read.
struct RegistryRemoteOptions {
    std::string program = "net"; ///< Samba's; looked up in PATH

    /// A Samba authentication file (username, password, domain) that nobody but its owner can read. Where
    /// there is none, the user's Kerberos ticket is shown.
    std::string credentialsFile;

    std::uint16_t smbPort = 0; ///< 0: Samba's own choice

    /// For one whole look-up, however many reads it takes.
    std::chrono::milliseconds deadline{20000};
};

/// What went wrong.
struct RegistryTrouble {
    enum class Kind {
        Nothing, ///< or the computer answered that what was asked for is not there
        Silent,  ///< the computer does not answer, or no longer answers
        Refused, ///< it refuses this station, or this station cannot ask at all: that says nothing about it
        Stopped,
    };

    Kind kind = Kind::Nothing;
    std::string last; ///< why the operation that failed last did, in a few words
};

/// What is wrong with a credentials file; nothing when it is in order.
std::optional<std::string> credentialsTrouble(const std::string& path);

/// The registry of another computer, read by Samba's `net rpc registry` as a child process: one process for a
/// value or a list of sub-keys. Credentials are never on a command line. Opening keys meets nobody; a missing
/// key shows when a value of it is read. A computer that could not be reached is not tried again by the same
/// object. One look-up, one thread; the stop token ends a running process.
class CRegistryRemote final : public Registry {
public:
    CRegistryRemote(RegistryRemoteOptions options, std::stop_token stop);

    const RegistryTrouble& trouble() const { return trouble_; }

    /// The computer does not answer, no longer answers or was not asked to the end: what was not found may
    /// be there.
    bool unreachable() const { return unreachable_.has_value(); }

    RegistryStatus RegConnectRegistryA(const std::string& machineName, RegistryRoot root,
                                       RegistryHandle& key) override;
    RegistryStatus RegOpenKeyExA(RegistryHandle parent, const std::string& subKey, std::uint32_t access,
                                 RegistryHandle& key) override;
    RegistryStatus RegQueryValueExA(RegistryHandle key, const std::string& valueName, std::span<char> buffer,
                                    std::size_t& size) override;
    RegistryStatus RegEnumKeyA(RegistryHandle key, std::uint32_t index, std::string& name) override;
    void RegCloseKey(RegistryHandle key) override;

private:
    struct Key {
        std::string host; ///< without backslashes
        std::string path; ///< from the root's name on
        std::optional<std::vector<std::string>> subKeys;
    };
    struct Read {
        RegistryStatus status = RegistryStatus::CallFailed;
        std::string data;
    };

    RegistryHandle hold(Key key);
    RegistryStatus list(Key& key);
    Read query(const Key& key, const std::string& valueName);
    Read queryExported(const Key& key, const std::string& valueName);

    /// Runs `net rpc registry` with these words.
    ProcessResult run(const Key& key, std::vector<std::string> words,
                      std::function<bool(std::string_view)> enough = {});
    std::vector<std::string> commandLine(const std::string& host, std::vector<std::string> words) const;
    RegistryStatus failure(const ProcessResult& result);
    RegistryStatus processFailure(const ProcessResult& result);
    RegistryStatus giveUp(RegistryTrouble::Kind kind, std::string why);
    RegistryStatus netFailure(const std::string& diagnostics);

    RegistryRemoteOptions options_;
    std::stop_token stop_;
    std::chrono::steady_clock::time_point deadline_;
    bool ticket_ = false; ///< no credentials file: Kerberos
    RegistryTrouble trouble_;
    std::optional<RegistryStatus> unreachable_;
    std::map<RegistryHandle, Key> open_;
    RegistryHandle lastHandle_ = 0;
};

} // namespace mirovane
