#include "probes/registry/RegistryRemote.h"

#include "platform/Descriptor.h"
#include "probes/registry/RegistryOutput.h"
#include "probes/registry/RegistryPath.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace mirovane {

namespace {

/// Names and addresses of computers; anything else is not even tried.
bool mayBeHost(const std::string& host) {
    constexpr std::size_t longestHostName = 255;
    return !host.empty() && host.size() <= longestHostName &&
           std::all_of(host.begin(), host.end(), [](char c) {
               return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') ||
                      std::strchr(".-_:", c) != nullptr || (static_cast<unsigned char>(c) & 0x80U) != 0;
           });
}

bool holdsZero(const std::string& text) {
    return text.find('\0') != text.npos;
}

std::string lastLine(const std::string& text) {
    const std::size_t end = text.find_last_not_of("\r\n ");
    if (end == text.npos)
        return {};
    const std::size_t before = text.find_last_of('\n', end);
    const std::size_t begin = before == text.npos ? 0 : before + 1;
    return text.substr(begin, end + 1 - begin);
}

std::string ticketCache() {
    const char* const named = std::getenv("KRB5CCNAME");
    return named && *named ? named : "FILE:/tmp/krb5cc_" + std::to_string(getuid());
}

bool exists(const std::string& path) {
    struct stat status {};
    return !path.empty() && stat(path.c_str(), &status) == 0;
}

/// English texts, and of our environment what finds programs, the user's folder, Samba's configuration and
/// Kerberos tickets. The rest may hold passwords.
std::vector<std::string> environmentOfSamba() {
    std::vector<std::string> variables{"LC_ALL=C.UTF-8"};
    for (const char* name : {"PATH", "HOME", "SMB_CONF_PATH", "KRB5CCNAME", "KRB5_CONFIG"})
        if (const char* value = std::getenv(name))
            variables.push_back(std::string(name) + "=" + value);
    return variables;
}

/// The computer was reached and does not let this user in.
bool refusesUser(const std::string& diagnostics) {
    constexpr std::array refusals{"NT_STATUS_ACCOUNT_",
                                  "NT_STATUS_PASSWORD_",
                                  "NT_STATUS_WRONG_PASSWORD",
                                  "NT_STATUS_LOGON_TYPE_NOT_GRANTED",
                                  "NT_STATUS_NO_LOGON_SERVERS",
                                  "NT_STATUS_INVALID_WORKSTATION",
                                  "NT_STATUS_NO_TRUST_",
                                  "NT_STATUS_TRUSTED_",
                                  "NT_STATUS_TIME_DIFFERENCE_AT_DC"};
    return std::any_of(refusals.begin(), refusals.end(), [&diagnostics](const char* refusal) {
        return diagnostics.find(refusal) != diagnostics.npos;
    });
}

/// Only of a cache in a file it is known without asking Kerberos.
bool mayHoldTicket(const std::string& cache) {
    const std::string prefix = "FILE:";
    const bool inFile = cache.starts_with(prefix) || cache.starts_with('/');
    return !inFile || exists(cache.starts_with(prefix) ? cache.substr(prefix.size()) : cache);
}

} // namespace

