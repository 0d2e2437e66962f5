#include "script/known_names.h"

#include <algorithm>
#include <array>

namespace qel {
namespace {

struct Row {
    std::string_view text;
    KnownName name;
};

constexpr auto rows = [] {
    std::array table{
        Row{"this", KnownName::self},
        Row{"_root", KnownName::root},
        Row{"_level0", KnownName::level0},
        Row{"_parent", KnownName::parent},
        Row{"Math", KnownName::math},
        Row{"String", KnownName::string},
        Row{"Number", KnownName::number},
        Row{"Key", KnownName::key},
        Row{"length", KnownName::length},
        Row{"push", KnownName::push},
        Row{"pop", KnownName::pop},
        Row{"_x", KnownName::x},
        Row{"_y", KnownName::y},
        Row{"_xscale", KnownName::xScale},
        Row{"_yscale", KnownName::yScale},
        Row{"_currentframe", KnownName::currentFrame},
        Row{"_totalframes", KnownName::totalFrames},
        Row{"_alpha", KnownName::alpha},
        Row{"_visible", KnownName::visible},
        Row{"_width", KnownName::width},
        Row{"_height", KnownName::height},
        Row{"_rotation", KnownName::rotation},
        Row{"_target", KnownName::target},
        Row{"_framesloaded", KnownName::framesLoaded},
        Row{"_name", KnownName::name},
        Row{"_droptarget", KnownName::dropTarget},
        Row{"_url", KnownName::url},
        Row{"_highquality", KnownName::highQuality},
        Row{"_focusrect", KnownName::focusRect},
        Row{"_soundbuftime", KnownName::soundBufferTime},
        Row{"_quality", KnownName::quality},
        Row{"_xmouse", KnownName::xMouse},
        Row{"_ymouse", KnownName::yMouse},
        Row{"stopAndGotoUrl", KnownName::stopAndGotoUrl},
        Row{"endWithCallbackNumber", KnownName::endWithCallbackNumber},
        Row{"vibrate", KnownName::vibrate},
        Row{"setVolume", KnownName::setVolume},
        Row{"quit", KnownName::quit},
        Row{"setNextButtonKey", KnownName::setNextButtonKey},
        Row{"setPrevButtonKey", KnownName::setPrevButtonKey},
        Row{"Boolean", KnownName::boolean},
        Row{"Date", KnownName::date},
        Row{"isFinite", KnownName::isFinite},
        Row{"isNaN", KnownName::isNaN},
        Row{"parseFloat", KnownName::parseFloat},
        Row{"parseInt", KnownName::parseInt},
        Row{"getBattery", KnownName::getBattery},
        Row{"getAntenna", KnownName::getAntenna},
        Row{"registryLoad", KnownName::registryLoad},
        Row{"registrySave", KnownName::registrySave},
        Row{"registryDelete", KnownName::registryDelete},
        Row{"registryAddItem", KnownName::registryAddItem},
        Row{"registryGetItem", KnownName::registryGetItem},
        Row{"registryRemoveItem", KnownName::registryRemoveItem},
        Row{"registryGetCount", KnownName::registryGetCount},
        Row{"registryClear", KnownName::registryClear},
    };
    std::ranges::sort(table, {}, &Row::text);
    return table;
}();

}  // namespace

KnownName knownName(std::string_view name) {
    const auto found = std::ranges::lower_bound(rows, name, {}, &Row::text);
    return found != rows.end() && found->text == name ? found->name : KnownName::none;
}

}  // namespace qel
