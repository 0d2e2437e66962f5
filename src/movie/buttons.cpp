#include "movie/buttons.h"

#include "movie/drawing.h"
#include "movie/instances.h"
#include "movie/movie.h"
#include "movie/placement.h"
#include "script/machine.h"

namespace qel {
namespace {

void join(ButtonList& list, ButtonInstance& button) {
    button.joined = &list;
    button.previousButton = list.last;
    button.nextButton = nullptr;
    (list.last ? list.last->nextButton : list.first) = &button;
    list.last = &button;
    if (!list.focused) list.focused = &button;
}

void dropLook(Movie& movie, ButtonInstance& button) {
    DisplayObject* look = std::exchange(button.look, nullptr);
    button.lookId = noCharacter;
    if (!look) return;
    hideObject(movie, *look);
    letGo(movie, look);
}

// What a button can look like.
constexpr bool canBeLook(CharacterKind kind) {
    switch (kind) {
        case CharacterKind::shape:
        case CharacterKind::bitmap:
        case CharacterKind::alphaBitmap:
        case CharacterKind::sprite:
        case CharacterKind::editText: return true;
        default: return false;
    }
}

Result makeLook(Movie& movie, ButtonInstance& button, std::uint16_t id) {
    dropLook(movie, button);
    button.lookId = id;
    if (id == noCharacter) return Result::done;
    CharacterHold<Character> character;
    const Result found = lookupForPlacement(movie, id, character);
    if (failed(found) || !character) return found;
    if (!canBeLook(character->kind)) return Result::done;
    const Result made = makeInstance(movie, &button, *character, id, nullptr, button.look);
    if (failed(made)) return made;
    if (button.look) button.look->colours = button.colours;
    return Result::done;
}

// Queues the code that waits for the gain or the loss of the focus, the last condition first.
Result queueFocusChange(Movie& movie, ButtonInstance& button, bool gained) {
    if (button.button->kind != CharacterKind::button) return Result::done;
    const auto& conditions = static_cast<const Button&>(*button.button).conditions;
    for (std::uint32_t i = conditions.size(); i > 0; --i) {
        const ButtonCondition& condition = conditions[i - 1];
        if (gained ? !condition.onFocusGained : !condition.onFocusLost) continue;
        const Result queued = queueActionList(movie, condition.code.span(), clipAround(button));
        if (failed(queued)) return queued;
    }
    return Result::done;
}

// Brings a button to a state without telling anybody.
Result showState(Movie& movie, ButtonInstance& button, ButtonState state) {
    const std::uint16_t id = button.button->look(state);
    if (id != button.lookId) {
        const Result made = makeLook(movie, button, id);
        if (failed(made)) return made;
    }
    button.state = state;
    return Result::done;
}

Result moveFocus(Movie& movie, ButtonInstance& to) {
    ButtonInstance* from = std::exchange(movie.buttons.focused, &to);
    // One that has the focus since another was removed may still be up.
    if (from == &to && to.state == ButtonState::over) return Result::done;
    if (from && from != &to) {
        const Result left = setButtonState(movie, *from, ButtonState::up);
        if (failed(left)) return left;
        // The look that is gone may have held the button that was to have the focus.
        if (movie.buttons.focused != &to) return Result::done;
    }
    return setButtonState(movie, to, ButtonState::over);
}

}  // namespace

Result makeButton(Movie& movie, DisplayObject* owner, ButtonCharacter& character, DisplayObject*& made) {
    PoolPtr<ButtonInstance> button = makePooled<ButtonInstance>(movie.pool);
    if (!button) return Result::outOfMemory;
    button->kind = ObjectKind::button;
    button->owner = owner;
    button->pool = &movie.pool;
    button->button = CharacterHold<ButtonCharacter>(&character);
    button->state = movie.buttons.first ? ButtonState::up : ButtonState::over;
    const Result looks = makeLook(movie, *button, character.look(button->state));
    if (failed(looks)) {
        destroyObject(button.release());
        return looks;
    }
    join(movie.buttons, *button);
    made = button.release();
    return Result::done;
}

Result setButtonState(Movie& movie, ButtonInstance& button, ButtonState state) {
    const ButtonState before = button.state;
    const Result shown = showState(movie, button, state);
    if (failed(shown)) return shown;
    if (before == ButtonState::up && state == ButtonState::over) return queueFocusChange(movie, button, true);
    if (before == ButtonState::over && state == ButtonState::up) return queueFocusChange(movie, button, false);
    return Result::done;
}

Result focusNext(Movie& movie) {
    const ButtonList& buttons = movie.buttons;
    if (!hasSeveral(buttons)) return Result::nothing;
    ButtonInstance* next = buttons.focused ? buttons.focused->nextButton : nullptr;
    const Result moved = moveFocus(movie, next ? *next : *buttons.first);
    return failed(moved) ? moved : drawNow(movie);
}

Result focusPrevious(Movie& movie) {
    const ButtonList& buttons = movie.buttons;
    if (!hasSeveral(buttons)) return Result::nothing;
    ButtonInstance* previous = buttons.focused ? buttons.focused->previousButton : nullptr;
    const Result moved = moveFocus(movie, previous ? *previous : *buttons.last);
    return failed(moved) ? moved : drawNow(movie);
}

Result focusCharacter(Movie& movie, std::uint16_t id) {
    for (ButtonInstance* button = movie.buttons.first; button; button = button->nextButton)
        if (button->characterId == id) return moveFocus(movie, *button);
    return Result::nothing;
}

void rememberFocus(Movie& movie) {
    const ButtonInstance* focused = movie.buttons.focused;
    if (!focused) return;
    movie.refocusId = focused->characterId;
    movie.state.buttonChangePending = true;
}

void emptyButtonList(Movie& movie) {
    movie.buttons.focused = nullptr;
    while (movie.buttons.last) leaveButtonList(*movie.buttons.last);
}

Result rejoinButtons(Movie& movie, DisplayObject& object) {
    const DisplayObject* behind = nextInDrawingOrder(&object, true);
    for (DisplayObject* each = &object; each != behind; each = nextInDrawingOrder(each)) {
        ButtonInstance* button = asButton(each);
        if (!button || button->joined) continue;
        const bool first = !movie.buttons.first;
        join(movie.buttons, *button);
        const Result set = showState(movie, *button, first ? ButtonState::over : ButtonState::up);
        if (failed(set)) return set;
    }
    return Result::done;
}

}  // namespace qel
