// Listings of action code: what is written, what is read back, and what is wrong with a listing.
#include "author/assembler.h"

#include <gtest/gtest.h>

#include "author/action_forms.h"
#include "author/action_listing.h"
#include "author/hex.h"

namespace qel::author {
namespace {

constexpr std::size_t plenty = 1 << 24;

std::string listed(const Bytes& code) { return listActions(code, plenty); }

std::string errorOf(std::string_view listing) {
    try {
        assembleActions(listing);
    } catch (const ListingError& error) {
        return std::to_string(error.line) + ": " + error.what();
    }
    return "";
}

TEST(Assembler, WritesActionsAsContentHasThem) {
    const struct {
        const char *listing, *bytes;
    } cases[] = {
        {"Stop\nPlay", "07 06"},
        {"Push 'ab' \"c\"", "96 07 00 00 61 62 00 00 63 00"},
        {"Push 1 -2 0xFFFFFFFF", "96 0f 00 07 01 00 00 00 07 fe ff ff ff 07 ff ff ff ff"},
        {"Push 1.5f", "96 05 00 01 00 00 c0 3f"},
        {"Push 1.5", "96 09 00 06 00 00 f8 3f 00 00 00 00"},
        {"Push NaN -Infinity", "96 12 00 06 00 00 f8 7f 00 00 00 00 06 00 00 f0 ff 00 00 00 00"},
        {"Push null undefined true false register:2 constant:255 boolean:9 type:77",
         "96 0d 00 02 03 05 01 05 00 04 02 08 ff 05 09 4d"},
        {"GotoFrame 258 // to the menu", "81 02 00 02 01"},
        {"GetURL 'a' ''", "83 03 00 61 00 00"},
        {"WaitForFrame 1 2\nGoToLabel 'x'", "8a 03 00 01 00 02 8c 02 00 78 00"},
        {"ConstantPool 'a' 'b'", "88 06 00 02 00 61 00 62 00"},
        {"again: Play\nIf again\nJump end\nStop\nend:", "06 9d 02 00 fa ff 99 02 00 01 00 07"},
        {"With +1\nPlay", "94 02 00 01 00 06"},
        {"DefineFunction 'f' 'x' {\n  back: Jump back\n}\nStop", "9b 08 00 66 00 01 00 78 00 05 00 99 02 00 fb ff 07"},
        {"Code 9c 01 02\nCode 1A\nBytes 96 ff", "9c 02 00 01 02 1a 96 ff"},
        {R"(Push '\n\x80\'\\"')", "96 07 00 00 0a 80 27 5c 22 00"},
    };
    for (const auto& each : cases) EXPECT_EQ(hex(assembleActions(each.listing)), each.bytes) << each.listing;
}

TEST(Assembler, SaysWhatIsWrongAndWhere) {
    const struct {
        const char *listing, *error;
    } cases[] = {
        {"Stop\npush 1", "2: there is no action \"push\"; it is written Push"},
        {"Jump nowhere", "1: there is no label \"nowhere\" here"},
        {"a: Stop\na: Stop", "2: the label \"a\" stands here already"},
        {"DefineFunction 'f' {\nStop", "1: the function's } is missing"},
        {"inside: DefineFunction 'f' {\nJump inside\n}", "2: there is no label \"inside\" here"},
        {"}", "1: there is no function that this } could end"},
        {"Push 'abc", "1: a text has no closing quote"},
        {"Push 'a\\x00b'", "1: a text holds no zero byte, which would end it"},
        {"Push 3000000000", "1: 3000000000 is larger than a whole number of 32 bits: write 3000000000.0"},
        {"StoreRegister", "1: an operand is missing behind StoreRegister"},
        {"StoreRegister 256", "1: a whole number from 0 to 255 belongs here, not \"256\""},
        {"Stop 1", "1: \"1\" is one word too many"},
        {"Code 07 01", "1: an action below 80 has no operands"},
        {"Bytes 7", "1: bytes stand here as two hexadecimal digits each"},
    };
    for (const auto& each : cases) EXPECT_EQ(errorOf(each.listing), each.error) << each.listing;
    EXPECT_NE(errorOf("Push nothing").find("is no value"), std::string::npos);
    std::string far = "Jump end\n";
    for (int i = 0; i < 40000; ++i) far += "Stop\n";
    EXPECT_EQ(errorOf(far + "end:"), "1: \"end\" is 40000 bytes away, which this action cannot reach");
}

TEST(ActionListing, ReadsLikeWhatWasWritten) {
    const std::string listing =
        "label1:\n"
        "    Push 'x' 2.5 constant:0\n"
        "    If label2\n"
        "    DefineFunction 'f' 'a' 'b' {\n"
        "        Jump label3\n"
        "    label3:\n"
        "        DefineFunction '' {\n"
        "        }\n"
        "    }\n"
        "    Jump label1\n"
        "label2:\n"
        "    Jump +7\n"
        "    Jump -1\n";
    EXPECT_EQ(listed(assembleActions(listing)), listing);
}

// Every action with operands as it has them, and with others.
TEST(ActionListing, AssemblesToTheSameBytes) {
    const Bytes operandBytes[] = {
        {}, {0}, {1, 0}, {2, 0, 3}, {'a', 0}, {'a', 0, 'b', 0}, {1, 1, 'a', 0}, {'f', 0, 0, 0, 2, 0}};
    for (int code = 0; code < 256; ++code) {
        for (const Bytes& operands : operandBytes) {
            Bytes bytes{0x06, static_cast<std::uint8_t>(code)};
            if (code >= firstActionWithLength) {
                bytes.insert(bytes.end(), {static_cast<std::uint8_t>(operands.size()), 0});
                bytes.insert(bytes.end(), operands.begin(), operands.end());
            }
            bytes.insert(bytes.end(), {0x07, 0x00, 0x06});
            EXPECT_EQ(hex(assembleActions(listed(bytes))), hex(bytes)) << listed(bytes);
        }
    }
}

TEST(ActionListing, AssemblesToTheSameBytesHoweverBrokenTheCodeIs) {
    std::uint32_t state = 7;
    const auto next = [&state](std::uint32_t limit) {
        state = state * 1664525 + 1013904223;
        return (state >> 8) % limit;
    };
    const std::span<const ActionForm> forms = actionForms();
    for (int round = 0; round < 2000; ++round) {
        Bytes bytes;
        while (bytes.size() < 60) {
            const ActionForm& form = forms[next(static_cast<std::uint32_t>(forms.size()))];
            bytes.push_back(static_cast<std::uint8_t>(form.action));
            if (form.action >= Action{firstActionWithLength})
                bytes.insert(bytes.end(), {static_cast<std::uint8_t>(next(12)), 0});
            for (std::uint32_t i = next(10); i > 0; --i)
                bytes.push_back(static_cast<std::uint8_t>(next(next(2) ? 10 : 256)));
        }
        ASSERT_EQ(hex(assembleActions(listed(bytes))), hex(bytes)) << listed(bytes);
    }
}

TEST(ActionListing, EndsWhereItGrowsTooLong) {
    EXPECT_EQ(listActions(Bytes(100, 0x07), 12), "    Stop\n// the listing is too long: what follows is left out\n");
    // Functions in functions, far deeper than anybody writes them.
    Bytes deep;
    for (int i = 0; i < 5000; ++i) {
        const std::size_t body = deep.size();
        Bytes outer{0x9b, 5, 0, 0, 0, 0, static_cast<std::uint8_t>(body), static_cast<std::uint8_t>(body >> 8)};
        outer.insert(outer.end(), deep.begin(), deep.end());
        deep = outer;
    }
    EXPECT_EQ(hex(assembleActions(listed(deep))), hex(deep));
}

}  // namespace
}  // namespace qel::author
