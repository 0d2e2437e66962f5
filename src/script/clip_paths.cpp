#include "script/clip_paths.h"

#include "movie/movie.h"
#include "script/script_state.h"

namespace qel {
namespace {

// Where a walk along a path stands: the root, or a clip.
struct Place {
    ClipInstance* clip = nullptr;
    bool found = true;
};

Place upwards(const Place& from) {
    if (!from.clip) return {nullptr, false};  // nothing lies above the root
    return {clipAround(*from.clip), true};
}

ClipInstance* walk(Movie& movie, Place from, std::string_view path, char separator) {
    const std::string_view parent = separator == '/' ? ".." : "_parent";
    for (;;) {
        const std::size_t end = path.find(separator);
        const std::string_view part = path.substr(0, end);
        if (part == parent) {
            from = upwards(from);
            if (!from.found) return nullptr;
        } else {
            from.clip = childClip(movie, from.clip, part);
            if (!from.clip) return nullptr;
        }
        if (end == std::string_view::npos) return from.clip;
        path.remove_prefix(end + 1);
    }
}

// A prefix, then the names of a clip and of those around it, the outermost first, each behind a separator.
TextHold pathOf(Movie& movie, const ClipInstance* clip, std::string_view prefix, char separator) {
    ScriptMemory& memory = movie.scripts.memory;
    const ClipInstance* chain[maximumClipNesting];
    std::size_t depth = 0;
    for (; clip && depth < std::size(chain); clip = clipAround(*clip)) chain[depth++] = clip;
    TextHold path = makeText(memory, prefix);
    while (depth > 0 && path) {
        path = joinTexts(memory, path.view(), {&separator, 1});
        const ClipInstance* each = chain[--depth];
        path = joinTexts(memory, path.view(), each->name.begin());
    }
    return path;
}

}  // namespace

ClipAnchor* anchorOf(Movie& movie, ClipInstance& clip) {
    if (clip.anchor) return clip.anchor;
    void* block = allocateBlock(movie.heap, sizeof(ClipAnchor), 0);
    if (!block) {
        movie.scripts.memory.exhausted = true;
        return nullptr;
    }
    clip.anchor = new (block) ClipAnchor{.clip = &clip, .pool = &movie.heap};
    return clip.anchor;
}

ClipInstance* childClip(Movie& movie, const ClipInstance* parent, std::string_view name) {
    const DisplayList& list = parent ? parent->children : movie.root;
    constexpr std::size_t comparedAtOnce = 8;
    std::size_t compared = 0;
    ClipInstance* found = nullptr;
    for (DisplayObject* object = list.first; object && !found; object = object->next, ++compared) {
        ClipInstance* clip = asClip(object);
        if (clip && name == clip->name.begin()) found = clip;
    }
    spend(movie.scripts, compared / comparedAtOnce);
    return found;
}

ClipInstance* resolveTarget(Movie& movie, std::string_view path) {
    const Place current{movie.scripts.target.clip(), true};
    const Place root;
    const auto behind = [&path](std::string_view prefix) {
        return path.size() > prefix.size() && path.starts_with(prefix);
    };
    if (behind("/:")) return walk(movie, root, path.substr(2), '.');
    if (behind("/")) return walk(movie, root, path.substr(1), '/');
    if (behind("_root.")) return walk(movie, root, path.substr(6), '.');
    if (behind("../"))
        return walk(movie, {current.clip ? clipAround(*current.clip) : nullptr, true}, path.substr(3), '/');
    const std::size_t first = path.find_first_of("./");
    const bool slashes = first != std::string_view::npos && path[first] == '/';
    return walk(movie, current, path, slashes ? '/' : '.');
}

TextHold clipDotPath(Movie& movie, const ClipAnchor* anchor) {
    if (!anchor || !anchor->clip) return makeText(movie.scripts.memory, "");
    return pathOf(movie, anchor->clip, "_root", '.');
}

TextHold clipTargetPath(Movie& movie, const ClipAnchor* anchor) {
    if (!anchor || !anchor->clip) return makeText(movie.scripts.memory, "_root");
    return pathOf(movie, anchor->clip, "_level0", '.');
}

// Dots inside of names become slashes too.
TextHold clipSlashPath(Movie& movie, const ClipAnchor* anchor) {
    if (!anchor || !anchor->clip) return makeText(movie.scripts.memory, "");
    TextHold path = pathOf(movie, anchor->clip, "", '/');
    if (!path) return path;
    for (std::uint32_t i = 0; i < path->length; ++i)
        if (path.get()->bytes[i] == '.') path.get()->bytes[i] = '/';
    return path;
}

}  // namespace qel
