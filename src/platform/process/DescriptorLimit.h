#pragma once

namespace mirovane {

/// Lets this program open as many files and sockets as the system allows it. Hundreds of device checks at
/// once, each with a file, a socket or the pipes of a child, come to the usual 1,024. Programs that it starts
/// get the usual limit again. Called once, at the start.
void raiseDescriptorLimit();

} // namespace mirovane
