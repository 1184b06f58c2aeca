#pragma once

#include <string>
#include <system_error>
#include <vector>

namespace mirovane {

/// Starts programs that then live on their own.
class ProgramLauncher {
public:
    virtual ~ProgramLauncher() = default;

    /// `words` are the program (looked up in PATH when it holds no "/") and its arguments, handed over as
    /// they are: no shell sees them. Returns why the program could not be started, or no error; how it ends
    /// is never known.
    virtual std::error_code start(const std::vector<std::string>& words) = 0;
};

/// The program is detached from us: neither our end nor a Ctrl+C in our terminal ends it, it has no
/// descriptor of ours, and it leaves no zombie. Any thread; returns when the program runs, which takes a few
/// milliseconds.
class CPosixLauncher final : public ProgramLauncher {
public:
    std::error_code start(const std::vector<std::string>& words) override;
};

} // namespace mirovane
