#pragma once

#include "tests/support/TestFolder.h"

#include <chrono>
#include <functional>
#include <string>
#include <string_view>
#include <sys/types.h>
#include <vector>

namespace mirovane::test {

struct CliResult {
    int status = -1; ///< exit status, or 128 plus the signal
    std::string out;
    std::string err;
};

using Words = std::vector<std::string>;

/// A mirovanectl that is running. Killed at the end of the object's life where it has not ended.
class CliProcess {
public:
    /// `arrange` runs in the child before the program starts.
    explicit CliProcess(const Words& words, const std::function<void()>& arrange = {});
    ~CliProcess();
    CliProcess(const CliProcess&) = delete;
    CliProcess& operator=(const CliProcess&) = delete;

    void signal(int number);

    /// Reads until the results hold `text` so many times; false when the program ends or the deadline passes
    /// first.
    bool waitForOutput(std::string_view text, int times = 1,
                       std::chrono::seconds deadline = std::chrono::seconds(30));

    /// Stops reading, as `head` does.
    void closeOutput();

    /// Waits for its end, at most a minute.
    CliResult finish();

private:
    void pump(int timeoutMs);

    pid_t child_ = -1;
    int out_ = -1;
    int err_ = -1;
    CliResult result_;
};

/// Runs it to its end.
CliResult cli(const Words& words, const std::function<void()>& arrange = {});

/// A folder for one test with a settings folder in it.
class CliFolder {
public:
    CliFolder();

    std::string path(const std::string& name) const { return folder_.file(name); }
    std::string config() const { return path("config"); }

    /// A new datafile.
    std::string datafile(const std::string& name = "floor.mv") const;

    /// The same with these devices.
    std::string datafile(const std::vector<Words>& devices) const;

private:
    TestFolder folder_;
};

} // namespace mirovane::test
