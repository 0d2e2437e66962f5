#include "movie/text_fields.h"

#include "movie/movie.h"
#include "script/clip_paths.h"
#include "script/conversions.h"
#include "script/scope.h"

namespace qel {
namespace {

// Names are looked for from the clip that the field is in; from the root for one that is a button's look.
Result targetFor(Movie& movie, const TextInstance& instance, Target& target) {
    ClipInstance* clip = asClip(instance.owner);
    if (!clip) return Result::done;
    ClipAnchor* anchor = anchorOf(movie, *clip);
    if (!anchor) return Result::outOfMemory;
    target = Target(anchor);
    return Result::done;
}

Result replaceText(Movie& movie, TextInstance& instance, std::string_view text) {
    if (text == shownText(instance)) return Result::done;
    const auto* bytes = reinterpret_cast<const std::uint8_t*>(text.data());
    const Result copied = copyText(movie.pool, {bytes, text.size()}, instance.text);
    if (copied == Result::done) instance.changed = true;
    return copied;
}

}  // namespace

std::string_view shownText(const TextInstance& instance) {
    const PoolText& text = instance.text.empty() ? instance.field->text : instance.text;
    return text.empty() ? std::string_view() : std::string_view(text.begin());
}

Result followVariable(Movie& movie, TextInstance& instance) {
    ScriptContext& scripts = movie.scripts;
    const PoolText& variable = instance.field->variable;
    const bool runs = scripts.level != 0;  // bounds are asked for: the redraw comes later
    if (runs || variable.empty() || variable[0] == '\0') return Result::done;
    if (!instance.variable) instance.variable = makeName(scripts.memory, variable.begin());
    Target target;
    if (!instance.variable || failed(targetFor(movie, instance, target))) return Result::outOfMemory;
    scripts.memory.actionsLeft = scripts.actionLimit;
    std::swap(scripts.target, target);
    const Value* value = findVariable(movie, instance.variable);
    const TextHold text = value ? toText(movie, *value) : TextHold();
    std::swap(scripts.target, target);
    if (scripts.memory.exhausted) return Result::outOfMemory;
    return value ? replaceText(movie, instance, text.view()) : Result::done;
}

}  // namespace qel
