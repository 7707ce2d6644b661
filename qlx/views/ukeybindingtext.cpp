// The text side of CKeyBindings: reading and writing its file.

#include <algorithm>

#include "basekit/cmn/cmn_string.h"
#include "basekit/sys/sys_file.h"
#include "newfilelibs/daw/daw_command.h"
#include "newfilelibs/daw/daw_keynames.h"
#include "qlx/views/ukeybindings.h"

namespace {

constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";
constexpr std::string_view kNothing = "-";
constexpr std::string_view kPressedNames[] = {"<Cmd>", "<Opt>", "<Ctrl>", "<Shift>", "<Focus>"};
constexpr std::string_view kEitherNames[] = {"[Cmd]", "[Opt]", "[Ctrl]", "[Shift]"};
constexpr int kFocus = 4; // the place of <Focus> among the names

/// Why a line cannot be used, on its way to where the line is kept.
struct LineError {
    std::size_t column; // from 0
    std::string reason;
};

struct Field {
    std::string text;
    std::size_t column = 0; // from 0
    bool isQuoted = false;
    [[nodiscard]] bool IsNothing() const { return !isQuoted && text == kNothing; }
};

bool IsBlank(char c) { return c == ' ' || c == '\t'; }

int HexValue(char c) {
    if (c >= '0' && c <= '9')
        return c - '0';
    if (c >= 'A' && c <= 'F')
        return c - 'A' + 10;
    return c >= 'a' && c <= 'f' ? c - 'a' + 10 : -1;
}

// Writing

std::string Quoted(std::string_view text) {
    std::string quoted = "\"";
    for (const char c : text) {
        const auto byte = static_cast<unsigned char>(c);
        if (c == '"' || c == '\\') {
            quoted += '\\';
            quoted += c;
        } else if (c == '\t') {
            quoted += "\\t";
        } else if (c == '\n') {
            quoted += "\\n";
        } else if (c == '\r') {
            quoted += "\\r";
        } else if (byte < 0x20 || byte == 0x7F) {
            quoted += "\\x";
            quoted += "0123456789ABCDEF"[byte >> 4];
            quoted += "0123456789ABCDEF"[byte & 0xF];
        } else {
            quoted += c;
        }
    }
    return quoted += '"';
}

/// A field as it stands in a line: in quotes only where it would be read as something else.
std::string FieldText(std::string_view text) {
    const auto isSpecial = [](char c) {
        const auto byte = static_cast<unsigned char>(c);
        return byte <= 0x20 || byte == 0x7F || c == '"' || c == '\\';
    };
    const bool isPlain = !text.empty() && text != kNothing && text[0] != '#' &&
                         std::none_of(text.begin(), text.end(), isSpecial);
    return isPlain ? std::string(text) : Quoted(text);
}

std::string EitherText(const DAW_EventModifiers& pattern) {
    const int states[4] = {pattern.GetMenuCommandKeyState(), pattern.GetAlternateKeyState(),
                           pattern.GetMetaKeyState(), pattern.GetShiftKeyState()};
    std::string text;
    for (int i = 0; i < 4; ++i) {
        if (states[i] != 2)
            continue;
        if (!text.empty())
            text += '+';
        text += kEitherNames[i];
    }
    return text;
}

std::string BindingText(const CKeyBinding& binding, const std::string& comment) {
    const std::string pressed = binding.mPattern->GetKeyModifiersSaveFileString();
    const std::string either = EitherText(*binding.mPattern);
    const std::string key = DAW_KeyCodeToName(binding.mKeyCode);
    std::string text = pressed.empty() ? std::string(kNothing) : pressed;
    text += '\t';
    text += either.empty() ? std::string(kNothing) : either;
    // The minus key is the one field in which "-" means itself.
    text += '\t' + (key == kNothing ? key : FieldText(key));
    text += '\t' + FieldText(binding.mCommandName);
    if (binding.mContext != CKeyBinding::kEverywhere)
        text += '\t' + FieldText(Cmn_IDToString(binding.mContext));
    if (!comment.empty())
        text += '\t' + comment;
    return text;
}

// Reading

/// Takes a line apart into its fields.
class FieldReader {
  public:
    explicit FieldReader(std::string_view line) : mLine(line) {}

