#include <SDL.h>
#include <gtest/gtest.h>

#include <cstdlib>

#include "host/desktop_platform.h"

namespace qel {
namespace {

using Kind = DesktopPlatform::Message::Kind;

// A window that nobody sees, with the events that a desktop would send it.
class DesktopTest : public testing::Test {
  protected:
    DesktopTest() {
        setenv("SDL_VIDEODRIVER", "dummy", 1);
        std::string error;
        platform = DesktopPlatform::open({.title = "test", .scale = 1}, error);
    }
    static void press(SDL_Scancode place, int modifiers = 0, int repeat = 0) {
        SDL_Event event = {};
        event.type = SDL_KEYDOWN;
        event.key.repeat = static_cast<Uint8>(repeat);
        event.key.keysym.scancode = place;
        event.key.keysym.sym = SDL_GetKeyFromScancode(place);
        event.key.keysym.mod = static_cast<Uint16>(modifiers);
        SDL_PushEvent(&event);
    }
    // The timer's message comes when no other is there.
    DesktopPlatform::Message next() {
        platform->setTimer(20);
        return platform->nextMessage();
    }

    std::unique_ptr<DesktopPlatform> platform;
};

TEST_F(DesktopTest, TurnsTheKeyboardIntoMessages) {
    ASSERT_TRUE(platform);
    struct Row {
        SDL_Scancode place;
        int modifiers, repeat;
        Kind kind;
        int code;
    };
    const Row rows[] = {
        {SDL_SCANCODE_RETURN, 0, 0, Kind::key, 155},
        {SDL_SCANCODE_ESCAPE, 0, 0, Kind::key, 154},
        {SDL_SCANCODE_7, KMOD_NUM, 0, Kind::key, 135},
        {SDL_SCANCODE_LEFT, 0, 1, Kind::timer, 0},        // held down: only its first press counts
        {SDL_SCANCODE_F4, KMOD_LALT, 0, Kind::timer, 0},  // a shortcut of the desktop
        {SDL_SCANCODE_TAB, 0, 0, Kind::timer, 0},         // no key of the device
        {SDL_SCANCODE_F1, 0, 0, Kind::pause, 0},          // opens the help,
        {SDL_SCANCODE_ESCAPE, 0, 0, Kind::resume, 0},     // and this key closes it and does nothing else
        {SDL_SCANCODE_ESCAPE, 0, 0, Kind::key, 154},
        {SDL_SCANCODE_F1, 0, 0, Kind::pause, 0},
        {SDL_SCANCODE_Q, 0, 0, Kind::quit, 0},
    };
    for (const Row& row : rows) {
        press(row.place, row.modifiers, row.repeat);
        const DesktopPlatform::Message message = next();
        EXPECT_EQ(message.kind, row.kind) << SDL_GetScancodeName(row.place);
        EXPECT_EQ(message.keyCode, row.code) << SDL_GetScancodeName(row.place);
    }
}

}  // namespace
}  // namespace qel
