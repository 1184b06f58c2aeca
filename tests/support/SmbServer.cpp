#include "tests/support/SmbServer.h"

#include <algorithm>
#include <arpa/inet.h>
#include <array>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <fcntl.h>
#include <functional>
#include <netinet/in.h>
#include <poll.h>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

namespace mirovane::test {

namespace {

using std::chrono::steady_clock;

constexpr const char* smbd = "/usr/sbin/smbd";
constexpr const char* rpcDaemon = "/usr/libexec/samba/samba-dcerpcd";
constexpr std::chrono::seconds patience{20};

/// Starts a program as the head of a session of its own, so that what it starts can be ended with it.
pid_t startProgram(std::vector<std::string> words, const std::string& inputFile, const std::string& log) {
    std::vector<char*> pointers;
    pointers.reserve(words.size() + 1);
    for (std::string& word : words)
        pointers.push_back(word.data());
    pointers.push_back(nullptr);
    const pid_t child = fork();
    if (child != 0)
        return child;
    setsid();
    prctl(PR_SET_PDEATHSIG, SIGTERM);
    dup2(open(inputFile.c_str(), O_RDONLY), STDIN_FILENO);
    dup2(open(log.c_str(), O_WRONLY | O_CREAT | O_APPEND, 0600), STDOUT_FILENO);
    dup2(STDOUT_FILENO, STDERR_FILENO);
    close_range(STDERR_FILENO + 1, ~0U, 0);
    execvp(pointers[0], pointers.data());
    _exit(127);
}

bool waitFor(const std::function<bool()>& condition) {
    const auto deadline = steady_clock::now() + patience;
    while (!condition()) {
        if (steady_clock::now() > deadline)
            return false;
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    return true;
}

bool succeeds(pid_t child) {
    int status = -1;
    while (waitpid(child, &status, 0) < 0 && errno == EINTR) {
    }
    return WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

/// Ends the session that began with `head`. What it started becomes our child when its parent goes, and is
/// waited for here.
void endSession(pid_t head) {
    kill(-head, SIGTERM);
    const auto soft = steady_clock::now() + std::chrono::seconds(2);
    waitFor([&] {
        if (steady_clock::now() > soft)
            kill(-head, SIGKILL);
        return waitpid(head, nullptr, WNOHANG) != 0;
    });
    kill(-head, SIGKILL);
    waitFor([head] { return waitpid(-head, nullptr, WNOHANG) < 0 && errno == ECHILD; });
}

sockaddr_in loopback(std::uint16_t port) {
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(port);
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    return address;
}

int boundSocket(std::uint16_t& port) {
    const int bound = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_in address = loopback(0);
    socklen_t size = sizeof address;
    if (bind(bound, reinterpret_cast<const sockaddr*>(&address), size) == 0 &&
        getsockname(bound, reinterpret_cast<sockaddr*>(&address), &size) == 0)
        port = ntohs(address.sin_port);
    return bound;
}

bool becomesReadable(int descriptor) {
    pollfd waiting{descriptor, POLLIN, 0};
    return poll(&waiting, 1, 30000) > 0;
}

bool listensOn(std::uint16_t port) {
    const int client = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    const sockaddr_in address = loopback(port);
    const bool connected = connect(client, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0;
    close(client);
    return connected;
}

} // namespace

SmbServer::SmbServer(std::uint16_t port) : port_(port) {
    whyNot_ = start();
}

SmbServer::~SmbServer() {
    for (auto daemon = daemons_.rbegin(); daemon != daemons_.rend(); ++daemon)
        endSession(*daemon);
}

std::string SmbServer::start() {
    if (geteuid() != 0)
        return "smbd is started by root only";
    for (const char* program : {smbd, rpcDaemon})
        if (access(program, X_OK) != 0)
            return std::string(program) + " is not installed";
    prctl(PR_SET_CHILD_SUBREAPER, 1);
    if (port_ == 0)
        port_ = freeLoopbackPort();
    writeConfiguration();
    const std::string log = folder_.file("log");
    writeBytes(folder_.file("password"), "Right-1\nRight-1\n");
    if (!succeeds(startProgram({"smbpasswd", "-c", configuration_, "-a", "-s", "root"},
                               folder_.file("password"), log)))
        return "smbpasswd made no user: " + readBytes(log);
    const std::string configured = "--configfile=" + configuration_;
    daemons_.push_back(startProgram({rpcDaemon, "-F", "--no-process-group", "--libexec-rpcds", configured},
                                    "/dev/null", log));
    daemons_.push_back(startProgram({smbd, "-F", "--no-process-group", configured}, "/dev/null", log));
    const bool serves = waitFor([this] { return listensOn(port_); }) && waitFor([this] {
                            return net({"enumerate", "HKEY_LOCAL_MACHINE"});
                        });
    return serves ? "" : "smbd does not serve its registry: " + readBytes(log);
}

void SmbServer::writeConfiguration() {
    std::string text = "[global]\n"
                       "workgroup = TESTS\n"
                       "netbios name = LOOPBACK\n"
                       "server role = standalone server\n"
                       "interfaces = 127.0.0.1/8\n"
                       "bind interfaces only = yes\n"
                       "name resolve order = host\n"
                       "disable netbios = yes\n"
                       "disable spoolss = yes\n"
                       "load printers = no\n"
                       "rpc start on demand helpers = no\n"
                       "admin users = root\n";
    text += "smb ports = " + std::to_string(port_) + "\n";
    for (const char* folder : {"private dir", "state directory", "lock directory", "cache directory",
                               "pid directory", "ncalrpc dir"}) {
        std::string path = folder_.file(folder);
        std::replace(path.begin(), path.end(), ' ', '-');
        mkdir(path.c_str(), 0755); // the RPC services serve in no folder of another mode
        text += std::string(folder) + " = " + path + "\n";
    }
    text += "log file = " + folder_.file("log.samba") + "\n";
    writeBytes(configuration_, text);
    writeBytes(credentials_, "username = root\npassword = Right-1\n");
    chmod(credentials_.c_str(), 0600);
}

bool SmbServer::net(const std::vector<std::string>& words) const {
    std::vector<std::string> line{"net",
                                  "--configfile=" + configuration_,
                                  "--authentication-file=" + credentials_,
                                  "--server=127.0.0.1",
                                  "--port=" + std::to_string(port_),
                                  "rpc",
                                  "registry"};
    line.insert(line.end(), words.begin(), words.end());
    return succeeds(startProgram(line, "/dev/null", folder_.file("log")));
}

bool SmbServer::import(const std::string& entries) const {
    const std::string path = folder_.file("import.reg");
    writeBytes(path, "Windows Registry Editor Version 5.00\n\n" + entries + "\n");
    return net({"import", path});
}

bool SmbServer::setText(const std::string& key, const std::string& value, const std::string& text) const {
    return net({"setvalue", key, value, "sz", text});
}

bool SmbServer::deleteKey(const std::string& key) const {
    return net({"deletekey", key});
}

std::uint16_t freeLoopbackPort() {
    std::uint16_t port = 0;
    close(boundSocket(port));
    return port;
}

SilentServer::SilentServer() : socket_(boundSocket(port_)) {
    listen(socket_, 8);
}

SilentServer::~SilentServer() {
    close(socket_);
    if (client_ >= 0)
        close(client_);
}

bool SilentServer::waitForClient() {
    if (becomesReadable(socket_))
        client_ = accept4(socket_, nullptr, nullptr, SOCK_CLOEXEC);
    return client_ >= 0;
}

bool SilentServer::waitForLeaving() const {
    std::array<char, 4096> ignored{};
    while (becomesReadable(client_))
        if (recv(client_, ignored.data(), ignored.size(), 0) <= 0)
            return true;
    return false;
}

} // namespace mirovane::test
