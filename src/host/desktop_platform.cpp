#include "host/desktop_platform.h"

#include <SDL.h>

#include <algorithm>
#include <chrono>
#include <climits>
#include <cstdio>
#include <optional>

#include "host/files.h"
#include "host/headless_platform.h"
#include "host/help_panel.h"
#include "host/keyboard.h"

namespace qel {
namespace {

// What a phone's screen measures: the window's size until the content's is known.
constexpr int firstWidth = 240, firstHeight = 320;

struct DestroyWindow {
    void operator()(SDL_Window* window) const { SDL_DestroyWindow(window); }
};
struct DestroyRenderer {
    void operator()(SDL_Renderer* renderer) const { SDL_DestroyRenderer(renderer); }
};
struct DestroyTexture {
    void operator()(SDL_Texture* texture) const { SDL_DestroyTexture(texture); }
};

// The video system is up as long as one of these lives.
struct VideoSystem {
    VideoSystem() : ready(SDL_InitSubSystem(SDL_INIT_VIDEO) == 0) {}
    ~VideoSystem() {
        if (ready) SDL_QuitSubSystem(SDL_INIT_VIDEO);
    }
    VideoSystem(const VideoSystem&) = delete;
    VideoSystem& operator=(const VideoSystem&) = delete;
    bool ready;
};

// The largest whole scale at which the content takes up to three quarters of the screen.
int fittingScale(SDL_Window* window, int width, int height) {
    SDL_Rect usable = {};
    if (SDL_GetDisplayUsableBounds(std::max(SDL_GetWindowDisplayIndex(window), 0), &usable) != 0) return 1;
    return std::max(1, std::min(usable.w * 3 / 4 / std::max(width, 1), usable.h * 3 / 4 / std::max(height, 1)));
}

class SdlPlatform : public DesktopPlatform {
  public:
    bool openWindow(const DesktopOptions& options);
    Message nextMessage() override;

    FileHandle openContent(const std::string& path) override { return files_.add(openLocalFile(path)); }
    FileHandle createTemporary(std::string_view name) override { return files_.add(createPrivateFile(name)); }
    bool readFile(FileHandle file, std::uint32_t offset, std::span<std::uint8_t> to) override {
        File* const found = files_.find(file);
        return found && found->read(offset, to);
    }
    bool appendToFile(FileHandle file, std::span<const std::uint8_t> bytes) override {
        File* const found = files_.find(file);
        return found && found->append(bytes);
    }
    void closeFile(FileHandle file) override { files_.close(file); }

    std::uint32_t tickCount() override { return static_cast<std::uint32_t>(SDL_GetTicks64()); }
    Date date() override { return dateAt(nowMs()); }
    TimeOfDay timeOfDay() override { return timeOfDayAt(nowMs()); }
    void setTimer(std::uint32_t milliseconds) override { timerDueMs_ = SDL_GetTicks64() + milliseconds; }
    void killTimer() override { timerDueMs_.reset(); }

    bool present(const FrameRecord& frame, std::span<std::uint8_t> staging) override;
    void log(std::u16string_view text) override;

  private:
    static std::int64_t nowMs() {
        using namespace std::chrono;
        return duration_cast<milliseconds>(system_clock::now().time_since_epoch()).count();
    }
    bool fitTexture(int width, int height);
    void paint();
    std::optional<Message> messageOf(const SDL_Event& event);
    std::optional<Message> keyPressed(const SDL_Keysym& key);

