#include "qlx/platform/testing/qlx_playscript.h"

#include <cerrno>
#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <optional>
#include <sstream>
#include <stdexcept>

#include "basekit/cmn/cmn_string.h"
#include "basekit/sys/sys_file.h"
#include "qlx/platform/testing/qlx_testdriver.h"
#include "qlx/views/qlx_keyboard.h"
#include "qlx/views/uapplication.h"
#include "qlx/views/uwindow.h"

namespace {

struct Word {
    enum EKind { kPlain, kText, kView } mKind;
    std::string mText;
    int mColumn; // from 1, in bytes
};

/// A mistake in a line.
struct Mistake {
    int mColumn;
    std::string mReason;
};

struct Line {
    int mNumber;
    std::vector<Word> mWords;
};

/// Where a step happens: a view's middle or a place.
struct Place {
    bool mIsView = false;
    std::uint32_t mView = 0;
    Cmn_Point<int> mPoint{0, 0};
};

// Words

class Splitter {
  public:
    explicit Splitter(std::string_view line) : mLine(line) {}

    std::vector<Word> Split() {
        std::vector<Word> words;
        for (;;) {
            while (mAt < mLine.size() && (mLine[mAt] == ' ' || mLine[mAt] == '\t'))
                ++mAt;
            if (mAt >= mLine.size() || mLine[mAt] == '#')
                return words;
            words.push_back(mLine[mAt] == '"'    ? Quoted('"', Word::kText)
                            : mLine[mAt] == '\'' ? Quoted('\'', Word::kView)
                                                 : Plain());
        }
    }

  private:
    Word Plain() {
        Word word{Word::kPlain, {}, static_cast<int>(mAt) + 1};
        while (mAt < mLine.size() &&
               std::string_view(" \t\"").find(mLine[mAt]) == std::string_view::npos)
            word.mText += mLine[mAt++];
        return word;
    }

    Word Quoted(char quote, Word::EKind kind) {
        Word word{kind, {}, static_cast<int>(mAt) + 1};
        for (++mAt; mAt < mLine.size() && mLine[mAt] != quote; ++mAt) {
            if (mLine[mAt] != '\\' || kind == Word::kView || mAt + 1 >= mLine.size()) {
                word.mText += mLine[mAt];
                continue;
            }
            const char escaped = mLine[++mAt];
            word.mText += escaped == 'n' ? '\n' : escaped == 't' ? '\t' : escaped;
        }
        if (mAt >= mLine.size())
            throw Mistake{word.mColumn, std::string("a closing ") + quote + " is missing"};
        ++mAt;
        return word;
    }

    std::string_view mLine;
    std::size_t mAt = 0;
};

// Arguments

class Arguments {
  public:
    explicit Arguments(const Line& line) : mLine(line) {}

    [[nodiscard]] bool HasMore() const { return mNext < mLine.mWords.size(); }

    const Word& Need(Word::EKind kind, const char* what) {
        if (!HasMore()) {
            const Word& last = mLine.mWords.back();
            throw Mistake{last.mColumn + static_cast<int>(last.mText.size()),
                          std::string(what) + " is expected"};
        }
        const Word& word = mLine.mWords[mNext];
        if (word.mKind != kind)
            throw Mistake{word.mColumn, std::string(what) + " is expected"};
        ++mNext;
        return word;
    }

    std::uint32_t View() {
        const Word& word = Need(Word::kView, "a view in single quotes");
        if (word.mText.size() != 4)
            throw Mistake{word.mColumn, "a view's identifier has four characters"};
        return Cmn_StringToID(word.mText);
    }

    std::string Text() { return Need(Word::kText, "a text in double quotes").mText; }

    double Number(const char* what) {
        const Word& word = Need(Word::kPlain, what);
        char* end = nullptr;
        errno = 0;
        const double number = std::strtod(word.mText.c_str(), &end);
        if (end == word.mText.c_str() || *end != '\0' || !std::isfinite(number))
            throw Mistake{word.mColumn, std::string(what) + " is expected"};
        return number;
    }

    Cmn_Point<int> Point() {
        const Word& word = Need(Word::kPlain, "a place (two numbers with a comma)");
        int x = 0;
        int y = 0;
        char rest = 0;
        if (std::sscanf(word.mText.c_str(), "%d,%d%c", &x, &y, &rest) != 2)
            throw Mistake{word.mColumn, "a place (two numbers with a comma) is expected"};
        return {x, y};
    }

    Place ViewOrPoint() {
        Place place;
        place.mIsView = HasMore() && mLine.mWords[mNext].mKind == Word::kView;
        if (place.mIsView)
            place.mView = View();
        else
            place.mPoint = Point();
        return place;
    }

