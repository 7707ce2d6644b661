#include "stage.h"

#include <filesystem>
#include <stdexcept>

#include "app/misc/qlx_init.h"
#include "basekit/cmn/cmn_string.h"
#include "qlx/platform/testing/qlx_preview.h"
#include "qlx/views/udynamicarray.h"
#include "qlx/views/ulistiterator.h"
#include "qlx/views/uviewserver.h"
#include "qlx/views/uwindow.h"

StLook::StLook(const Description& description, const Look& look)
    : mLanguage(look.mLanguage), mTheme(QLX_Theme::GetVariant()) {
    QLX_Theme::SetVariant(look.mTheme);
    description.GetRoot()->SetCurrentFilter(
        QLX_PropertyFilter::MakeFilter(look.mLayout, look.mLanguage));
}

StLook::~StLook() { QLX_Theme::SetVariant(mTheme); }

void TakeServerProblems(const Description& description, std::vector<Finding>& problems) {
    for (const TViewServerProblem& problem : TViewServer::Get()->TakeProblems()) {
        const auto place = description.GetPlace(description.GetRoot()->FindByPath(problem.mPath));
        std::string text = problem.mReason;
        if (!problem.mClassName.empty())
            text += ": " + problem.mClassName;
        if (problem.mReason == "unknown class")
            text += "; load its library with --load";
        problems.push_back(
            {description.GetPath(), place.mLine, place.mColumn, /*error*/ true, "view", text});
    }
}

void FillWithExample(const Description& description, TWindow& window) {
    const std::string folder = std::filesystem::path(description.GetPath()).parent_path().string();
    TPreviewEvent::Send(window,
                        Cmn_AliasedRefCountPtr<QLX_ViewMemento>(description.GetMementoPtr()),
                        folder.empty() ? "." : folder);
}

TWindow* MakeDescribedWindow(const Description& description, std::vector<Finding>& problems) {
    QLX_Init::Init();
    ClassDesc::InitUClassDesc(); // again, for the classes of libraries that were loaded
    TViewServer::SetRememberSources(true);
    const Cmn_AliasedRefCountPtr<QLX_ViewMemento> memento(description.GetMementoPtr());
    TView* const view = TViewServer::Get()->NewViewHierarchy(memento);
    TakeServerProblems(description, problems);
    if (!view)
        throw std::runtime_error(description.GetPath() + ": there is no view in it");
    auto* window = QLX_ObjectCast<TWindow>(view);
    if (!window) {
        window = new TWindow;
        window->IWindow(Sys_FileLoc(description.GetPath()).GetStem(), view->GetSize());
        view->Locate(VPoint(0, 0), /*redraw*/ false);
        window->AddSubView(view);
    }
    window->SetFreeOnClose(false); // whoever closes it, the tool ends it
    FillWithExample(description, *window);
    return window;
}

QLX_SourceObserver::Place PlaceOfView(const Description& description, const TView* view) {
    for (; view; view = view->GetSuperView()) {
        const auto place = description.GetPlace(TViewServer::GetSource(view));
        if (place.mLine > 0)
            return place;
    }
    return {0, 0};
}

std::string ViewLabel(TView& view) {
    std::string label = view.GetClassDescDynamic()->GetClassName();
    if (view.GetIdentifier() != 0)
        label += " '" + Cmn_IDToString(view.GetIdentifier()) + "'";
    return label;
}

void ListViews(TView& view, std::vector<TView*>& into) {
    into.push_back(&view);
    if (TList* const subviews = view.GetSubViews()) {
        CObjectIterator iterator(subviews);
        for (TObject* sub = iterator.FirstObject(); sub; sub = iterator.NextObject())
            ListViews(*static_cast<TView*>(sub), into);
    }
}

namespace {
/// Pictures take four bytes a pixel; a window that no screen could show is a mistake. The scale is
/// a display's, 120 for 1.
void CheckSize(const Description& description, TWindow& window, int scale) {
    constexpr double kMostPixels = 64.0 * 1024 * 1024;
    const double height = static_cast<double>(window.GetSize().v) * scale / 120;
    const double width = static_cast<double>(window.GetSize().h) * scale / 120;
    if (height <= QLX_Image::kMaximumSide && width <= QLX_Image::kMaximumSide &&
        height * width <= kMostPixels)
        return;
    const auto place = PlaceOfView(description, &window);
    throw std::runtime_error(description.GetPath() + ":" + std::to_string(place.mLine) + ":" +
                             std::to_string(place.mColumn) +
                             ": the window is too large: " + std::to_string(window.GetSize().h) +
                             " by " + std::to_string(window.GetSize().v));
}
} // namespace

Stage::Stage(const Description& description, const Look& look, std::vector<Finding>& problems)
    : mLook(description, look), mFile(description.GetPath()), mWindow(nullptr) {
    mDriver.SetScale(look.mScale);
    mWindow = MakeDescribedWindow(description, problems);
    try {
        CheckSize(description, *mWindow, look.mScale);
        mDriver.OpenWindow(*mWindow);
    } catch (...) {
        mWindow->Free();
        throw;
    }
}

Stage::~Stage() {
    mWindow->Close();
    mWindow->Free();
}

QLX_Image::Ptr Stage::GetPicture() {
    try {
        return mDriver.GetPicture();
    } catch (const QLX_TestDriverError& error) {
        throw std::runtime_error(mFile + ": " + error.what());
    }
}

void Stage::SetTheme(EThemeVariant theme) {
    QLX_Theme::SetVariant(theme);
    TWindow::RedrawAll();
    mDriver.WaitForIdle();
}

void Stage::SetScale(int scale) {
    for (QLX_HeadlessWindow* port : mDriver.GetPlatform().GetWindows())
        port->SetScale(scale);
    mDriver.WaitForIdle();
}