    VideoSystem video_;
    std::unique_ptr<SDL_Window, DestroyWindow> window_;
    std::unique_ptr<SDL_Renderer, DestroyRenderer> renderer_;
    std::unique_ptr<SDL_Texture, DestroyTexture> texture_;
    int textureWidth_ = 0, textureHeight_ = 0;
    int scale_ = 0;
    bool helpOpen_ = false;
    std::optional<std::uint64_t> timerDueMs_;
    FileTable files_;
};

// Where there is no display the library falls back to drivers whose windows nobody sees. That is wanted only when the
// user asked for one of them.
bool fellBackToInvisible() {
    const std::string_view driver = SDL_GetCurrentVideoDriver();
    return !SDL_getenv("SDL_VIDEODRIVER") && (driver == "offscreen" || driver == "dummy" || driver == "evdev");
}

bool SdlPlatform::openWindow(const DesktopOptions& options) {
    scale_ = options.scale;
    if (!video_.ready) return false;
    if (fellBackToInvisible()) return SDL_SetError("no screen was found") == 0;
    SDL_SetHint(SDL_HINT_RENDER_SCALE_QUALITY, "0");
    const int scale = std::max(scale_, 1);
    window_.reset(SDL_CreateWindow(options.title.c_str(), SDL_WINDOWPOS_CENTERED, SDL_WINDOWPOS_CENTERED,
                                   firstWidth * scale, firstHeight * scale, SDL_WINDOW_RESIZABLE));
    if (!window_) return false;
    renderer_.reset(SDL_CreateRenderer(window_.get(), -1, 0));
    if (!renderer_) return false;
    paint();
    return true;
}

// The texture has the content's size; the window follows it once, and is the user's to resize from then on.
bool SdlPlatform::fitTexture(int width, int height) {
    if (texture_ && textureWidth_ == width && textureHeight_ == height) return true;
    texture_.reset(
        SDL_CreateTexture(renderer_.get(), SDL_PIXELFORMAT_RGB565, SDL_TEXTUREACCESS_STREAMING, width, height));
    if (!texture_) return false;
    textureWidth_ = width;
    textureHeight_ = height;
    const int scale = scale_ > 0 ? scale_ : fittingScale(window_.get(), width, height);
    SDL_SetWindowSize(window_.get(), width * scale, height * scale);
    SDL_SetWindowPosition(window_.get(), SDL_WINDOWPOS_CENTERED, SDL_WINDOWPOS_CENTERED);
    SDL_RenderSetLogicalSize(renderer_.get(), width, height);
    SDL_RenderSetIntegerScale(renderer_.get(), SDL_TRUE);
    return true;
}

bool SdlPlatform::present(const FrameRecord& frame, std::span<std::uint8_t>) {
    if (frame.width == 0 || frame.height == 0) return true;
    const bool shown = fitTexture(static_cast<int>(frame.width), static_cast<int>(frame.height)) &&
                       SDL_UpdateTexture(texture_.get(), nullptr, frame.pixels, static_cast<int>(frame.pitch)) == 0;
    paint();
    return shown;
}

void SdlPlatform::paint() {
    SDL_SetRenderDrawColor(renderer_.get(), 0, 0, 0, SDL_ALPHA_OPAQUE);
    SDL_RenderClear(renderer_.get());
    if (texture_) SDL_RenderCopy(renderer_.get(), texture_.get(), nullptr, nullptr);
    if (helpOpen_) {
        SDL_RenderSetLogicalSize(renderer_.get(), 0, 0);
        drawHelpPanel(renderer_.get());
        SDL_RenderSetLogicalSize(renderer_.get(), textureWidth_, textureHeight_);
    }
    SDL_RenderPresent(renderer_.get());
}

std::optional<DesktopPlatform::Message> SdlPlatform::keyPressed(const SDL_Keysym& key) {
    using Kind = Message::Kind;
    if (key.sym == SDLK_q) return Message{Kind::quit};
    if (helpOpen_ || key.sym == SDLK_F1) {
        helpOpen_ = !helpOpen_;
        paint();
        return Message{helpOpen_ ? Kind::pause : Kind::resume};
    }
    if ((key.mod & (KMOD_CTRL | KMOD_ALT | KMOD_GUI)) != 0) return std::nullopt;  // shortcuts of the desktop
    const std::string name = SDL_GetKeyName(key.sym);  // a copy: the library's next call may use its buffer again
    const std::optional<std::uint8_t> code = keyCodeForKeyboard(name, SDL_GetScancodeName(key.scancode));
    return code ? std::optional(Message{Kind::key, *code}) : std::nullopt;
}

std::optional<DesktopPlatform::Message> SdlPlatform::messageOf(const SDL_Event& event) {
    switch (event.type) {
        case SDL_QUIT: return Message{Message::Kind::quit};
        case SDL_KEYDOWN:  // a key that is held down was pressed once
            return event.key.repeat == 0 ? keyPressed(event.key.keysym) : std::nullopt;
        case SDL_WINDOWEVENT:
        case SDL_RENDER_TARGETS_RESET: paint(); return std::nullopt;
        default: return std::nullopt;
    }
}

DesktopPlatform::Message SdlPlatform::nextMessage() {
    while (true) {
        int patience = INT_MAX;
        if (timerDueMs_) {
            const std::uint64_t now = SDL_GetTicks64();
            patience = *timerDueMs_ > now ? static_cast<int>(std::min<std::uint64_t>(*timerDueMs_ - now, INT_MAX)) : 0;
        }
        // The window's messages go first: content that is always late must not keep it from closing.
        SDL_Event event;
        while (SDL_WaitEventTimeout(&event, patience)) {
            if (const std::optional<Message> message = messageOf(event)) return *message;
            patience = 0;
        }
        if (timerDueMs_ && SDL_GetTicks64() >= *timerDueMs_) return {Message::Kind::timer};
    }
}

void SdlPlatform::log(std::u16string_view text) {
    for (const char16_t unit : text) std::fputc(unit < 0x80 ? static_cast<int>(unit) : '?', stderr);
}

}  // namespace

std::unique_ptr<DesktopPlatform> DesktopPlatform::open(const DesktopOptions& options, std::string& error) {
    auto platform = std::make_unique<SdlPlatform>();
    if (platform->openWindow(options)) return platform;
    error = SDL_GetError();
    return nullptr;
}

}  // namespace qel
