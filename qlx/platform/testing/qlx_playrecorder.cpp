#include "basekit/sys/sys_clock.h"
#include "newfilelibs/daw/daw_keynames.h"
#include "qlx/platform/testing/qlx_playscript.h"
#include "qlx/views/qlx_keyboard.h"
#include "qlx/views/qlx_windowevents.h"
#include "qlx/views/uwindow.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <stdexcept>

namespace {

constexpr double kShortestStep = 1.0 / 60;

std::string Quoted(const std::string& text) {
    std::string quoted = "\"";
    for (const char c : text) {
        if (c == '\n')
            quoted += "\\n";
        else if (c == '\t')
            quoted += "\\t";
        else
            quoted += c == '"' || c == '\\' ? std::string{'\\', c} : std::string{c};
    }
    return quoted + '"';
}

std::string HeldKeys(std::uint32_t modifiers) {
    std::string text;
    const auto add = [&](std::uint32_t bit, const char* name) {
        if (modifiers & bit)
            text += (text.empty() ? "" : "+") + std::string(name);
    };
    add(kQLX_Modifier_Command, "Ctrl");
    add(kQLX_Modifier_Option, "Alt");
    add(kQLX_Modifier_Control, "Win");
    add(kQLX_Modifier_Shift, "Shift");
    return text;
}

bool IsModifierKey(std::uint32_t key) {
    return key == kDAW_Key_CapsLock ||
           (key >= kDAW_Key_LeftControl && key <= kDAW_Key_LeftControl + 7);
}

/// As scripts write it: characters that mean something there have names.
std::string NameOfKey(std::uint32_t key) {
    switch (key) {
    case '"':
        return "Quote";
    case '\'':
        return "Apostrophe";
    case '#':
        return "Hash";
    case '+':
        return "Plus";
    default:
        return DAW_KeyCodeToName(static_cast<DAW_EKeyCode>(key));
    }
}

} // namespace

/// Turns events into lines. Movements without a button count only where the next press comes from.
class QLX_PlayRecorder::Listener : public TWindow::EventListener {
  public:
    explicit Listener(const std::string& path)
        : mPath(path), mFile(std::fopen(path.c_str(), "wb")) {
        if (!mFile)
            throw std::runtime_error(path + ": " + std::strerror(errno));
        mPrevious = TWindow::SetEventListener(this);
    }
    ~Listener() override {
        TWindow::SetEventListener(mPrevious);
        std::fclose(mFile);
    }

    void WindowEvent(TWindow* window, const QLX_EventRef& event) override {
        if (mPrevious)
            mPrevious->WindowEvent(window, event);
        const std::string line = AsLine(event);
        if (line.empty())
            return;
        const double now = Sys_Clock_Seconds();
        if (mLast > 0 && now - mLast >= kShortestStep)
            std::fprintf(mFile, "step %.3f\n", now - mLast);
        mLast = now;
        std::fprintf(mFile, "%s\n", line.c_str());
        Flush();
    }

  private:
    /// A line is in the file before the next event, so that a crash leaves what led to it. Where
    /// the file takes no more that is said once.
    void Flush() {
        if (std::fflush(mFile) == 0 || mFailed)
            return;
        mFailed = true;
        Cmn_Assert((mPath + ": not written: " + std::strerror(errno)).c_str(), __FILE__, __LINE__);
    }
    std::string AsLine(const QLX_EventRef& event) {
        Cmn_Point<int> where{0, 0};
        std::uint32_t modifiers = 0;
        event.GetProperty(kQLX_EventProperty_Where, &where, sizeof where);
        event.GetProperty(kQLX_EventProperty_Modifiers, &modifiers, sizeof modifiers);
        const std::string place = std::to_string(where.x) + "," + std::to_string(where.y);
        const std::string held = HeldKeys(modifiers);
        const std::string behind = held.empty() ? "" : " " + held;
        switch (event.GetID().mKind) {
        case kQLX_EventKind_MouseDown:
            mButtonDown = QLX_GetMouseButton(event) == kMouse_Left;
            return (mButtonDown ? "press " : "rightclick ") + place + behind;
        case kQLX_EventKind_MouseUp:
            if (!mButtonDown)
                return {};
            mButtonDown = false;
            return "release";
        case kQLX_EventKind_MouseMoved:
            return "move " + place;
        case kQLX_EventKind_MouseWheel: {
            char notches[32];
            std::snprintf(notches, sizeof notches, " %g",
                          static_cast<double>(QLX_GetWheelDelta(event).y) / kWheel_Notch);
            return "wheel " + place + notches + behind;
        }
        case kQLX_EventKind_TextInput:
            return "type " + Quoted(QLX_GetEventText(event));
        case kQLX_EventKind_KeyDown:
        case kQLX_EventKind_AutoKey: {
            std::uint32_t key = 0;
            event.GetProperty(kQLX_EventProperty_KeyCode, &key, sizeof key);
            if (IsModifierKey(key)) // told by the chord that it is held for
                return {};
            return "chord " + (held.empty() ? "" : held + "+") + NameOfKey(key);
        }
        default:
            return {};
        }
    }

    std::string mPath;
    std::FILE* mFile; // owned
    bool mFailed = false;
    TWindow::EventListener* mPrevious = nullptr; // not owned
    double mLast = 0;                            // seconds
    bool mButtonDown = false;
};

QLX_PlayRecorder::QLX_PlayRecorder(const std::string& path)
    : mListener(std::make_unique<Listener>(path)) {}

QLX_PlayRecorder::~QLX_PlayRecorder() = default;
