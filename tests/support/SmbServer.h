#pragma once

#include "tests/support/TestFolder.h"

#include <cstdint>
#include <string>
#include <sys/types.h>
#include <vector>

namespace mirovane::test {

/// A real SMB server with its registry service on a loopback port, in a folder of its own. It is started by
/// the constructor and ended, with all its processes, by the destructor.
class SmbServer {
public:
    /// `port` 0: one that is free.
    explicit SmbServer(std::uint16_t port = 0);
    ~SmbServer();
    SmbServer(const SmbServer&) = delete;
    SmbServer& operator=(const SmbServer&) = delete;

    /// Why it does not serve; empty when it serves.
    const std::string& whyNot() const { return whyNot_; }

    std::uint16_t port() const { return port_; }
    const std::string& credentialsFile() const { return credentials_; }
    const std::string& configurationFile() const { return configuration_; }
    std::string file(const std::string& name) const { return folder_.file(name); }

    /// Keys and values in the registry editor's format, behind its first line.
    bool import(const std::string& entries) const;
    bool setText(const std::string& key, const std::string& value, const std::string& text) const;
    bool deleteKey(const std::string& key) const;

private:
    std::string start();
    void writeConfiguration();
    bool net(const std::vector<std::string>& words) const;

    TestFolder folder_;
    std::string configuration_ = folder_.file("smb.conf");
    std::string credentials_ = folder_.file("credentials");
    std::uint16_t port_ = 0;
    std::vector<pid_t> daemons_;
    std::string whyNot_;
};

/// A loopback port on which nobody listens.
std::uint16_t freeLoopbackPort();

/// Accepts connections on a loopback port and never answers.
class SilentServer {
public:
    SilentServer();
    ~SilentServer();
    SilentServer(const SilentServer&) = delete;
    SilentServer& operator=(const SilentServer&) = delete;
    std::uint16_t port() const { return port_; }

    /// Waits for the first client; false when none comes within half a minute.
    bool waitForClient();
    /// Waits until that client has gone.
    bool waitForLeaving() const;

private:
    std::uint16_t port_ = 0;
    int socket_ = -1;
    int client_ = -1;
};

} // namespace mirovane::test
