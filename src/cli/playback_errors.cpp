#include "cli/playback_errors.h"

#include <cstdio>

namespace qel::cli {
namespace {

std::string abortCause(const Session& session) {
    switch (AbortReason{session.ending().reason}) {
        case AbortReason::outOfMemory: return "out of memory: the content needs more than its budget";
        case AbortReason::brokenDefinition: return "a definition is broken";
        case AbortReason::badContent: return "the content is broken or cut short";
        case AbortReason::noTemporaryFile:
            return "the temporary content file could not be made, or the content's frame is too large";
    }
    return "playback was aborted for reason " + std::to_string(session.ending().reason);
}

}  // namespace

void printCommandError(const char* name, const char* message) { std::fprintf(stderr, "qel %s: %s\n", name, message); }

std::string refusalMessage(const std::string& file) {
    return file +
           ": refused: its first 24 bytes cannot be read or name no VIS, ZVIS or SAF movie of a kind that is played, "
           "or the budget is too small";
}

void openContent(Session& session, const std::string& file) {
    switch (session.open(file)) {
        case OpenResult::opened: return;
        case OpenResult::cannotOpen: throw CommandError(badUsage, file + ": cannot be opened for reading");
        case OpenResult::refused: throw CommandError(refused, refusalMessage(file));
        case OpenResult::outOfMemory: throw CommandError(failed, "no memory for a player");
    }
}

std::string abortMessage(const std::string& file, const Session& session) {
    const ContentRead& read = session.lastRead();
    return file + ": " + abortCause(session) + " (the last read, " + std::to_string(read.count) + " bytes at offset " +
           std::to_string(read.offset) + (read.expanded ? " of the expanded content" : "") +
           (read.succeeded ? "" : ", failed") + "; frames presented: " + std::to_string(session.framesPresented()) +
           ")";
}

}  // namespace qel::cli
