// Buttons: their states and looks, and the focus, which is with one of them at a time.
#pragma once

#include "movie/display_object.h"
#include "movie/result.h"

namespace qel {

struct Movie;

// Makes an instance of a button, to be put on a list of `owner`. It joins the list of buttons; the first of the list
// has the focus and begins as `over`, the others as `up`.
Result makeButton(Movie& movie, DisplayObject* owner, ButtonCharacter& character, DisplayObject*& made);

// Brings a button to a state: its look becomes that state's character, and what waits for the gain or the loss of the
// focus is queued. outOfMemory: the look could not be made.
Result setButtonState(Movie& movie, ButtonInstance& button, ButtonState state);

// Moves the focus to the next or the previous button and draws the frame at once. Nothing happens where there are fewer
// than two buttons.
Result focusNext(Movie& movie);
Result focusPrevious(Movie& movie);

// Gives the focus to the first button of a character, where there is one. Nothing is drawn.
Result focusCharacter(Movie& movie, std::uint16_t id);

// Has the focus go back, before the next frame is shown, to a button of the character that has it now.
void rememberFocus(Movie& movie);

// A key frame of the root timeline: no button is left to have the focus.
void emptyButtonList(Movie& movie);

// Buttons inside an object that a key frame has found again join the list anew.
Result rejoinButtons(Movie& movie, DisplayObject& object);

inline bool hasSeveral(const ButtonList& buttons) { return buttons.first != buttons.last; }

}  // namespace qel
