#include "previewer.h"

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <list>
#include <map>
#include <set>
#include <stdexcept>

#include "qlx/imaging/qlx_font.h"
#include "qlx/imaging/qlx_painter.h"
#include "qlx/views/uadorner.h"
#include "qlx/views/udynamicarray.h"
#include "qlx/views/ulistiterator.h"
#include "qlx/views/uviewserver.h"
#include "textfit.h"

/// Frames around what is wrong, and the reasons on a band across the window's lower edge: drawn
/// last, over everything.
class ProblemMarks : public TAdorner {
  public:
    struct Mark {
        Cmn_Rect<int> mBox;
        bool mError;
    };
    ProblemMarks() { SetOrder(INT32_MAX); }

    void Set(std::vector<Mark> marks, std::vector<std::string> lines) {
        mMarks = std::move(marks);
        mLines = std::move(lines);
    }
    void Highlight(TView* view, const VRect&, bool, EHighlight) override {
        const QLX_Painter::Ptr& painter = view->GetPainter();
        if (!painter)
            return;
        for (const Mark& mark : mMarks)
            DrawMark(*painter, mark);
        if (!mLines.empty())
            DrawBand(*painter, view->GetExtent().ToCmn_Rect());
    }

  private:
    static constexpr int kWidth = 2;
    static constexpr std::size_t kMostLines = 6;

    static void DrawMark(QLX_Painter& painter, const Mark& mark) {
        painter.SetForeground(mark.mError ? kThemeColor_Error : kThemeColor_Caution);
        const Cmn_Rect<int>& in = mark.mBox;
        const Cmn_Rect<int> out(in.left - kWidth, in.top - kWidth, in.right + kWidth,
                                in.bottom + kWidth);
        painter.FillRect({out.left, out.top, out.right, in.top});
        painter.FillRect({out.left, in.bottom, out.right, out.bottom});
        painter.FillRect({out.left, in.top, in.left, in.bottom});
        painter.FillRect({in.right, in.top, out.right, in.bottom});
    }

    void DrawBand(QLX_Painter& painter, const Cmn_Rect<int>& all) const {
        std::vector<std::string> lines = mLines;
        if (lines.size() > kMostLines) {
            lines.resize(kMostLines - 1);
            lines.push_back("and " + std::to_string(mLines.size() - lines.size()) + " more");
        }
        painter.SetFont(QLX_FontMap::RetrieveFont(kFont_Interface, kFontSelect_Plain));
        const int height = painter.GetFont().GetMetrics().GetLineHeight() + 2;
        int top = all.bottom - height * static_cast<int>(lines.size()) - 4;
        painter.SetForeground(kThemeColor_ToolTipBackground);
        painter.FillRect({all.left, top, all.right, all.bottom});
        painter.SetForeground(kThemeColor_Error);
        painter.FillRect({all.left, top, all.left + 4, all.bottom});
        painter.SetForeground(kThemeColor_ToolTipText);
        top += 2;
        for (const std::string& line : lines) {
            painter.DrawSingleLineTextBox({all.left + 8, top, all.right - 4, top + height}, line,
                                          /*ellipsis*/ true, nullptr);
            top += height;
        }
    }

    std::vector<Mark> mMarks;
    std::vector<std::string> mLines;
};

namespace {
constexpr double kPollSeconds = 0.25;

constexpr std::uint32_t kReadAgainKey = kDAW_Key_F1 + 4;
constexpr std::uint32_t kNextLayoutKey = kDAW_Key_F1 + 5;
constexpr std::uint32_t kNextLanguageKey = kDAW_Key_F1 + 6;
constexpr std::uint32_t kNextThemeKey = kDAW_Key_F1 + 7;
constexpr std::uint32_t kMarksKey = kDAW_Key_F1 + 8;

void ListProperties(const QLX_RawPropertyContainer& container, const std::string& path,
                    std::set<std::string>& into) {
    for (const auto& [filter, set] : container.GetFilterPropertyMap())
        for (std::size_t i = 0; i < set.GetCount(); ++i)
            into.insert(path + "\n" + filter.ToString() + "\n" +
                        std::to_string(set.GetAt(i).mType) + "\n" +
                        std::string(set.GetAt(i).mName));
    std::map<std::string, int> numbers;
    for (const auto* child = container.GetFirstChild(); child; child = child->GetNextSibling()) {
        const std::string label = ElementLabel(*child);
        ListProperties(*child, path + "/" + label + "#" + std::to_string(++numbers[label]), into);
    }
}

/// Whether everything that the first one sets is set in the second one too.
bool SetsAllOf(const Description& before, const Description& after) {
    std::set<std::string> old;
    std::set<std::string> present;
    ListProperties(*before.GetRoot(), ElementLabel(*before.GetRoot()), old);
    ListProperties(*after.GetRoot(), ElementLabel(*after.GetRoot()), present);
    return std::includes(present.begin(), present.end(), old.begin(), old.end());
}

template <class T>
T Next(const std::vector<T>& values, const T& value) {
    const auto found = std::find(values.begin(), values.end(), value);
    return found == values.end() || found + 1 == values.end() ? values.front() : *(found + 1);
}
} // namespace