    /// "Shift+Ctrl" and so on; none when there are no more words.
    std::uint32_t Modifiers() {
        std::uint32_t bits = 0;
        if (!HasMore())
            return bits;
        const Word& word = Need(Word::kPlain, "held keys");
        std::istringstream parts(word.mText);
        for (std::string part; std::getline(parts, part, '+');) {
            if (part == "Shift")
                bits |= kQLX_Modifier_Shift;
            else if (part == "Ctrl")
                bits |= kQLX_Modifier_Command;
            else if (part == "Alt")
                bits |= kQLX_Modifier_Option;
            else if (part == "Win")
                bits |= kQLX_Modifier_Control;
            else
                throw Mistake{word.mColumn, "\"" + part + "\" is none of Ctrl, Alt, Win, Shift"};
        }
        return bits;
    }

    void End() {
        if (HasMore())
            throw Mistake{mLine.mWords[mNext].mColumn, "nothing more is expected here"};
    }

  private:
    const Line& mLine;
    std::size_t mNext = 1; // behind the step's name
};

// Steps: each checks its arguments, then acts when there is a driver.

class Player {
  public:
    Player(QLX_TestDriver* driver, const std::string& name, QLX_PlayResult& result)
        : mDriver(driver), mName(name), mResult(result) {}

    /// Throws Mistake, and QLX_TestDriverError when it acts.
    void Play(const Line& line) {
        mLine = line.mNumber;
        const Word& word = line.mWords.front();
        const std::string& step = word.mText;
        Arguments arguments(line);
        if (word.mKind != Word::kPlain || !(Mouse(step, arguments) || Keyboard(step, arguments) ||
                                            Look(step, arguments) || Rest(step, arguments)))
            throw Mistake{word.mColumn, "\"" + step + "\" is no step"};
    }

  private:
    [[nodiscard]] Cmn_Point<int> Resolve(const Place& place) const {
        return place.mIsView ? mDriver->GetMiddle(place.mView) : place.mPoint;
    }

    bool Mouse(const std::string& step, Arguments& arguments) {
        if (step == "release") {
            arguments.End();
            if (mDriver)
                mDriver->Release();
            return true;
        }
        if (step == "drag") {
            const Cmn_Point<int> from = arguments.Point();
            const Cmn_Point<int> to = arguments.Point();
            const std::uint32_t modifiers = arguments.Modifiers();
            arguments.End();
            if (mDriver)
                mDriver->Drag(from, to, 8, modifiers);
            return true;
        }
        if (step == "wheel") {
            const Place place = arguments.ViewOrPoint();
            const double notches = arguments.Number("a number of notches");
            const std::uint32_t modifiers = arguments.Modifiers();
            arguments.End();
            if (mDriver)
                mDriver->Wheel(Resolve(place), notches, modifiers);
            return true;
        }
        if (step != "click" && step != "doubleclick" && step != "press" && step != "move" &&
            step != "rightclick")
            return false;
        const Place place = arguments.ViewOrPoint();
        const std::uint32_t modifiers = arguments.Modifiers();
        arguments.End();
        if (!mDriver)
            return true;
        const Cmn_Point<int> where = Resolve(place);
        if (step == "click")
            mDriver->Click(where, modifiers);
        else if (step == "rightclick")
            mDriver->Click(where, modifiers, kMouse_Right);
        else if (step == "doubleclick")
            mDriver->DoubleClick(where);
        else if (step == "press")
            mDriver->Press(where, modifiers);
        else
            mDriver->MoveTo(where);
        return true;
    }

    bool Keyboard(const std::string& step, Arguments& arguments) {
        if (step == "type") {
            const std::string text = arguments.Text();
            arguments.End();
            if (mDriver)
                mDriver->Type(text);
        } else if (step == "chord") {
            const std::string chord = arguments.Need(Word::kPlain, "a chord").mText;
            arguments.End();
            if (mDriver)
                mDriver->Chord(chord);
        } else if (step == "compose") {
            const std::string composing = arguments.Text();
            const std::string entered = arguments.Text();
            arguments.End();
            if (mDriver)
                mDriver->Compose(composing, entered);
        } else {
            return false;
        }
        return true;
    }

    bool Rest(const std::string& step, Arguments& arguments) {
        if (step == "step") {
            const double seconds = arguments.Number("a number of seconds");
            arguments.End();
            if (mDriver && seconds > 0)
                mDriver->Step(seconds);
        } else if (step == "resize") {
            const double width = arguments.Number("a width");
            const double height = arguments.Number("a height");
            arguments.End();
            if (mDriver)
                mDriver->ResizeWindow(Cmn_ClampTo<int>(width), Cmn_ClampTo<int>(height));
        } else if (step == "picture") {
            std::filesystem::path path = arguments.Text();
            arguments.End();
            if (path.is_relative())
                path = std::filesystem::path(mName).parent_path() / path;
            if (mDriver)
                mDriver->SavePicture(path.string());
        } else {
            return false;
        }
        return true;
    }

