#include "qlx/views/utypingcommand.h"

#include "qlx/views/uedittext.h"

QLX_DEFINE_CLASS(TTypingCommand, TCommand)

TTypingCommand::TTypingCommand() = default;
TTypingCommand::~TTypingCommand() = default;

TObject* TTypingCommand::Clone() {
    auto* copy = static_cast<TTypingCommand*>(TCommand::Clone());
    if (!copy)
        return nullptr;
    new (&copy->mOther) QLX_TextEditing(mOther);
    return copy;
}

void TTypingCommand::ITypingCommand(TEditText* field, const QLX_TextEditing& before) {
    ICommand(kNumber, field, /*canUndo*/ true, /*causesChange*/ true, nullptr);
    SetCommandName("Typing");
    mField = field;
    mOther = before;
}

// The first time the field has the text already: the key that made the command went into it.
void TTypingCommand::DoIt() {
    if (!mFirst && mField)
        Exchange();
    mFirst = false;
}

void TTypingCommand::UndoIt() {
    if (!mField)
        return;
    // What is typed from here on is a change of its own.
    mField->mTyping = nullptr;
    Exchange();
}

void TTypingCommand::Exchange() {
    mField->mEditing.SwapContent(mOther);
    mField->Edited();
}

void TTypingCommand::Completed() {
    if (mField && mField->mTyping == this)
        mField->mTyping = nullptr;
}

bool TTypingCommand::ShouldTraceCommand() {
    return false; // what a user types is nobody's business
}

std::int64_t TTypingCommand::GetMemoryFootPrint() {
    return static_cast<std::int64_t>(sizeof *this + mOther.GetText().size());
}
