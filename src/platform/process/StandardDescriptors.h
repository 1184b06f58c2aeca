#pragma once

namespace mirovane {

/// Fills descriptors 0 to 2 where whoever started the program closed them. The first file that is opened
/// would otherwise get one of these numbers, and the next line for standard error would be written into it:
/// into a datafile. What is printed to a descriptor filled here is an error (EBADF), as it would be to a
/// closed one.
///
/// First thing in main(), before anything is opened or another thread runs.
void fillStandardDescriptors();

} // namespace mirovane
