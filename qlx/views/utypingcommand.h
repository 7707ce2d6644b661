// The typing since the last undo as one command: text and selection before and after.
#pragma once

#include "qlx/views/ucommand.h"
#include "qlx/views/utextediting.h"

class TEditText;

/// Made by a text field with its first change and kept as the field's last command; every further
/// change belongs to it and costs nothing: the field has the text after, the command the one
/// before, and undoing exchanges them. The context is the field itself.
class QLX_API TTypingCommand : public TCommand {
  public:
    QLX_DECLARE_CLASS(TTypingCommand);
    static constexpr std::int32_t kNumber = 0x54797065; // a number of no menu item

    TTypingCommand();
    ~TTypingCommand() override;
    void ITypingCommand(TEditText* field, const QLX_TextEditing& before);
    [[nodiscard]] TObject* Clone() override;
    void DoIt() override;
    void UndoIt() override;
    void Completed() override;
    bool ShouldTraceCommand() override;
    std::int64_t GetMemoryFootPrint() override;

  private:
    void Exchange();

    TEditText* mField = nullptr; // not owned; the context, which frees this command with itself
    QLX_TextEditing mOther; // what the field does not show: the text from before, or the undone one
    bool mFirst = true;
};