    /// Moves to the next field; false at the end of the line.
    bool Next(Field& field) {
        while (mPosition < mLine.size() && IsBlank(mLine[mPosition]))
            ++mPosition;
        if (mPosition == mLine.size())
            return false;
        field = Field();
        field.column = mPosition;
        if (mLine[mPosition] == '"')
            ReadQuoted(field);
        else
            while (mPosition < mLine.size() && !IsBlank(mLine[mPosition]))
                field.text += mLine[mPosition++];
        return true;
    }
    [[nodiscard]] std::string_view From(std::size_t column) const { return mLine.substr(column); }
    [[nodiscard]] std::size_t GetPosition() const { return mPosition; }

  private:
    void ReadQuoted(Field& field) {
        field.isQuoted = true;
        for (++mPosition;; ++mPosition) {
            if (mPosition >= mLine.size())
                throw LineError{field.column, "the quote is not closed"};
            if (mLine[mPosition] == '"')
                break;
            field.text += mLine[mPosition] == '\\' ? ReadEscape() : mLine[mPosition];
        }
        if (++mPosition < mLine.size() && !IsBlank(mLine[mPosition]))
            throw LineError{mPosition, "a blank is missing after the quote"};
    }

    /// Reads what follows a backslash and stops at its last character.
    char ReadEscape() {
        const std::size_t start = mPosition++;
        const char c = mPosition < mLine.size() ? mLine[mPosition] : '\0';
        switch (c) {
        case '"':
        case '\\':
            return c;
        case 't':
            return '\t';
        case 'n':
            return '\n';
        case 'r':
            return '\r';
        case 'x':
            if (mPosition + 2 < mLine.size()) {
                const int high = HexValue(mLine[mPosition + 1]);
                const int low = HexValue(mLine[mPosition + 2]);
                if (high >= 0 && low >= 0) {
                    mPosition += 2;
                    return static_cast<char>(high * 16 + low);
                }
            }
            throw LineError{start, "\\x needs two hexadecimal digits"};
        default:
            throw LineError{start, "unknown escape: use \\\" \\\\ \\t \\n \\r or \\x"};
        }
    }

