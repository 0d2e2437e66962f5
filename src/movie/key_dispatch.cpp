#include "movie/key_dispatch.h"

#include "movie/buttons.h"
#include "movie/drawing.h"
#include "movie/movie.h"
#include "script/machine.h"

namespace qel {
namespace {

constexpr std::uint8_t noKey = 0;  // of the navigation keys: nobody has set it

// The first condition of a button that waits for the key, or null.
const ButtonCondition* findCondition(const ButtonInstance& button, std::uint8_t key) {
    for (const ButtonCondition& condition : static_cast<const Button&>(*button.button).conditions) {
        const bool whileFocused =
            condition.hasFocusedKey && condition.focusedKey == key && button.state == ButtonState::over;
        if (whileFocused || (condition.hasAnyTimeKey && condition.anyTimeKey == key)) return &condition;
    }
    return nullptr;
}

}  // namespace

Result flashButton(Movie& movie, ButtonInstance& button, ButtonState resting) {
    if (button.button->look(ButtonState::down) == button.button->look(resting)) return Result::done;
    for (const ButtonState state : {ButtonState::down, resting}) {
        Result shown = setButtonState(movie, button, state);
        if (!failed(shown)) shown = drawNow(movie);
        if (failed(shown)) return shown;
    }
    return Result::done;
}

Result dispatchKey(Movie& movie, std::uint8_t key, bool& consumed) {
    consumed = false;
    const ScriptContext& scripts = movie.scripts;
    if (key != noKey && hasSeveral(movie.buttons)) {
        consumed = key == scripts.nextButtonKey || key == scripts.previousButtonKey;
        if (key == scripts.nextButtonKey) return focusNext(movie);
        if (key == scripts.previousButtonKey) return focusPrevious(movie);
    }
    for (DisplayObject* object = movie.root.first; object; object = nextInDrawingOrder(object)) {
        ButtonInstance* button = asButton(object);
        if (!button || button->button->kind != CharacterKind::button) continue;
        const ButtonCondition* condition = findCondition(*button, key);
        if (!condition) continue;
        consumed = true;
        const Result queued = queueActionList(movie, condition->code.span(), clipAround(*button));
        return failed(queued) ? queued : flashButton(movie, *button, button->state);
    }
    return Result::done;
}

}  // namespace qel
