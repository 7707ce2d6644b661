// A window that follows its description: read again whenever a file of it changes, with what is
// wrong marked where it is seen.
#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "qlx/views/qlx_eventloop.h"
#include "qlx/views/uwindow.h"
#include "stage.h"

class ProblemMarks;

/// Works on whatever platform is installed. A file that cannot be read leaves the window as it was,
/// with the reason across its lower edge. Values that were added or changed are read into the
/// window's views, which keep what the user did; when something was taken out of the file the
/// window is made anew, since a view cannot forget a value. F5 reads again, F6, F7 and F8 show the
/// next layout, language and theme, F9 hides the marks and shows them again.
class Previewer : private TWindow::EventListener {
  public:
    /// Opens a window; the previewer ends it.
    using OpenFunction = std::function<void(TWindow& window)>;

    /// Loads at once. Throws std::runtime_error when the file is not there.
    Previewer(std::string file, const Look& look, OpenFunction open);
    ~Previewer() override;
    Previewer(const Previewer&) = delete;
    Previewer& operator=(const Previewer&) = delete;

    [[nodiscard]] TWindow& GetWindow() { return *mWindow; }
    /// Of the last time that it was read.
    [[nodiscard]] bool HasErrors() const;

  private:
    struct Problem {
        Finding mFinding;
        std::optional<Cmn_Rect<int>> mBox; // window coordinates
    };

    void WindowEvent(TWindow* window, const QLX_EventRef& event) override;
    void Load(bool anew);
    void Follow();
    [[nodiscard]] std::string GetStamp() const;
    void ReadAgain();
    void MakeWindow();
    void MakeEmptyWindow();
    void EndWindow();
    void FindProblems();
    void AddFinding(const Finding& finding);
    void ShowProblems();
    void ShowNext(std::uint32_t key);
    [[nodiscard]] TView* FindView(int line);

    std::string mFile;
    Look mLook;
    OpenFunction mOpen;
    std::string mStamp; // of the files as they were read
    std::unique_ptr<Description> mDescription;
    std::optional<StLook> mCurrentLook;
    TWindow* mWindow = nullptr; // ended here
    TView* mRoot = nullptr;     // what the description makes: the window, or the view in it
    ProblemMarks* mMarks;       // ended here
    std::vector<Problem> mProblems;
    QLX_EventLoop::TimerID mTimer = 0;
    TWindow::EventListener* mPrevious; // not owned
};
