// Clips by their paths, and the paths of clips.
#pragma once

#include <string_view>

#include "script/action_list.h"

namespace qel {

struct Movie;

// What references to a clip share, made when there is none. Null when memory is exhausted.
ClipAnchor* anchorOf(Movie& movie, ClipInstance& clip);

// The clip that a path leads to, from the current target or the root; null where it leads nowhere or to the root.
ClipInstance* resolveTarget(Movie& movie, std::string_view path);

// The first clip of that name on a clip's list, or on the root's (null).
ClipInstance* childClip(Movie& movie, const ClipInstance* parent, std::string_view name);

// "_root.a.b", "" for the root, and for clips that are gone.
TextHold clipDotPath(Movie& movie, const ClipAnchor* anchor);
TextHold clipTargetPath(Movie& movie, const ClipAnchor* anchor);  // "_level0.a.b", "_root" for the root
TextHold clipSlashPath(Movie& movie, const ClipAnchor* anchor);   // "/a/b"

}  // namespace qel
