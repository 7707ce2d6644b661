// Key bindings: which key stroke performs which named command, and where; and the text file in
// which users keep them.
#pragma once

#include <functional>
#include <map>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "basekit/cmn/cmn_refcount.h"
#include "newfilelibs/daw/daw_eventmodifiers.h"
#include "newfilelibs/daw/daw_types.h"
#include "qlx/foundation/qlx_fwd.h"

class DAW_Command;
class DAW_KeyboardState;
class DAW_KeyEvent;

/// One key stroke bound to a command.
struct QLX_API CKeyBinding {
    /// Holds everywhere, as against in a view.
    static constexpr std::uint32_t kEverywhere = 0;

    DAW_EKeyCode mKeyCode = kDAW_Key_None;
    /// What the modifiers have to be; state 2 matches either. The bindings keep a copy of their
    /// own.
    Cmn_AliasedRefCountPtr<DAW_EventModifiers> mPattern;
    /// The identifier of the view in which the keyboard focus has to be, or kEverywhere.
    std::uint32_t mContext = kEverywhere;
    /// The unique persisted name of a DAW_Command.
    std::string mCommandName;

    /// The same key, pattern, context and command.
    friend QLX_API bool operator==(const CKeyBinding& a, const CKeyBinding& b);
};

/// Something in a key-binding file that the reader could not use, or that will have no effect.
struct QLX_API CKeyBindingProblem {
    std::string mFile;
    int mLine = 0;   ///< from 1
    int mColumn = 0; ///< from 1, in bytes
    std::string mReason;
    /// "keys.txt:12:5: unknown modifier <Foo>".
    [[nodiscard]] std::string AsText() const;
};

/// Two bindings of different commands that one key stroke can meet at the same place.
struct QLX_API CKeyBindingConflict {
    std::size_t mWinner = 0; ///< index of the binding that is performed
    std::size_t mLoser = 0;
    /// How the winner is found: its context is the inner one, its pattern leaves fewer keys open,
    /// or only its place before the other one decides.
    enum class EDecision { InnerContext, NarrowerPattern, EarlierPlace } mDecision;
};

/// All key bindings of an application, in the order in which they stand in their file.
///
/// The file has one binding a line, fields separated by blanks or tabs:
///
///     modifiers  either  key  command  [context]  [# comment]
///     <Cmd>+<Shift>  [Opt]  S  File.SaveAs
///     <Focus>  -  Space  "Play or stop"  edit
///
/// modifiers is what DAW_EventModifiers::GetKeyModifiersSaveFileString writes; without `<Focus>`
/// the binding holds in and out of commands-focus mode. either lists the keys that may be pressed
/// or not: [Cmd] [Opt] [Ctrl] [Shift], joined by "+". Empty fields are written "-". Keys are named
/// as in daw_keynames, contexts by Cmn_IDToString. A field with blanks in it stands in double
/// quotes, where
/// `\"` `\\` `\t` `\n` `\r` and `\x` with two hexadecimal digits stand for characters. Lines that
/// begin with # are comments. Everything that the reader cannot use is reported and kept for the
/// next writing, byte for byte. User-interface thread.
class QLX_API CKeyBindings {
  public:
    CKeyBindings();
    ~CKeyBindings();
    CKeyBindings(const CKeyBindings&) = delete;
    CKeyBindings& operator=(const CKeyBindings&) = delete;

    // Bindings

    /// Why a binding cannot be kept in the file, in words; empty when it can. A pattern must have
    /// key states 0 to 2, no mouse button, no inverted scroll direction, and a focus state of 0
    /// (only in commands-focus mode) or 2 (in both); 1 has no text form.
    [[nodiscard]] static std::string GetRefusal(const CKeyBinding& binding);

    /// Appends a binding. False, and why, when it is refused.
    bool AddBinding(const CKeyBinding& binding, std::string* reason = nullptr);
    /// Puts a binding into the place of another one and keeps that line's comment.
    bool ReplaceBinding(std::size_t index, const CKeyBinding& binding,
                        std::string* reason = nullptr);
    /// Takes a binding out, with its line. An index out of range is ignored.
    void RemoveBinding(std::size_t index);
    /// Takes out everything: bindings, comments and lines that could not be used.
    void RemoveAll();

    [[nodiscard]] std::size_t GetBindingCount() const { return mBindings.size(); }
    [[nodiscard]] const CKeyBinding& GetBinding(std::size_t index) const;
    /// The line on which a binding stands, from 1.
    [[nodiscard]] int GetLine(std::size_t index) const;

    // Contexts

    /// Says that the inner view lies in the outer one, so that the focus can be in both at once.
    /// Contexts that are not said to be nested are never live together. False for a nesting that
    /// would put a view into itself.
    bool DeclareNesting(std::uint32_t inner, std::uint32_t outer);

    /// The pairs that one stroke can meet together, by the line of the earlier one. Commands need
    /// not be registered for this.
    [[nodiscard]] std::vector<CKeyBindingConflict> FindConflicts() const;
    /// "keys.txt:12: <Cmd> S performs A; the same stroke on line 15 performs B (inner context)".
    [[nodiscard]] std::string ConflictAsText(const CKeyBindingConflict& conflict) const;

    // Text

