// A description's window without a display, in one look: what the picture-making commands work on.
#pragma once

#include <string>
#include <vector>

#include "description.h"
#include "findings.h"
#include "looks.h"
#include "qlx/platform/testing/qlx_testdriver.h"

class TView;
class TWindow;

/// Makes the language, the theme and the layout of a look current; the language and theme of before
/// come back at the end.
class StLook {
  public:
    StLook(const Description& description, const Look& look);
    ~StLook();
    StLook(const StLook&) = delete;
    StLook& operator=(const StLook&) = delete;

  private:
    StCurrentLanguage mLanguage;
    EThemeVariant mTheme;
};

/// Makes the description's window in the look that is current, filled as the host shows an example
/// (qlx_preview.h); not yet open. A description of something else than a window gets a window
/// around it. The caller frees it. What could not be made is added to problems. Throws
/// std::runtime_error "file: reason" when there is no view at all.
[[nodiscard]] TWindow* MakeDescribedWindow(const Description& description,
                                           std::vector<Finding>& problems);

/// Asks the window's own class for an example to show.
void FillWithExample(const Description& description, TWindow& window);

/// What the view server could not make since it was asked last.
void TakeServerProblems(const Description& description, std::vector<Finding>& problems);

/// Where the description makes a view, or the next view around it that it makes; line 0 when it
/// makes none of them.
[[nodiscard]] QLX_SourceObserver::Place PlaceOfView(const Description& description,
                                                    const TView* view);

/// "TButton 'play'"
[[nodiscard]] std::string ViewLabel(TView& view);

/// The view itself, then what is inside it, in drawing order.
void ListViews(TView& view, std::vector<TView*>& into);

/// An open window, headless.
class Stage {
  public:
    Stage(const Description& description, const Look& look, std::vector<Finding>& problems);
    ~Stage();
    Stage(const Stage&) = delete;
    Stage& operator=(const Stage&) = delete;

    [[nodiscard]] QLX_TestDriver& GetDriver() { return mDriver; }
    [[nodiscard]] TWindow& GetWindow() { return *mWindow; }
    /// Throws std::runtime_error where painters have no pixels.
    [[nodiscard]] QLX_Image::Ptr GetPicture();
    void SetTheme(EThemeVariant theme);
    void SetScale(int scale);

  private:
    StLook mLook;
    std::string mFile;
    QLX_TestDriver mDriver;
    TWindow* mWindow; // ended here
};