Previewer::Previewer(std::string file, const Look& look, OpenFunction open)
    : mFile(std::move(file)), mLook(look), mOpen(std::move(open)), mMarks(new ProblemMarks),
      mPrevious(TWindow::SetEventListener(this)) {
    Load(/*anew*/ true);
    mTimer = QLX_EventLoop::Get()->StartTimer(kPollSeconds, kPollSeconds, [this] { Follow(); });
}

Previewer::~Previewer() {
    QLX_EventLoop::Get()->StopTimer(mTimer);
    TWindow::SetEventListener(mPrevious);
    EndWindow();
    mMarks->Free();
}

bool Previewer::HasErrors() const {
    return std::any_of(mProblems.begin(), mProblems.end(),
                       [](const Problem& problem) { return problem.mFinding.mError; });
}

// Following the files

std::string Previewer::GetStamp() const {
    std::list<Sys_FileLoc> files;
    QLX_SourceViewFormat(Sys_FileLoc(mFile)).GetSalientFiles(files);
    std::string stamp;
    for (const Sys_FileLoc& file : files) {
        std::error_code error; // a file that vanishes meanwhile counts as changed next time
        const auto time = std::filesystem::last_write_time(file.GetPath(), error);
        const auto size = std::filesystem::file_size(file.GetPath(), error);
        stamp += file.GetPath() + " " + std::to_string(time.time_since_epoch().count()) + " " +
                 std::to_string(size) + "\n";
    }
    return stamp;
}

void Previewer::Follow() {
    if (GetStamp() != mStamp)
        Load(/*anew*/ false);
}

void Previewer::Load(bool anew) {
    mStamp = GetStamp();
    mProblems.clear();
    {
        const StCurrentLanguage english(QLX_Language::English); // as descriptions are read
        for (const Finding& finding : CheckDescription(mFile))
            if (finding.mRule != "string-unused") // code uses keys, too
                AddFinding(finding);
    }
    std::unique_ptr<Description> fresh;
    try {
        fresh = std::make_unique<Description>(mFile);
        if (mLook.mWidest)
            TakeWidestTexts(*fresh);
    } catch (const std::exception&) {
        fresh.reset(); // the check said it, with its place
    }
    if (fresh) {
        const bool again = !anew && mDescription && mRoot && SetsAllOf(*mDescription, *fresh);
        mCurrentLook.reset();
        mDescription = std::move(fresh);
        mCurrentLook.emplace(*mDescription, mLook);
        if (again)
            ReadAgain();
        else
            MakeWindow();
        FindProblems();
    }
    if (!mWindow)
        MakeEmptyWindow();
    ShowProblems();
}

void Previewer::ReadAgain() {
    const Cmn_AliasedRefCountPtr<QLX_ViewMemento> memento(mDescription->GetMementoPtr());
    TViewServer::Get()->ReReadHierarchy(mRoot, memento);
    std::vector<Finding> problems;
    TakeServerProblems(*mDescription, problems);
    for (const Finding& problem : problems)
        AddFinding(problem);
    FillWithExample(*mDescription, *mWindow);
}

void Previewer::MakeWindow() {
    Cmn_Point<int> place{0, 0};
    const bool placed = mWindow && mWindow->IsOpen();
    if (placed)
        place = mWindow->GetPort()->GetPlace();
    EndWindow();
    std::vector<Finding> problems;
    try {
        mWindow = MakeDescribedWindow(*mDescription, problems);
    } catch (const std::exception& error) {
        problems.push_back({mFile, 0, 0, /*error*/ true, "view", error.what()});
    }
    for (const Finding& problem : problems)
        AddFinding(problem);
    if (!mWindow)
        return;
    mRoot = mWindow;
    if (!TViewServer::GetSource(mWindow) && mWindow->CountSubViews() > 0)
        mRoot = static_cast<TView*>(CObjectIterator(mWindow->GetSubViews()).FirstObject());
    mWindow->GetSettings().mPlaced = placed;
    mWindow->GetSettings().mPlace = place;
    mWindow->AddAdorner(mMarks, /*redraw*/ false);
    mOpen(*mWindow);
}

/// Something to show the reasons in.
void Previewer::MakeEmptyWindow() {
    mWindow = new TWindow;
    mWindow->IWindow(mFile, VPoint(640, 200));
    mRoot = nullptr;
    mWindow->AddAdorner(mMarks, /*redraw*/ false);
    mOpen(*mWindow);
}