    /// Replaces everything by a text; the name stands in problems. Answers whether every line could
    /// be used.
    bool ReadText(std::string_view text, const std::string& fileName);
    [[nodiscard]] std::string WriteText() const;
    /// The same with a file in UTF-8. Both throw Sys_FileError; a failed reading leaves the
    /// bindings as they were, a failed writing the file.
    bool ReadFile(const std::string& path);
    void WriteFile(const std::string& path) const;
    /// What is wrong with the text as it is now: lines that could not be used, bindings of commands
    /// that are not registered (yet), bindings that repeat an earlier one. By line.
    [[nodiscard]] std::vector<CKeyBindingProblem> FindProblems() const;

    // Key strokes

    /// The binding that a stroke performs while the target is the given handler, null for none. Of
    /// several, one whose context lies further in wins, then one whose pattern leaves fewer keys
    /// open, then the earlier one. Bindings of commands that are not registered are passed over.
    [[nodiscard]] const CKeyBinding* Find(DAW_EKeyCode keyCode, const DAW_EventModifiers& modifiers,
                                          TEventHandler* target) const;

    /// The binding of a command to show to the user, by its unique persisted name: the first one
    /// that performs it while the target is the given handler, one that holds everywhere before one
    /// of a context. Null when no stroke does.
    [[nodiscard]] const CKeyBinding* FindOf(const std::string& commandName,
                                            TEventHandler* target) const;
    /// Called after every change of any bindings: menus that are open show them. Null for nobody.
    /// Returns the previous one.
    using ChangeListener = void (*)();
    static ChangeListener SetChangeListener(ChangeListener listener);
    /// Tells the listener: bindings were changed, or others put in their place.
    static void TellOfChange();

    /// Whether the key is in any binding, or held for a command. Keys of which this is false need
    /// not be delivered through the bindings. Allocates nothing.
    [[nodiscard]] bool Concerns(DAW_EKeyCode keyCode) const;

    /// Whether a stroke goes to the target before a binding gets it: a key without Ctrl, Alt or the
    /// Windows key while a text or numeric field is the target.
    [[nodiscard]] static bool TargetComesFirst(TEventHandler* target,
                                               const DAW_EventModifiers& modifiers);
    /// Counts the handlers of a class, and of those derived from it, as text fields. "TEditText"
    /// and "TNumericEntryText" are known from the start.
    static void AddTextFieldClass(const std::string& className);

    /// The road of a key down: sends it to the target and performs what is bound to it, in the
    /// order that TargetComesFirst gives, until one of them takes it. sendToTarget delivers the key
    /// to the target and answers whether it was handled. A bound command gets DoCommandStart (not
    /// again for a repeated key) and DoCommand with the modifiers and the keyboard's state, by
    /// which it knows the state of its options. A command that is disabled does not take the key.
    /// Answers whether anybody took it.
    bool DeliverKeyDown(const DAW_KeyEvent& key,
                        const Cmn_AliasedRefCountPtr<DAW_EventModifiers>& modifiers,
                        const Cmn_RefCountPtr<DAW_KeyboardState>& keyboard, TEventHandler* target,
                        const std::function<bool()>& sendToTarget);
    /// Tells the command that the key performed when it went down that it is up: DoCommandEnd. The
    /// key up itself goes to the target by its own road. Answers whether there was such a command.
    bool DeliverKeyUp(const DAW_KeyEvent& key,
                      const Cmn_AliasedRefCountPtr<DAW_EventModifiers>& modifiers,
                      const Cmn_RefCountPtr<DAW_KeyboardState>& keyboard);
    /// Ends every command whose key is held, for when the application will not see the keys go up:
    /// it was deactivated.
    void ReleaseAllKeys();

  private:
    /// A line of the text as it was read or will be written.
    struct Line {
        std::string mText;      // without its end
        std::string mEnd;       // "\n" or "\r\n"; of a last line also "" or "\r"
        std::string mComment;   // behind a binding
        std::string mReason;    // why it could not be used
        int mColumn = 0;        // where
        int mCommandColumn = 0; // of a binding
        bool mIsBinding = false;
    };
    struct Held {
        DAW_EKeyCode mKeyCode;
        std::string mCommandName;
        DAW_Command* mCommand; // not owned; compared only
    };

    [[nodiscard]] std::size_t LineIndex(std::size_t binding) const;
    [[nodiscard]] bool CanBeLiveTogether(std::uint32_t a, std::uint32_t b) const;
    [[nodiscard]] bool IsInside(std::uint32_t inner, std::uint32_t outer) const;
    [[nodiscard]] CKeyBindingConflict Decide(std::size_t earlier, std::size_t later) const;
    void Append(CKeyBinding binding);
    void ReadLine(Line& line);
    void Reindex();
    bool Perform(const std::string& commandName, const DAW_KeyEvent& key,
                 const Cmn_AliasedRefCountPtr<DAW_EventModifiers>& modifiers,
                 const Cmn_RefCountPtr<DAW_KeyboardState>& keyboard);
    bool EndHeld(DAW_EKeyCode keyCode, const Cmn_AliasedRefCountPtr<DAW_EventModifiers>& modifiers,
                 const Cmn_RefCountPtr<DAW_KeyboardState>& keyboard);

    std::string mFileName = "key bindings"; // for messages
    bool mHasByteOrderMark = false;
    std::vector<Line> mLines;
    std::vector<CKeyBinding> mBindings; // one for each line that is a binding, in their order
    std::unordered_map<std::uint32_t, std::vector<std::size_t>> mByKeyCode; // indices, rising
    std::multimap<std::uint32_t, std::uint32_t> mOuterOfInner;
    std::vector<Held> mHeld;
};
