#include "qlx/views/uviewenvironment.h"

#include <algorithm>

#include "basekit/cmn/cmn_string.h"
#include "qlx/imaging/qlx_painter.h"
#include "qlx/persistence/qlx_persistence.h"
#include "qlx/views/uadorner.h"
#include "qlx/views/uview.h"
#include "qlx/views/uviewserver.h"

QLX_DEFINE_CLASS(TDrawingEnvironment, TObject);
QLX_DEFINE_CLASS(TViewState, TObject);

// TDrawingEnvironment

TDrawingEnvironment::TDrawingEnvironment() = default;

TDrawingEnvironment::~TDrawingEnvironment() = default;

void TDrawingEnvironment::SetForegroundColor(const CRGBColor& color) {
    mForeground = color;
    mForegroundTheme = -1;
    mSet |= kForeground;
}

void TDrawingEnvironment::SetBackgroundColor(const CRGBColor& color) {
    mBackground = color;
    mBackgroundTheme = -1;
    mSet |= kBackground;
}

void TDrawingEnvironment::SetFont(const QLX_Font& font) {
    mFont = font;
    mSet |= kFont;
}

void TDrawingEnvironment::SetPenSize(int horizontal, int vertical) {
    mPenWidth = Cmn_ClampTo<short>(horizontal);
    mPenHeight = Cmn_ClampTo<short>(vertical);
    mSet |= kPenSize;
}

void TDrawingEnvironment::Apply(QLX_Painter& painter) const {
    if (mSet & kForeground) {
        if (mForegroundTheme >= 0)
            painter.SetForeground(static_cast<EThemeColor>(mForegroundTheme));
        else
            painter.SetForegroundColor(mForeground);
    }
    if (mSet & kBackground) {
        if (mBackgroundTheme >= 0)
            painter.SetBackground(static_cast<EThemeColor>(mBackgroundTheme));
        else
            painter.SetBackgroundColor(mBackground);
    }
    if (mSet & kPenSize)
        painter.SetPenSize(mPenWidth, mPenHeight);
    if (mSet & kPenMode)
        painter.SetPenMode(static_cast<EPenMode>(mPenMode));
    if (mSet & kTextMode)
        painter.SetTextMode(static_cast<EPenMode>(mTextMode));
    if (mSet & kPenPattern)
        painter.SetPenPattern(static_cast<EPenPattern>(mPenPattern));
    if (mSet & kFont)
        painter.SetFont(mFont);
}

void TDrawingEnvironment::ReadProperties(QLX_RawPropertyContainer* container,
                                         const Cmn_AliasedRefCountPtr<QLX_ViewMemento>& memento) {
    TObject::ReadProperties(container, memento);
    const auto problem = [&](const std::string& reason) {
        TViewServer::Get()->AddProblem(container, memento, GetClassDescDynamic()->GetClassName(),
                                       reason);
    };
    const auto themeColor = [&](const char* name, int& number, std::uint16_t bit) {
        std::string text;
        if (!container->GetStringProperty(name, text))
            return;
        EThemeColor color = kThemeColor_Text;
        if (QLX_Theme::FindByName(text, color)) {
            number = color;
            mSet |= bit;
        } else {
            problem(std::string(name) + " is no theme colour: \"" + text + "\"");
        }
    };
    const auto number = [&](const char* name, int count, int& value, std::uint16_t bit) {
        std::int32_t read = 0;
        if (!container->GetInt32Property(name, read))
            return;
        if (read >= 0 && read < count) {
            value = read;
            mSet |= bit;
        } else {
            problem(std::string(name) + " is out of range: " + std::to_string(read));
        }
    };
    CRGBColor color;
    if (container->GetColorProperty("ForegroundColor", color))
        SetForegroundColor(color);
    if (container->GetColorProperty("BackgroundColor", color))
        SetBackgroundColor(color);
    themeColor("ForegroundThemeColor", mForegroundTheme, kForeground);
    themeColor("BackgroundThemeColor", mBackgroundTheme, kBackground);
    std::int32_t width = mPenWidth;
    std::int32_t height = mPenHeight;
    const bool hasWidth = container->GetInt32Property("PenWidth", width);
    if (container->GetInt32Property("PenHeight", height) || hasWidth)
        SetPenSize(width, height);
    number("PenMode", kPenMode_Count, mPenMode, kPenMode);
    number("TextMode", kPenMode_Count, mTextMode, kTextMode);
    number("PenPattern", kPenPattern_Count, mPenPattern, kPenPattern);
    std::int32_t fontNumber = kFont_Interface;
    std::int32_t style = kFontSelect_AsRegistered;
    std::int32_t size = 0;
    const bool hasNumber = container->GetInt32Property("FontNumber", fontNumber);
    const bool hasStyle = container->GetInt32Property("FontStyle", style);
    const bool hasSize = container->GetInt32Property("FontSize", size);
    if (hasNumber || hasStyle || hasSize) {
        SetFont(QLX_FontMap::RetrieveFont(fontNumber, style));
        if (hasSize)
            mFont = mFont.WithSize(static_cast<float>(size));
    }
}