    std::string_view mLine;
    std::size_t mPosition = 0;
};

/// Puts the names that a field lists into states: name i sets states[i] to state.
void ReadNames(const Field& field, const std::string_view* names, int count, int state,
               const int (&notPressed)[5], int (&states)[5]) {
    if (field.IsNothing())
        return;
    for (std::size_t start = 0; start <= field.text.size();) {
        const std::size_t end = std::min(field.text.find('+', start), field.text.size());
        const std::string part = field.text.substr(start, end - start);
        const std::size_t column = field.column + start;
        const auto name = std::find(names, names + count, part);
        if (part.empty())
            throw LineError{column, "a modifier is missing"};
        if (name == names + count)
            throw LineError{column, "unknown modifier " + part};
        const auto place = name - names;
        if (states[place] == state && notPressed[place] != state)
            throw LineError{column, "the modifier " + part + " stands here twice"};
        if (states[place] != notPressed[place])
            throw LineError{column, "the key of " + part + " is listed as pressed already"};
        states[place] = state;
        start = end + 1;
    }
}

Cmn_AliasedRefCountPtr<DAW_EventModifiers> ReadPattern(const Field& pressed, const Field& either) {
    const int start[5] = {0, 0, 0, 0, kDAW_KeyboardFocus_Either};
    int states[5] = {0, 0, 0, 0, kDAW_KeyboardFocus_Either};
    // <Focus> is the one name that stands for state 0, so it is looked for first.
    ReadNames(pressed, kPressedNames, 5, 1, start, states);
    const bool isForFocus = states[kFocus] == 1;
    ReadNames(either, kEitherNames, 4, 2, start, states);
    return DAW_EventModifiers::New(
        static_cast<DAW_EMenuCommandKeyState>(states[0]),
        static_cast<DAW_EAlternateKeyState>(states[1]), static_cast<DAW_EMetaKeyState>(states[2]),
        static_cast<DAW_EShiftKeyState>(states[3]), kDAW_LeftButton_NotPressed,
        kDAW_MiddleButton_NotPressed, kDAW_RightButton_NotPressed,
        /*scrollDirectionInverted*/ false,
        isForFocus ? kDAW_KeyboardFocus_Commands : kDAW_KeyboardFocus_Either);
}

/// A binding as its line has it.
struct ParsedLine {
    bool isBinding = false; // else a comment or an empty line
    CKeyBinding binding;
    std::size_t commandColumn = 0;
    std::string comment;
};

void ReadContext(const Field& field, CKeyBinding& binding) {
    if (field.IsNothing())
        return;
    if (!Cmn_ParseID(field.text, binding.mContext))
        throw LineError{field.column, "the context is not a four-character code"};
    if (binding.mContext == CKeyBinding::kEverywhere)
        throw LineError{field.column, "0 is no view's identifier"};
}

ParsedLine ParseLine(std::string_view line) {
    ParsedLine parsed;
    FieldReader reader(line);
    Field fields[5];
    int count = 0;
    Field field;
    while (reader.Next(field)) {
        const bool mayBeComment = count == 0 || count >= 4;
        if (mayBeComment && !field.isQuoted && field.text[0] == '#') {
            parsed.comment = std::string(reader.From(field.column));
            break;
        }
        if (count == 5)
            throw LineError{field.column, "there is something behind the context"};
        fields[count++] = field;
    }
    if (count == 0)
        return parsed;
    if (count < 4)
        throw LineError{reader.GetPosition(),
                        "a binding needs modifiers, either, a key and a command"};
    parsed.binding.mPattern = ReadPattern(fields[0], fields[1]);
    if (!DAW_KeyCodeFromName(fields[2].text, parsed.binding.mKeyCode))
        throw LineError{fields[2].column, "unknown key " + fields[2].text};
    if (parsed.binding.mKeyCode == kDAW_Key_None)
        throw LineError{fields[2].column, "there is no key with the code 0"};
    if (fields[3].text.empty() || fields[3].IsNothing())
        throw LineError{fields[3].column, "the command has no name"};
    parsed.binding.mCommandName = fields[3].text;
    parsed.commandColumn = fields[3].column;
    if (count == 5)
        ReadContext(fields[4], parsed.binding);
    parsed.isBinding = true;
    return parsed;
}

} // namespace

std::string CKeyBindingProblem::AsText() const {
    return mFile + ":" + std::to_string(mLine) + ":" + std::to_string(mColumn) + ": " + mReason;
}

bool CKeyBindings::AddBinding(const CKeyBinding& binding, std::string* reason) {
    const std::string refusal = GetRefusal(binding);
    if (reason)
        *reason = refusal;
    if (!refusal.empty())
        return false;
    Line line;
    line.mText = BindingText(binding, std::string());
    line.mEnd = mLines.empty() || mLines.front().mEnd != "\r\n" ? "\n" : "\r\n";
    line.mIsBinding = true;
    // A last line that had no end gets one.
    if (!mLines.empty() && mLines.back().mEnd.empty())
        mLines.back().mEnd = line.mEnd;
    else if (!mLines.empty() && mLines.back().mEnd == "\r")
        mLines.back().mEnd = "\r\n";
    mLines.push_back(std::move(line));
    CKeyBinding own = binding;
    own.mPattern = DAW_EventModifiers::New(*binding.mPattern);
    Append(std::move(own));
    return true;
}

