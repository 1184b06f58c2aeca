#include "docs/man/Reference.h"

#include <cstdio>
#include <exception>
#include <filesystem>
#include <fstream>

namespace {

bool write(const std::filesystem::path& path, const std::string& text) {
    std::filesystem::create_directories(path.parent_path());
    std::ofstream out(path, std::ios::binary | std::ios::trunc);
    out << text << std::flush;
    if (!out)
        std::fprintf(stderr, "cannot write %s\n", path.c_str());
    return out.good();
}

} // namespace

/// Writes the manual pages and what the shells complete into a folder, from the tables of the programs.
int main(int argc, char** argv) {
    using namespace mirovane::reference;
    if (argc != 4) {
        std::fputs("usage: write_reference FOLDER VERSION DATE\n", stderr);
        return 2;
    }
    const std::filesystem::path folder = argv[1];
    const Release release{argv[2], argv[3]};
    try {
        const bool written = write(folder / "man/mirovane.1", mirovanePage(release)) &&
                             write(folder / "man/mirovanectl.1", mirovanectlPage(release)) &&
                             write(folder / "man/mirovane.mv.5", datafilePage(release)) &&
                             write(folder / "completion/bash/mirovanectl", bashCompletion()) &&
                             write(folder / "completion/zsh/_mirovanectl", zshCompletionOfMirovanectl()) &&
                             write(folder / "completion/zsh/_mirovane", zshCompletionOfMirovane());
        return written ? 0 : 1;
    } catch (const std::exception& error) {
        std::fprintf(stderr, "write_reference: %s\n", error.what());
        return 1;
    }
}
