#include "livestat/steps/FileActions.h"

#include "livestat/search/FieldText.h"
#include "livestat/search/FileNameSearch.h"
#include "livestat/search/TextFileSearch.h"

namespace mirovane {

namespace {

/// Enough of a line for somebody who wants to know which one it is.
std::string shown(const std::string& line) {
    constexpr std::size_t enough = 1000;
    return line.size() <= enough ? line : line.substr(0, enough) + "...";
}

/// Nothing to search in: the field keeps its text.
void failAndKeep(CActionRun& run, const std::string& why) {
    run.outcome.failed = true;
    run.say([&] { return why; });
}

/// The file is there, or the share that it is on is not: either way nobody knows what it holds.
void fileCouldNotBeAsked(CActionRun& run, const std::string& path, const std::string& why) {
    run.couldNotAsk(AskedThrough::File, path, why);
    run.say([&] { return path + ": " + why; });
}

void takeHit(CActionRun& run, const std::string& text) {
    run.outcome.failed = false;
    if (run.input.row == 0)
        return;
    const CriteriaRow& criteria = run.input.criteria;
    if (criteria.FieldPos <= 0)
        run.outcome.result = text;
    else if (!criteria.Delimiter.empty())
        run.outcome.result = delimitedField(text, criteria.Delimiter, criteria.FieldPos);
    if (criteria.FieldPos > 0)
        run.say([&] {
            return criteria.Delimiter.empty()
                       ? std::string("no delimiter: the field is left as it is")
                       : "field " + std::to_string(criteria.FieldPos) + ": " + shown(run.outcome.result);
        });
}

void takeMiss(CActionRun& run, const SearchResult& result, std::string_view things) {
    run.failWithNothing();
    run.say([&] {
        std::string line = "no match in " + std::to_string(result.number) + " " + std::string(things);
        if (result.undecided > 0)
            line += "; " + std::to_string(result.undecided) + " took the pattern too many steps";
        return line;
    });
}

/// Nothing when the row can match nothing.
std::optional<CompiledPattern> rowPattern(CActionRun& run) {
    const std::optional<std::string> text = run.searchText();
    if (!text)
        return std::nullopt;
    try {
        return CompilePattern(*text, PatternUse::ManyTexts);
    } catch (const bad_regexpr& refused) {
        run.refuse(refused);
        return std::nullopt;
    }
}

void searchLines(CActionRun& run, const std::string& path) {
    const auto pattern = rowPattern(run);
    if (!pattern)
        return run.failWithNothing();
    const SearchResult found = searchTextFile(path, *pattern, run.input.stop);
    // A stamp has whole seconds: what the writer adds within this one would never be searched.
    if (found.changedMeanwhile)
        run.outcome.fileStamp.reset();
    switch (found.end) {
    case SearchResult::End::Hit:
        run.say([&] { return path + ", line " + std::to_string(found.number) + ": " + shown(found.text); });
        return takeHit(run, found.text);
    case SearchResult::End::NoHit:
        return takeMiss(run, found, "lines");
    case SearchResult::End::Stopped:
        run.outcome.cancelled = true;
        return;
    case SearchResult::End::Missing: // gone since a moment ago
        run.outcome.fileStamp = 0;
        return failAndKeep(run, path + ": " + found.trouble);
    case SearchResult::End::Unreadable:
        return fileCouldNotBeAsked(run, path, found.trouble);
    }
}

} // namespace

void searchInTextFile(CActionRun& run) {
    const CHardware& device = run.input.device;
    // Also where the edit looks older: it may come from a station whose clock is slow.
    const bool stale = device.Modified != device.StampsModified;
    if (stale)
        run.outcome.stampsModified = device.Modified;
    if (run.argument.empty())
        return failAndKeep(run, "no file is named");
    const std::string path = nativePath(run.argument);
    const TextFileStatus status = textFileStatus(path);
    if (status.kind == TextFileStatus::Kind::Unreadable)
        return fileCouldNotBeAsked(run, path, status.trouble);
    if (status.kind == TextFileStatus::Kind::Missing) {
        run.outcome.fileStamp = 0;
        return failAndKeep(run, path + ": " + status.trouble);
    }
    if (!stale && status.stamp == device.RuleStamps[static_cast<std::size_t>(run.input.row)]) {
        run.outcome.acted = false;
        return;
    }
    run.outcome.fileStamp = status.stamp;
    searchLines(run, path);
}

void searchForFile(CActionRun& run) {
    if (run.argument.empty())
        return failAndKeep(run, "no file is named");
    const auto pattern = rowPattern(run);
    // Also without a pattern: whether there are files at all decides what becomes of the field.
    const FileNameSearchResult found =
        searchFileNames(run.argument, pattern ? &*pattern : nullptr, run.input.stop);
    if (found.search.end == SearchResult::End::Stopped)
        run.outcome.cancelled = true;
    else if (found.search.end == SearchResult::End::Unreadable)
        fileCouldNotBeAsked(run, run.argument, found.search.trouble);
    else if (!found.anyFile)
        failAndKeep(run, run.argument + ": " +
                             (found.search.trouble.empty() ? "no such file" : found.search.trouble));
    else if (found.search.end == SearchResult::End::Hit) {
        run.say([&] { return "file: " + found.search.text; });
        takeHit(run, found.search.text);
    } else
        takeMiss(run, found.search, "file names");
}

} // namespace mirovane
