// The names that mean something to the device itself.
#pragma once

#include <cstdint>
#include <string_view>

namespace qel {

enum class KnownName : std::uint8_t {
    none,

    // What a variable of this name is, whatever scripts set.
    self,
    root,
    level0,
    parent,
    math,
    string,
    number,
    key,

    // Members and methods of arrays.
    length,
    push,
    pop,

    // Properties of clips, in the order of their numbers. The last eight have a name and no value.
    x,
    y,
    xScale,
    yScale,
    currentFrame,
    totalFrames,
    alpha,
    visible,
    width,
    height,
    rotation,
    target,
    framesLoaded,
    name,
    dropTarget,
    url,
    highQuality,
    focusRect,
    soundBufferTime,
    quality,
    xMouse,
    yMouse,

    // Functions of the device.
    stopAndGotoUrl,
    endWithCallbackNumber,
    vibrate,
    setVolume,
    quit,
    setNextButtonKey,
    setPrevButtonKey,
    boolean,
    date,
    isFinite,
    isNaN,
    parseFloat,
    parseInt,
    getBattery,
    getAntenna,
    registryLoad,
    registrySave,
    registryDelete,
    registryAddItem,
    registryGetItem,
    registryRemoveItem,
    registryGetCount,
    registryClear,
};

KnownName knownName(std::string_view name);

// The number of a clip's property, or -1.
constexpr int propertyNumber(KnownName name) {
    return name >= KnownName::x && name <= KnownName::yMouse ? static_cast<int>(name) - static_cast<int>(KnownName::x)
                                                             : -1;
}

constexpr bool isNativeFunction(KnownName name) { return name >= KnownName::stopAndGotoUrl; }

}  // namespace qel