bool CKeyBindings::ReplaceBinding(std::size_t index, const CKeyBinding& binding,
                                  std::string* reason) {
    std::string refusal = GetRefusal(binding);
    if (refusal.empty() && index >= mBindings.size())
        refusal = "there is no such binding";
    if (reason)
        *reason = refusal;
    if (!refusal.empty())
        return false;
    Line& line = mLines[LineIndex(index)];
    line.mText = BindingText(binding, line.mComment);
    line.mCommandColumn = 0;
    CKeyBinding own = binding;
    own.mPattern = DAW_EventModifiers::New(*binding.mPattern);
    mBindings[index] = std::move(own);
    Reindex();
    return true;
}

void CKeyBindings::ReadLine(Line& line) {
    try {
        ParsedLine parsed = ParseLine(line.mText);
        line.mIsBinding = parsed.isBinding;
        line.mComment = std::move(parsed.comment);
        line.mCommandColumn = static_cast<int>(parsed.commandColumn) + 1;
        if (parsed.isBinding)
            Append(std::move(parsed.binding));
    } catch (const LineError& error) {
        line.mReason = error.reason;
        line.mColumn = static_cast<int>(error.column) + 1;
    }
}

bool CKeyBindings::ReadText(std::string_view text, const std::string& fileName) {
    RemoveAll();
    mFileName = fileName;
    mHasByteOrderMark = text.substr(0, kByteOrderMark.size()) == kByteOrderMark;
    if (mHasByteOrderMark)
        text.remove_prefix(kByteOrderMark.size());
    bool allRead = true;
    while (!text.empty()) {
        const std::size_t feed = text.find('\n');
        const std::size_t next = feed == std::string_view::npos ? text.size() : feed + 1;
        std::size_t end = feed == std::string_view::npos ? text.size() : feed;
        if (end > 0 && text[end - 1] == '\r')
            --end;
        Line line;
        line.mText = std::string(text.substr(0, end));
        line.mEnd = std::string(text.substr(end, next - end));
        ReadLine(line);
        allRead = allRead && line.mReason.empty();
        mLines.push_back(std::move(line));
        text.remove_prefix(next);
    }
    return allRead;
}

std::string CKeyBindings::WriteText() const {
    std::string text(mHasByteOrderMark ? kByteOrderMark : std::string_view());
    for (const Line& line : mLines) {
        text += line.mText;
        text += line.mEnd;
    }
    return text;
}

bool CKeyBindings::ReadFile(const std::string& path) {
    return ReadText(Sys_File::ReadAll(Sys_FileLoc(path)), path);
}

void CKeyBindings::WriteFile(const std::string& path) const {
    Sys_SafeWriter::Replace(Sys_FileLoc(path), WriteText());
}

std::vector<CKeyBindingProblem> CKeyBindings::FindProblems() const {
    std::vector<CKeyBindingProblem> problems;
    std::size_t index = 0;
    for (std::size_t i = 0; i < mLines.size(); ++i) {
        const Line& line = mLines[i];
        const int number = static_cast<int>(i) + 1;
        if (!line.mReason.empty())
            problems.push_back({mFileName, number, line.mColumn, line.mReason});
        if (!line.mIsBinding)
            continue;
        const CKeyBinding& binding = mBindings[index];
        const int column = line.mCommandColumn ? line.mCommandColumn : 1;
        if (!DAW_CommandRegistry::FindCommandByUniquePersistedName(binding.mCommandName))
            problems.push_back(
                {mFileName, number, column, "unknown command " + binding.mCommandName});
        for (const std::size_t earlier : mByKeyCode.at(binding.mKeyCode)) {
            if (earlier < index && mBindings[earlier] == binding) {
                problems.push_back(
                    {mFileName, number, 1, "the same as line " + std::to_string(GetLine(earlier))});
                break;
            }
        }
        ++index;
    }
    return problems;
}
