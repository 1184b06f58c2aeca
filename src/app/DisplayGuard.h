#pragma once

namespace mirovane {

/// While it lives, a window system that cannot be reached ends the program with a sentence that says what to
/// do and exit status 2, in place of an abort with a core dump. Lives around the making of the application
/// object only.
class CDisplayGuard {
public:
    CDisplayGuard();
    ~CDisplayGuard();
    CDisplayGuard(const CDisplayGuard&) = delete;
    CDisplayGuard& operator=(const CDisplayGuard&) = delete;
};

} // namespace mirovane
