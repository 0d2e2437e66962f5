#include "author/action_forms.h"

#include <algorithm>

namespace qel::author {
namespace {

constexpr ActionForm forms[] = {
    {Action::end, "End"},
    {Action::nextFrame, "NextFrame"},
    {Action::prevFrame, "PrevFrame"},
    {Action::play, "Play"},
    {Action::stop, "Stop"},
    {Action::stopSounds, "StopSounds"},
    {Action::add, "Add"},
    {Action::subtract, "Subtract"},
    {Action::multiply, "Multiply"},
    {Action::divide, "Divide"},
    {Action::equals, "Equals"},
    {Action::less, "Less"},
    {Action::logicalAnd, "And"},
    {Action::logicalOr, "Or"},
    {Action::logicalNot, "Not"},
    {Action::stringEquals, "StringEquals"},
    {Action::stringLength, "StringLength"},
    {Action::stringExtract, "StringExtract"},
    {Action::pop, "Pop"},
    {Action::toInteger, "ToInteger"},
    {Action::getVariable, "GetVariable"},
    {Action::setVariable, "SetVariable"},
    {Action::setTarget2, "SetTarget2"},
    {Action::stringAdd, "StringAdd"},
    {Action::getProperty, "GetProperty"},
    {Action::setProperty, "SetProperty"},
    {Action::duplicateRequest, "DuplicateRequest"},
    {Action::removeRequest, "RemoveRequest"},
    {Action::trace, "Trace"},
    {Action::dragRequest, "DragRequest"},
    {Action::stringLess, "StringLess"},
    {Action::randomNumber, "RandomNumber"},
    {Action::charToAscii, "CharToAscii"},
    {Action::asciiToChar, "AsciiToChar"},
    {Action::getTime, "GetTime"},
    {Action::wideCharToAscii, "WideCharToAscii"},
    {Action::wideAsciiToChar, "WideAsciiToChar"},
    {Action::deleteVariable, "Delete"},
    {Action::defineLocal, "DefineLocal"},
    {Action::callFunction, "CallFunction"},
    {Action::returnValue, "Return"},
    {Action::modulo, "Modulo"},
    {Action::newObject, "NewObject"},
    {Action::defineLocal2, "DefineLocal2"},
    {Action::initArray, "InitArray"},
    {Action::typeOf, "TypeOf"},
    {Action::targetPath, "TargetPath"},
    {Action::add2, "Add2"},
    {Action::less2, "Less2"},
    {Action::equals2, "Equals2"},
    {Action::toNumber, "ToNumber"},
    {Action::toText, "ToString"},
    {Action::pushDuplicate, "PushDuplicate"},
    {Action::stackSwap, "StackSwap"},
    {Action::getMember, "GetMember"},
    {Action::setMember, "SetMember"},
    {Action::increment, "Increment"},
    {Action::decrement, "Decrement"},
    {Action::callMethod, "CallMethod"},
    {Action::bitAnd, "BitAnd"},
    {Action::bitOr, "BitOr"},
    {Action::bitXor, "BitXor"},
    {Action::bitLeftShift, "BitLShift"},
    {Action::bitRightShift, "BitRShift"},
    {Action::bitUnsignedRightShift, "BitURShift"},
    {Action::gotoFrame, "GotoFrame", {OperandForm::word}},
    {Action::getUrl, "GetURL", {OperandForm::text, OperandForm::text}},
    {Action::storeRegister, "StoreRegister", {OperandForm::byte}},
    {Action::constantPool, "ConstantPool", {OperandForm::constants}},
    {Action::waitForFrame, "WaitForFrame", {OperandForm::word, OperandForm::byte}},
    {Action::setTarget, "SetTarget", {OperandForm::text}},
    {Action::gotoLabel, "GoToLabel", {OperandForm::text}},
    {Action::waitForFrame2, "WaitForFrame2", {OperandForm::byte}},
    {Action::with, "With", {OperandForm::skip}},
    {Action::push, "Push", {OperandForm::entries}},
    {Action::jump, "Jump", {OperandForm::jump}},
    {Action::getUrl2, "GetURL2", {OperandForm::byte}},
    {Action::defineFunction, "DefineFunction", {OperandForm::function}},
    {Action::branchIf, "If", {OperandForm::jump}},
    {Action::call, "Call"},
    {Action::gotoFrame2, "GotoFrame2", {OperandForm::byte}},
};
static_assert(std::ranges::is_sorted(forms, {}, &ActionForm::action), "actionOf searches by halves");

}  // namespace

std::span<const ActionForm> actionForms() { return forms; }

const ActionForm* actionOf(std::uint8_t code) {
    const auto found = std::ranges::lower_bound(forms, Action{code}, {}, &ActionForm::action);
    return found != std::end(forms) && found->action == Action{code} ? found : nullptr;
}

const ActionForm* actionNamed(std::string_view name) {
    const auto found = std::ranges::find(forms, name, &ActionForm::name);
    return found != std::end(forms) ? found : nullptr;
}

}  // namespace qel::author