std::optional<std::string> credentialsTrouble(const std::string& path) {
    const CDescriptor file(open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
    struct stat status {};
    if (!file || fstat(file.get(), &status) != 0)
        return path + " cannot be read: " + std::strerror(errno);
    if (!S_ISREG(status.st_mode))
        return path + " is not a file";
    if (status.st_uid != geteuid())
        return path + " belongs to somebody else";
    if ((status.st_mode & (S_IRWXG | S_IRWXO)) != 0)
        return path + " can be read by others; chmod 600 it";
    return std::nullopt;
}

CRegistryRemote::CRegistryRemote(RegistryRemoteOptions options, std::stop_token stop)
    : options_(std::move(options)),
      stop_(std::move(stop)),
      deadline_(std::chrono::steady_clock::now() + options_.deadline),
      ticket_(!exists(options_.credentialsFile)) {
    using Kind = RegistryTrouble::Kind;
    if (ticket_ && !mayHoldTicket(ticketCache()))
        giveUp(Kind::Refused, "there is neither a credentials file (" + options_.credentialsFile +
                                  ") nor a Kerberos ticket (" + ticketCache() + ")");
    else if (const auto wrong = ticket_ ? std::nullopt : credentialsTrouble(options_.credentialsFile))
        giveUp(Kind::Refused, "the credentials file " + *wrong);
}

RegistryHandle CRegistryRemote::hold(Key key) {
    open_.emplace(++lastHandle_, std::move(key));
    return lastHandle_;
}

RegistryStatus CRegistryRemote::RegConnectRegistryA(const std::string& machineName, RegistryRoot root,
                                                    RegistryHandle& key) {
    if (unreachable_)
        return *unreachable_;
    Key made{machineName.starts_with("\\\\") ? machineName.substr(2) : "",
             std::string(registryRootName(root)), std::nullopt};
    if (!mayBeHost(made.host)) {
        trouble_.last = "this cannot be the name of a computer";
        return RegistryStatus::NetPathNotFound;
    }
    if (root == RegistryRoot::Users) {
        if (const auto status = list(made); status != RegistryStatus::Success)
            return status;
    }
    key = hold(std::move(made));
    return RegistryStatus::Success;
}

RegistryStatus CRegistryRemote::RegOpenKeyExA(RegistryHandle parent, const std::string& subKey,
                                              std::uint32_t /*access*/, RegistryHandle& key) {
    const auto found = open_.find(parent);
    if (found == open_.end())
        return RegistryStatus::InvalidHandle;
    if (holdsZero(subKey))
        return RegistryStatus::FileNotFound;
    Key made{found->second.host, found->second.path, std::nullopt};
    appendRegistryKeys(made.path, subKey);
    key = hold(std::move(made));
    return RegistryStatus::Success;
}

RegistryStatus CRegistryRemote::RegQueryValueExA(RegistryHandle key, const std::string& valueName,
                                                 std::span<char> buffer, std::size_t& size) {
    const auto found = open_.find(key);
    if (found == open_.end())
        return RegistryStatus::InvalidHandle;
    if (holdsZero(valueName))
        return RegistryStatus::FileNotFound;
    const Read read = query(found->second, valueName);
    if (read.status != RegistryStatus::Success)
        return read.status;
    if (read.data.size() > buffer.size()) {
        trouble_.last = "the value is longer than " + std::to_string(buffer.size()) + " bytes";
        return RegistryStatus::MoreData;
    }
    std::copy(read.data.begin(), read.data.end(), buffer.begin());
    size = read.data.size();
    return RegistryStatus::Success;
}

RegistryStatus CRegistryRemote::RegEnumKeyA(RegistryHandle key, std::uint32_t index, std::string& name) {
    const auto found = open_.find(key);
    if (found == open_.end())
        return RegistryStatus::InvalidHandle;
    if (!found->second.subKeys) {
        if (const auto status = list(found->second); status != RegistryStatus::Success)
            return status;
    }
    if (index >= found->second.subKeys->size())
        return RegistryStatus::NoMoreItems;
    name = (*found->second.subKeys)[index];
    return RegistryStatus::Success;
}

void CRegistryRemote::RegCloseKey(RegistryHandle key) {
    open_.erase(key);
}

RegistryStatus CRegistryRemote::list(Key& key) {
    const ProcessResult result = run(key, {"enumerate", key.path});
    if (result.end != ProcessEnd::Exited || result.exitStatus != 0)
        return failure(result);
    key.subKeys = parseSubKeys(result.output);
    if (key.subKeys)
        return RegistryStatus::Success;
    trouble_.last = "the answer makes no sense";
    return RegistryStatus::CallFailed;
}

CRegistryRemote::Read CRegistryRemote::query(const Key& key, const std::string& valueName) {
    const ProcessResult result = run(key, {"getvalue", key.path, valueName});
    if (result.end != ProcessEnd::Exited || result.exitStatus != 0)
        return {failure(result), {}};
    auto value = parsePrintedValue(result.output);
    if (value && value->data)
        return {RegistryStatus::Success, std::move(*value->data)};
    if (value)
        return queryExported(key, valueName);
    trouble_.last = "the answer makes no sense";
    return {};
}

/// Of binary data and rare types getvalue prints the size only. Exporting goes on with the sub-keys, so it is
/// ended as soon as the value has come.
CRegistryRemote::Read CRegistryRemote::queryExported(const Key& key, const std::string& valueName) {
    const ProcessResult result =
        run(key, {"export", key.path, "/dev/stdout"}, [&valueName](std::string_view output) {
            return parseExportedValue(output, valueName).has_value();
        });
    auto data = parseExportedValue(result.output, valueName);
    if (data)
        return {RegistryStatus::Success, std::move(*data)};
    return {failure(result), {}};
}

ProcessResult CRegistryRemote::run(const Key& key, std::vector<std::string> words,
                                   std::function<bool(std::string_view)> enough) {
    if (unreachable_)
        return {};
    ProcessRequest request;
    request.words = commandLine(key.host, std::move(words));
    request.deadline = deadline_;
    request.stop = stop_;
    request.enough = std::move(enough);
    request.environment = environmentOfSamba();
    return runProcess(request);
}

std::vector<std::string> CRegistryRemote::commandLine(const std::string& host,
                                                      std::vector<std::string> words) const {
    std::vector<std::string> line{options_.program, "--server=" + host};
    if (options_.smbPort != 0)
        line.push_back("--port=" + std::to_string(options_.smbPort));
    line.push_back(ticket_ ? "--use-krb5-ccache=" + ticketCache()
                           : "--authentication-file=" + options_.credentialsFile);
    // Behind "--" nothing is taken for an option, whatever a key or a value is called.
    line.insert(line.end(), {"--", "rpc", "registry"});
    line.insert(line.end(), std::make_move_iterator(words.begin()), std::make_move_iterator(words.end()));
    return line;
}

RegistryStatus CRegistryRemote::failure(const ProcessResult& result) {
    if (unreachable_)
        return *unreachable_;
    return result.end == ProcessEnd::Exited ? netFailure(result.diagnostics) : processFailure(result);
}

RegistryStatus CRegistryRemote::giveUp(RegistryTrouble::Kind kind, std::string why) {
    trouble_ = {kind, std::move(why)};
    unreachable_ = RegistryStatus::NetPathNotFound;
    return *unreachable_;
}

RegistryStatus CRegistryRemote::processFailure(const ProcessResult& result) {
    using Kind = RegistryTrouble::Kind;
    switch (result.end) {
    case ProcessEnd::NotStarted: {
        const bool missing = result.error == ENOENT || result.error == EACCES;
        return giveUp(Kind::Refused, "Samba's " + options_.program +
                                         " cannot be run: " + std::strerror(result.error) +
                                         (missing ? "; install samba-common-bin" : ""));
    }
    case ProcessEnd::TimedOut:
        return giveUp(Kind::Silent, "no answer in time");
    case ProcessEnd::Stopped:
        return giveUp(Kind::Stopped, "stopped");
    default:
        return giveUp(Kind::Silent, "the answer is too long");
    }
}

RegistryStatus CRegistryRemote::netFailure(const std::string& diagnostics) {
    using Kind = RegistryTrouble::Kind;
    const auto says = [&diagnostics](const char* words) {
        return diagnostics.find(words) != diagnostics.npos;
    };
    if (says("NT_STATUS_LOGON_FAILURE"))
        return giveUp(Kind::Refused, "the user name or password was refused");
    // One key that this user may not read tells nothing about the others.
    if (says("WERR_ACCESS_DENIED") || says("NT_STATUS_ACCESS_DENIED")) {
        trouble_ = {Kind::Refused, "this user may not read it"};
        return RegistryStatus::AccessDenied;
    }
    if (says("registry_")) {
        trouble_.last = "there is no such key or value";
        return RegistryStatus::FileNotFound;
    }
    const bool refused = refusesUser(diagnostics);
    return giveUp(refused ? Kind::Refused : Kind::Silent, lastLine(diagnostics));
}

} // namespace mirovane