    bool Look(const std::string& step, Arguments& arguments) {
        if (step != "expect")
            return false;
        if (mDriver)
            ++mResult.mExpectations;
        std::string what = "value";
        if (const std::string kind = PeekPlain(arguments); !kind.empty())
            what = kind;
        const std::uint32_t view = arguments.View();
        if (what == "target") {
            arguments.End();
            if (mDriver)
                Compare("the target", Describe(gApplication->GetTarget()), Cmn_IDToString(view));
            return true;
        }
        if (what == "shown") {
            const std::string wanted = arguments.Need(Word::kPlain, "yes or no").mText;
            arguments.End();
            if (mDriver)
                Compare(Cmn_IDToString(view) + " shown",
                        mDriver->Find(view).IsShown() ? "yes" : "no", wanted);
            return true;
        }
        const std::string wanted = arguments.Text();
        arguments.End();
        if (!mDriver)
            return true;
        TAccessibleInfo info;
        mDriver->Find(view).GetAccessibleInfo(info);
        Compare(Cmn_IDToString(view) + (what == "name" ? " name" : ""),
                what == "name" ? info.mName : info.mValue, wanted);
        return true;
    }

    std::string PeekPlain(Arguments& arguments) {
        Arguments ahead = arguments;
        std::string kind;
        try {
            kind = ahead.Need(Word::kPlain, "").mText;
        } catch (const Mistake&) {
            return {};
        }
        if (kind != "name" && kind != "target" && kind != "shown")
            throw Mistake{arguments.Need(Word::kPlain, "").mColumn,
                          "name, target, shown or a view in single quotes is expected"};
        arguments.Need(Word::kPlain, "");
        return kind;
    }

    static std::string Describe(TEventHandler* handler) {
        return handler ? Cmn_IDToString(handler->GetIdentifier()) : std::string("none");
    }

    void Compare(const std::string& what, const std::string& found, const std::string& wanted) {
        if (found == wanted)
            return;
        mResult.mFailures.push_back(mName + ":" + std::to_string(mLine) + ": " + what + " is \"" +
                                    found + "\", expected \"" + wanted + "\"");
    }

    QLX_TestDriver* mDriver; // null: only check
    const std::string& mName;
    QLX_PlayResult& mResult;
    int mLine = 0;
};

std::string At(const std::string& name, int line, const Mistake& mistake) {
    return name + ":" + std::to_string(line) + ":" + std::to_string(mistake.mColumn) + ": " +
           mistake.mReason;
}

std::vector<Line> SplitLines(std::string_view text, const std::string& name,
                             std::vector<std::string>& mistakes) {
    std::vector<Line> lines;
    int number = 0;
    for (std::size_t from = 0; from < text.size();) {
        ++number;
        const std::size_t end = std::min(text.find('\n', from), text.size());
        std::string_view line = text.substr(from, end - from);
        from = end + 1;
        if (!line.empty() && line.back() == '\r')
            line.remove_suffix(1);
        try {
            std::vector<Word> words = Splitter(line).Split();
            if (!words.empty())
                lines.push_back({number, std::move(words)});
        } catch (const Mistake& mistake) {
            mistakes.push_back(At(name, number, mistake));
        }
    }
    return lines;
}

std::vector<Line> CheckLines(std::string_view text, const std::string& name,
                             std::vector<std::string>& mistakes) {
    std::vector<Line> lines = SplitLines(text, name, mistakes);
    QLX_PlayResult nothing;
    Player checker(nullptr, name, nothing);
    for (const Line& line : lines) {
        try {
            checker.Play(line);
        } catch (const Mistake& mistake) {
            mistakes.push_back(At(name, line.mNumber, mistake));
        }
    }
    return lines;
}

} // namespace

std::vector<std::string> QLX_PlayScript::Check(std::string_view text, const std::string& name) {
    std::vector<std::string> mistakes;
    static_cast<void>(CheckLines(text, name, mistakes));
    return mistakes;
}

QLX_PlayResult QLX_PlayScript::PlayText(QLX_TestDriver& driver, std::string_view text,
                                        const std::string& name) {
    QLX_PlayResult result;
    const std::vector<Line> lines = CheckLines(text, name, result.mFailures);
    if (!result.mFailures.empty())
        return result;
    Player player(&driver, name, result);
    for (const Line& line : lines) {
        try {
            player.Play(line);
            ++result.mSteps;
        } catch (const std::exception& reason) {
            result.mFailures.push_back(name + ":" + std::to_string(line.mNumber) + ": " +
                                       reason.what());
            break;
        }
    }
    return result;
}

QLX_PlayResult QLX_PlayScript::PlayFile(QLX_TestDriver& driver, const std::string& path) {
    return PlayText(driver, Sys_File::ReadAll(Sys_FileLoc(path)), path);
}