void Previewer::EndWindow() {
    if (!mWindow)
        return;
    mWindow->RemoveAdorner(mMarks, /*redraw*/ false);
    mWindow->Close();
    mWindow->Free();
    mWindow = nullptr;
    mRoot = nullptr;
}

// Problems

void Previewer::AddFinding(const Finding& finding) {
    for (Problem& known : mProblems)
        if (known.mFinding.mLine == finding.mLine && known.mFinding.mFile == finding.mFile) {
            // A check of the file alone cannot say that a class will be missing; here it is.
            if (known.mFinding.mRule == "class" && finding.mRule == "view")
                known.mFinding.mError = true;
            else if (known.mFinding.mText != finding.mText)
                continue;
            return;
        }
    mProblems.push_back({finding, std::nullopt});
}

void Previewer::FindProblems() {
    if (!mRoot)
        return;
    for (Problem& problem : mProblems)
        if (TView* const view =
                problem.mFinding.mFile == mFile ? FindView(problem.mFinding.mLine) : nullptr) {
            VRect frame = view->GetExtent();
            view->LocalToWindowVRect(frame);
            problem.mBox = (frame - mWindow->GetLocalOffset()).ToCmn_Rect();
        }
    for (const FitProblem& problem : FindFitProblems(*mWindow, *mDescription)) {
        std::string text = problem.mView + (problem.mText.empty() ? " " : ": \"") + problem.mText +
                           (problem.mText.empty() ? "" : "\" ") + problem.mReason;
        std::replace(text.begin(), text.end(), '\n', ' ');
        mProblems.push_back({{mFile, problem.mPlace.mLine, problem.mPlace.mColumn, problem.mError,
                              problem.mRule, text},
                             problem.mBox});
    }
}

/// The view whose description the line is in: the last one that begins at or before it. Null for
/// the window itself.
TView* Previewer::FindView(int line) {
    std::vector<TView*> views;
    ListViews(*mWindow, views);
    TView* found = nullptr;
    int best = 0;
    for (TView* view : views) {
        const int start = mDescription->GetPlace(TViewServer::GetSource(view)).mLine;
        if (start > best && start <= line) {
            best = start;
            found = view;
        }
    }
    return found == mWindow ? nullptr : found;
}

void Previewer::ShowProblems() {
    std::stable_partition(mProblems.begin(), mProblems.end(),
                          [](const Problem& problem) { return problem.mFinding.mError; });
    std::vector<ProblemMarks::Mark> marks;
    std::vector<std::string> lines;
    std::vector<Finding> findings;
    for (const Problem& problem : mProblems) {
        if (problem.mBox)
            marks.push_back({*problem.mBox, problem.mFinding.mError});
        std::string line = FindingsAsText({problem.mFinding});
        line.pop_back();
        lines.push_back(line);
        findings.push_back(problem.mFinding);
    }
    mMarks->Set(std::move(marks), std::move(lines));
    mWindow->ForceRedraw();
    std::printf("%s (%s, %s, %s): %zu problems\n%s", mFile.c_str(), mLook.GetLayoutName().c_str(),
                mLook.GetLanguageName().c_str(), mLook.GetThemeName().c_str(), findings.size(),
                FindingsAsText(findings).c_str());
    std::fflush(stdout);
}

// Keys

void Previewer::WindowEvent(TWindow* window, const QLX_EventRef& event) {
    if (mPrevious)
        mPrevious->WindowEvent(window, event);
    const QLX_EventID what = event.GetID();
    if (what.mClass != kQLX_EventClass_Keyboard || what.mKind != kQLX_EventKind_KeyDown)
        return;
    std::uint32_t key = 0;
    event.GetProperty(kQLX_EventProperty_KeyCode, &key, sizeof key);
    // Later: the window that the key is on its way to may be made anew.
    if (key >= kReadAgainKey && key <= kMarksKey)
        QLX_EventLoop::Get()->Post([this, key] { ShowNext(key); });
}

void Previewer::ShowNext(std::uint32_t key) {
    if (key == kMarksKey) {
        mMarks->SetEnabled(!mMarks->IsEnabled());
        return mWindow->ForceRedraw();
    }
    if (key == kNextThemeKey) {
        mLook.mTheme = static_cast<EThemeVariant>((mLook.mTheme + 1) % kTheme_VariantCount);
    } else if (mDescription && key == kNextLayoutKey) {
        mLook.mLayout = Next(FindLayouts(*mDescription), mLook.mLayout);
    } else if (mDescription && key == kNextLanguageKey) {
        const auto languages = FindLanguages(*mDescription);
        const bool last = mLook.mLanguage == languages.back();
        const bool widest = !mLook.mWidest && last;
        mLook.mLanguage =
            mLook.mWidest || last ? languages.front() : Next(languages, mLook.mLanguage);
        mLook.mWidest = widest;
    }
    Load(/*anew*/ true);
}
