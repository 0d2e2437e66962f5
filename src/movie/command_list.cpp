#include "movie/command_list.h"

#include <algorithm>
#include <array>

#include "format/commands.h"

namespace qel {
namespace {

constexpr std::uint8_t noCode = 255;

// The internal code for each command number.
constexpr auto internalCodes = [] {
    struct Row {
        CommandNumber number;
        CommandCode code;
    };
    std::array<std::uint8_t, 64> table{};
    table.fill(noCode);
    for (const Row row : {
             Row{CommandNumber::gotoKeyFrame, CommandCode::gotoKeyFrame},
             Row{CommandNumber::play, CommandCode::play},
             Row{CommandNumber::gotoFirstKeyFrame, CommandCode::gotoFirstKeyFrame},
             Row{CommandNumber::stop, CommandCode::stop},
             Row{CommandNumber::requestStop, CommandCode::requestStop},
             Row{CommandNumber::soundOff, CommandCode::soundOff},
             Row{CommandNumber::soundOn, CommandCode::soundOn},
             Row{CommandNumber::startSound, CommandCode::startSound},
             Row{CommandNumber::stopSound, CommandCode::stopSound},
             Row{CommandNumber::frameLoop, CommandCode::frameLoop},
             Row{CommandNumber::openUrl, CommandCode::openUrl},
             Row{CommandNumber::vibrate, CommandCode::vibrate},
             Row{CommandNumber::scrollTo, CommandCode::scrollTo},
             Row{CommandNumber::scrollBy, CommandCode::scrollBy},
             Row{CommandNumber::resetView, CommandCode::resetView},
             Row{CommandNumber::zoom, CommandCode::zoom},
             Row{CommandNumber::focusNext, CommandCode::focusNext},
             Row{CommandNumber::focusPrevious, CommandCode::focusPrevious},
             Row{CommandNumber::selectTarget, CommandCode::selectTarget},
             Row{CommandNumber::placeTarget, CommandCode::placeTarget},
             Row{CommandNumber::removeTarget, CommandCode::removeTarget},
             Row{CommandNumber::ratio, CommandCode::ratio},
             Row{CommandNumber::colourTransform, CommandCode::colourTransform},
             Row{CommandNumber::setMatrix, CommandCode::setMatrix},
             Row{CommandNumber::moveBy, CommandCode::moveBy},
             Row{CommandNumber::alpha, CommandCode::alpha},
             Row{CommandNumber::fade, CommandCode::fade},
             Row{CommandNumber::callNumber, CommandCode::callNumber},
         })
        table[static_cast<std::size_t>(row.number)] = static_cast<std::uint8_t>(row.code);
    return table;
}();

Result keepCommand(CommandCode code, std::span<const std::uint8_t> body, Pool& pool, CommandList& list) {
    Command command;
    command.code = code;
    if (failed(command.body.assignZeros(pool, static_cast<std::uint32_t>(body.size()) + 1))) return Result::outOfMemory;
    std::copy(body.begin(), body.end(), command.body.begin());
    return list.append(pool, std::move(command));
}

}  // namespace

Result readCommands(ContentReader reader, Pool& pool, CommandList& list) {
    while (reader.available(1)) {
        const unsigned header = reader.u8();
        const unsigned sizeCode = header & 3;
        const std::size_t size = sizeCode == longCommandSizeCode ? reader.u8() : sizeCode + 1;
        const std::span<const std::uint8_t> body = reader.take(size);
        if (!reader.ok()) return Result::badContent;
        const std::uint8_t code = internalCodes[header >> 2];
        if (code == noCode || body.empty()) continue;  // also one that waits for nothing
        if (failed(keepCommand(static_cast<CommandCode>(code), body, pool, list))) return Result::outOfMemory;
    }
    return Result::done;
}

}  // namespace qel
