// The numbers of action code.
#pragma once

#include <cstdint>

namespace qel {

enum class Action : std::uint8_t {
    end = 0x00,
    nextFrame = 0x04,
    prevFrame = 0x05,
    play = 0x06,
    stop = 0x07,
    stopSounds = 0x09,
    add = 0x0A,
    subtract = 0x0B,
    multiply = 0x0C,
    divide = 0x0D,
    equals = 0x0E,
    less = 0x0F,
    logicalAnd = 0x10,
    logicalOr = 0x11,
    logicalNot = 0x12,
    stringEquals = 0x13,
    stringLength = 0x14,
    stringExtract = 0x15,
    pop = 0x17,
    toInteger = 0x18,
    getVariable = 0x1C,
    setVariable = 0x1D,
    setTarget2 = 0x20,
    stringAdd = 0x21,
    getProperty = 0x22,
    setProperty = 0x23,
    duplicateRequest = 0x24,
    removeRequest = 0x25,
    trace = 0x26,
    dragRequest = 0x27,
    stringLess = 0x29,
    randomNumber = 0x30,
    charToAscii = 0x32,
    asciiToChar = 0x33,
    getTime = 0x34,
    wideCharToAscii = 0x36,
    wideAsciiToChar = 0x37,
    deleteVariable = 0x3B,
    defineLocal = 0x3C,
    callFunction = 0x3D,
    returnValue = 0x3E,
    modulo = 0x3F,
    newObject = 0x40,
    defineLocal2 = 0x41,
    initArray = 0x42,
    typeOf = 0x44,
    targetPath = 0x45,
    add2 = 0x47,
    less2 = 0x48,
    equals2 = 0x49,
    toNumber = 0x4A,
    toText = 0x4B,
    pushDuplicate = 0x4C,
    stackSwap = 0x4D,
    getMember = 0x4E,
    setMember = 0x4F,
    increment = 0x50,
    decrement = 0x51,
    callMethod = 0x52,
    bitAnd = 0x60,
    bitOr = 0x61,
    bitXor = 0x62,
    bitLeftShift = 0x63,
    bitRightShift = 0x64,
    bitUnsignedRightShift = 0x65,
    gotoFrame = 0x81,
    getUrl = 0x83,
    storeRegister = 0x87,
    constantPool = 0x88,
    waitForFrame = 0x8A,
    setTarget = 0x8B,
    gotoLabel = 0x8C,
    waitForFrame2 = 0x8D,
    with = 0x94,
    push = 0x96,
    jump = 0x99,
    getUrl2 = 0x9A,
    defineFunction = 0x9B,
    branchIf = 0x9D,
    call = 0x9E,
    gotoFrame2 = 0x9F,
};

inline constexpr std::uint8_t firstActionWithLength = 0x80;

// The kinds of Push entries: a type byte, then its data.
enum class PushType : std::uint8_t {
    text = 0,    // zero-terminated
    single = 1,  // 4-byte IEEE number
    null = 2,
    undefined = 3,
    registerValue = 4,  // u8
    boolean = 5,        // u8: 1 true, 0 false, others push nothing
    real = 6,           // 8-byte IEEE number, its high half first
    integer = 7,        // s32
    constant = 8,       // u8 index into the constant pool
};

}  // namespace qel