// TViewState

struct TViewState::Settings {
    std::string name;
    bool hasShown = false;
    bool shown = true;
    bool hasEnabled = false;
    bool enabled = true;
    bool hasToolTip = false;
    std::string toolTip;
    std::string enabledAdorners;
    std::string disabledAdorners;
    TDrawingEnvironment* environment = nullptr; // owned by the state
};

TViewState::TViewState() : mSettings(new Settings) {}

TViewState::~TViewState() {
    if (mSettings->environment)
        mSettings->environment->Free();
    delete mSettings;
}

TObject* TViewState::Clone() {
    auto* copy = static_cast<TViewState*>(TObject::Clone());
    copy->mSettings = new Settings(*mSettings);
    copy->mSettings->environment = nullptr;
    if (mSettings->environment)
        copy->mSettings->environment =
            static_cast<TDrawingEnvironment*>(mSettings->environment->Clone());
    return copy;
}

const std::string& TViewState::GetName() const { return mSettings->name; }

void TViewState::SetName(const std::string& name) { mSettings->name = name; }

namespace {

void EnableAdorners(TView* view, const std::string& codes, bool enable) {
    for (std::size_t i = 0; i + 4 <= codes.size(); i += 4) {
        if (TAdorner* adorner = view->GetAdornerWithIdentifier(Cmn_StringToID(codes.substr(i, 4))))
            adorner->SetEnabled(enable);
    }
}

} // namespace

void TViewState::Apply(TView* view) {
    const Settings settings = *mSettings; // what is called below may end this state
    TDrawingEnvironment* environment =
        settings.environment ? static_cast<TDrawingEnvironment*>(settings.environment->Clone())
                             : nullptr;
    if (environment)
        view->SetDrawingEnvironment(environment);
    EnableAdorners(view, settings.enabledAdorners, true);
    EnableAdorners(view, settings.disabledAdorners, false);
    if (settings.hasToolTip)
        view->SetToolTip(settings.toolTip);
    if (settings.hasEnabled)
        view->SetEnable(settings.enabled);
    if (settings.hasShown)
        view->Show(settings.shown, /*redraw*/ true);
    view->ForceRedraw();
}

void TViewState::ReadContainer(QLX_RawPropertyContainer* container,
                               const Cmn_AliasedRefCountPtr<QLX_ViewMemento>& memento,
                               TView* view) {
    TObject::ReadContainer(container, memento, view);
    for (QLX_RawPropertyContainer* child : container->GetChildren("drawingenvironment")) {
        TObject* object = TViewServer::Get()->NewObject(child, memento, view);
        if (auto* environment = QLX_ObjectCast<TDrawingEnvironment>(object)) {
            if (mSettings->environment)
                mSettings->environment->Free();
            mSettings->environment = environment;
        } else if (object) {
            object->Free();
        }
    }
}

void TViewState::ReadProperties(QLX_RawPropertyContainer* container,
                                const Cmn_AliasedRefCountPtr<QLX_ViewMemento>& memento) {
    TObject::ReadProperties(container, memento);
    Settings& settings = *mSettings;
    container->GetStringProperty("Name", settings.name);
    settings.hasShown = container->GetBoolProperty("Shown", settings.shown);
    settings.hasEnabled = container->GetBoolProperty("Enabled", settings.enabled);
    std::string key;
    if (memento && container->GetStringKeyProperty("ToolTip", key)) {
        settings.toolTip = memento->GetLocalizedStringProperty(container, "ToolTip");
        settings.hasToolTip = true;
    } else {
        settings.hasToolTip = container->GetStringProperty("ToolTip", settings.toolTip);
    }
    container->GetStringProperty("EnabledAdorners", settings.enabledAdorners);
    container->GetStringProperty("DisabledAdorners", settings.disabledAdorners);
}
