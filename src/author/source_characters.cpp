#include "author/source_characters.h"

#include "author/character_records.h"
#include "author/source_code.h"
#include "author/source_commands.h"

namespace qel::author {
namespace {

// The field's whole number, or `otherwise`.
std::uint32_t wholeOr(const SourceValue& object, const char* field, std::uint32_t most, std::uint32_t otherwise = 0) {
    const SourceValue* value = object.find(field);
    return value ? static_cast<std::uint32_t>(integerOf(*value, 0, most)) : otherwise;
}

std::uint8_t byteOr(const SourceValue& object, const char* field, std::uint8_t most = 255) {
    return static_cast<std::uint8_t>(wholeOr(object, field, most));
}

bool isSet(const SourceValue& object, const char* field) {
    const SourceValue* value = object.find(field);
    return value && booleanOf(*value);
}

void addWhole(SourceBuild& build, const SourceValue& value, const Bytes& record) {
    if (record.size() > wholeDefinitionBytes)
        fail(value, "too large for the format: this takes " + std::to_string(record.size()) + " bytes, of at most " +
                        std::to_string(wholeDefinitionBytes));
    build.records.push_back(record);
}

// A look that is not named is the one before it; null shows nothing.
ButtonLooks looksOf(SourceBuild& build, const SourceCharacter& character, const SourceValue& value) {
    allowOnly(value, {"up", "over", "down"});
    const auto look = [&](const SourceValue& name) {
        if (name.kind == SourceValue::Kind::null) return noCharacter;
        const SourceCharacter& shown = placedIn(build, &character, name);
        using Kind = SourceCharacter::Kind;
        if (shown.kind == Kind::button || shown.kind == Kind::commandButton)
            fail(name, "\"" + name.text + "\" is a button; buttons show shapes, sprites and text fields");
        return shown.id;
    };
    ButtonLooks looks;
    looks.up = look(memberOf(value, "up"));
    const SourceValue *over = value.find("over"), *down = value.find("down");
    looks.over = over ? look(*over) : looks.up;
    looks.down = down ? look(*down) : looks.over;
    return looks;
}

ButtonCondition conditionOf(const SourceValue& value, const ReadSourceFile& readFile) {
    allowOnly(value, {"focusLost", "focusGained", "focusedKey", "key", "code"});
    ButtonCondition condition;
    condition.focusLost = isSet(value, "focusLost");
    condition.focusGained = isSet(value, "focusGained");
    if (const SourceValue* key = value.find("focusedKey")) condition.focusedKey = keyOf(*key);
    if (const SourceValue* key = value.find("key")) condition.key = keyOf(*key);
    if (!condition.focusLost && !condition.focusGained && !condition.focusedKey && !condition.key)
        fail(value, "a condition names at least one of focusLost, focusGained, focusedKey, key");
    condition.code = codeOf(memberOf(value, "code"), readFile);
    return condition;
}

Rect boundsOf(const SourceValue& value) {
    const auto& sides = listOf(value);
    if (sides.size() != 4) fail(value, "bounds are [left, top, right, bottom] in pixels");
    const auto side = [&sides](std::size_t i, std::int64_t least) {
        return static_cast<std::int16_t>(integerOf(sides[i], least, 32767));
    };
    Rect bounds{.xMin = side(0, -32768), .yMin = side(1, -32768)};
    bounds.xMax = side(2, bounds.xMin);
    bounds.yMax = side(3, bounds.yMin);
    return bounds;
}

}  // namespace

void defineSound(SourceBuild& build, const SourceCharacter& character) {
    const SourceValue& value = *character.value;
    allowOnly(value, {"sound", "format", "rateCode", "flag1", "flag2", "sampleValue", "channelValue", "identifier"});
    const SourceValue& data = memberOf(value, "sound");
    const SoundRecord record{.id = character.id,
                             .sampleValue = static_cast<std::uint16_t>(wholeOr(value, "sampleValue", 65535)),
                             .format = byteOr(value, "format", 15),
                             .rateCode = byteOr(value, "rateCode", 3),
                             .flag1 = isSet(value, "flag1"),
                             .flag2 = isSet(value, "flag2"),
                             .channelValue = byteOr(value, "channelValue"),
                             .data = dataOf(data, build.readFile)};
    build.records.push_back(sound(record));
}

void defineButton(SourceBuild& build, const SourceCharacter& character) {
    const SourceValue& value = *character.value;
    allowOnly(value, {"button", "conditions", "identifier"});
    const ButtonLooks looks = looksOf(build, character, memberOf(value, "button"));
    std::vector<ButtonCondition> conditions;
    if (const SourceValue* list = value.find("conditions"))
        for (const SourceValue& condition : listOf(*list)) conditions.push_back(conditionOf(condition, build.readFile));
    build.records.push_back(written(value, [&] { return button(character.id, looks, conditions); }));
}

void defineCommandButton(SourceBuild& build, const SourceCharacter& character) {
    const SourceValue& value = *character.value;
    allowOnly(value, {"commandButton", "key", "commands", "identifier"});
    const ButtonLooks looks = looksOf(build, character, memberOf(value, "commandButton"));
    const std::uint8_t key = keyOf(memberOf(value, "key"));
    const SourceValue& list = memberOf(value, "commands");
    const Bytes commands = compileCommands(list, build, {.eventNeeded = false});
    constexpr std::size_t mostCommandBytes = 245;  // the record's length is one byte
    if (commands.size() > mostCommandBytes)
        fail(list, "too large for the format: these commands take " + std::to_string(commands.size()) +
                       " bytes, of at most " + std::to_string(mostCommandBytes));
    build.records.push_back(commandButton(character.id, looks, key, commands));
}

void defineTextField(SourceBuild& build, const SourceCharacter& character) {
    const SourceValue& value = *character.value;
    allowOnly(value,
              {"textField", "text", "variable", "colour", "flags", "extraValue", "values", "value4", "identifier"});
    constexpr std::size_t mostText = 255;
    TextFieldRecord field;
    field.id = character.id;
    field.bounds = boundsOf(memberOf(value, "textField"));
    if (const SourceValue* text = value.find("text")) field.text = contentTextOf(*text, mostText);
    if (const SourceValue* variable = value.find("variable")) field.variable = contentTextOf(*variable, mostText);
    if (const SourceValue* colour = value.find("colour")) field.colour = colourOf(*colour);
    field.flags = static_cast<std::uint16_t>(wholeOr(value, "flags", 65535));
    constexpr unsigned presenceFlags = 0x300;
    if (field.flags & presenceFlags)
        fail(*value.find("flags"), "bits 256 and 512 say that extraValue and variable are there; they set themselves");
    if (value.find("extraValue")) field.extraValue = static_cast<std::uint16_t>(wholeOr(value, "extraValue", 65535));
    if (const SourceValue* values = value.find("values")) {
        if (listOf(*values).size() != field.values.size()) fail(*values, "three numbers belong here");
        for (std::size_t i = 0; i < field.values.size(); ++i)
            field.values[i] = static_cast<std::uint8_t>(integerOf(values->items[i], 0, 255));
    }
    field.value4 = byteOr(value, "value4");
    addWhole(build, value, textField(field));
}

void defineCompressionTable(SourceBuild& build, const SourceCharacter& character) {
    const SourceValue& value = *character.value;
    allowOnly(value, {"compressionTable", "identifier"});
    const Bytes description = dataOf(memberOf(value, "compressionTable"), build.readFile);
    addWhole(build, value, written(value, [&] { return compressionTable(character.id, description); }));
}

}  // namespace qel::author
