// The ready-made dialogs: alerts and the question for a text.
#include <algorithm>
#include <cmath>

#include "newfilelibs/cmn/cmn_polygon.h"
#include "qlx/imaging/qlx_path.h"
#include "qlx/imaging/qlx_textlayout.h"
#include "qlx/views/ubuttons.h"
#include "qlx/views/udialog.h"
#include "qlx/views/uedittext.h"
#include "qlx/views/ustatictext.h"

QLX_DEFINE_CLASS(TAlert, TDialog)
QLX_DEFINE_CLASS(TTextEntryDialog, TDialog)

namespace {

// Logical pixels.
constexpr int kMargin = 20;
constexpr int kMarkSize = 36;
constexpr int kMarkGap = 16;
constexpr int kTextWidth = 360;
constexpr int kGap = 8;
constexpr int kButtonHeight = 28;
constexpr int kShortestButton = 88;

/// The sign of an alert: told apart by shape as well as by colour.
class TAlertMark : public TView {
  public:
    explicit TAlertMark(EAlertKind kind) : mKind(kind) {}

    void Draw(const VRect&) override {
        const PainterPtr& painter = GetPainter();
        const Cmn_Rect<int> box = GetExtent();
        const int width = box.right - box.left;
        painter->SetForeground(mKind == kAlert_Note      ? kThemeColor_Link
                               : mKind == kAlert_Caution ? kThemeColor_Caution
                                                         : kThemeColor_Error);
        if (mKind == kAlert_Note) {
            painter->FillOval(box, /*antialias*/ true);
        } else if (mKind == kAlert_Caution) {
            painter->FillPath(MakePath(painter, {{box.left + width / 2, box.top + 1},
                                                 {box.right, box.bottom - 1},
                                                 {box.left, box.bottom - 1}}));
        } else {
            const int cut = width * 3 / 10;
            painter->FillPath(MakePath(painter, {{box.left + cut, box.top},
                                                 {box.right - cut, box.top},
                                                 {box.right, box.top + cut},
                                                 {box.right, box.bottom - cut},
                                                 {box.right - cut, box.bottom},
                                                 {box.left + cut, box.bottom},
                                                 {box.left, box.bottom - cut},
                                                 {box.left, box.top + cut}}));
        }
        DrawSign(box);
    }

  private:
    static QLX_Painter::PathPtr MakePath(const PainterPtr& painter,
                                         const Cmn_Polygon<int>& corners) {
        QLX_Painter::PathPtr path = painter->CreateNewPath();
        path->MoveTo(static_cast<float>(corners[0].x), static_cast<float>(corners[0].y));
        for (std::size_t i = 1; i < corners.size(); ++i)
            path->LineTo(static_cast<float>(corners[i].x), static_cast<float>(corners[i].y));
        path->Close();
        return path;
    }

    // "i", "!" and a bar, of rectangles: the same in every font.
    void DrawSign(const Cmn_Rect<int>& box) {
        const PainterPtr& painter = GetPainter();
        const int middle = (box.left + box.right) / 2;
        const int height = box.bottom - box.top;
        painter->SetForeground(kThemeColor_WindowBackground);
        const int top = box.top + height * 3 / 10;
        if (mKind == kAlert_Note) {
            painter->FillRect(
                {middle - 2, box.top + height / 5, middle + 2, box.top + height / 5 + 4});
            painter->FillRect({middle - 2, top + 3, middle + 2, box.bottom - height / 5});
        } else if (mKind == kAlert_Caution) {
            painter->FillRect({middle - 2, top + 2, middle + 2, box.bottom - height * 3 / 10});
            painter->FillRect(
                {middle - 2, box.bottom - height / 4, middle + 2, box.bottom - height / 4 + 4});
        } else {
            const int across = (box.top + box.bottom) / 2;
            painter->FillRect({box.left + 8, across - 3, box.right - 8, across + 3});
        }
    }

    EAlertKind mKind;
};

int HeightOf(const std::string& text, const QLX_Font& font, int width) {
    QLX_TextLayout layout;
    layout.LayOut(text, font, static_cast<float>(width), QLX_Painter::kWrap_Word);
    return layout.GetHeight();
}

TStaticText* AddText(TView* dialog, const VRect& frame, const std::string& text, bool bold) {
    auto* view = new TStaticText;
    view->SetControlFont(kFont_Interface, bold ? kFontSelect_Bold : kFontSelect_Plain);
    view->SetWrap(true, /*redraw*/ false);
    view->SetText(text, /*redraw*/ false);
    view->SetJustification(QLX_Painter::kJustify_Left, QLX_Painter::kJustify_Top,
                           /*redraw*/ false);
    view->IView(dialog, frame);
    return view;
}

TButton* AddButton(TView* dialog, const std::string& title, std::uint32_t identifier,
                   TButton::ERole role) {
    auto* button = new TButton;
    button->SetIdentifier(identifier);
    button->SetTitle(title, /*redraw*/ false);
    button->SetRole(role, /*redraw*/ false);
    button->IView(dialog, VRect(0, 0, 0, 0));
    return button;
}

VCoordinate WidthOf(const TButton* button) {
    return std::max<VCoordinate>(kShortestButton, button->CalcMinFrame().h + 12);
}

// In a row from the right edge leftwards; Tab goes through them in the order given.
void PlaceButtons(const std::vector<TButton*>& buttons, VCoordinate right, VCoordinate top) {
    for (TButton* button : buttons) {
        const VCoordinate left = right - WidthOf(button);
        button->SetFrame(VRect(left, top, right, top + kButtonHeight), /*redraw*/ false,
                         /*layOut*/ true);
        right = left - kGap;
    }
}

} // namespace

// TAlert

TAlert::TAlert() = default;
TAlert::~TAlert() = default;

void TAlert::IAlert(EAlertKind kind, const std::string& message, const std::string& details,
                    std::vector<std::string> titles, int defaultButton, int cancelButton) {
    mKind = kind;
    mMessage = message;
    if (titles.empty())
        titles.push_back(QLX_DialogTexts::Get().mOK);
    titles.resize(std::min(titles.size(), kMostButtons));

    std::vector<TButton*> buttons;
    VCoordinate row = -kGap;
    for (std::size_t i = 0; i < titles.size(); ++i) {
        const auto place = static_cast<int>(i);
        const auto role = place == cancelButton    ? TButton::kRole_Cancel
                          : place == defaultButton ? TButton::kRole_Default
                                                   : TButton::kRole_None;
        const auto identifier = kFirst + static_cast<std::uint32_t>(i);
        buttons.push_back(AddButton(this, titles[i], identifier, role));
        AddClosingButton(identifier);
        row += WidthOf(buttons.back()) + kGap;
    }
    if (defaultButton >= 0 && defaultButton < static_cast<int>(buttons.size()))
        SetInitialTarget(kFirst + static_cast<std::uint32_t>(defaultButton));

    const int left = kMargin + kMarkSize + kMarkGap;
    const int width = std::max(kTextWidth, Cmn_ClampTo<int>(row) - kMarkSize - kMarkGap);
    auto* mark = new TAlertMark(kind);
    mark->IView(this, VRect(kMargin, kMargin, kMargin + kMarkSize, kMargin + kMarkSize));
    const QLX_Font bold = QLX_FontMap::RetrieveFont(kFont_Interface, kFontSelect_Bold);
    const QLX_Font plain = QLX_FontMap::RetrieveFont(kFont_Interface, kFontSelect_Plain);
    int top = kMargin;
    const int messageHeight = HeightOf(message, bold, width);
    AddText(this, VRect(left, top, left + width, top + messageHeight), message, /*bold*/ true);
    top += messageHeight;
    if (!details.empty()) {
        top += kGap;
        const int detailsHeight = HeightOf(details, plain, width);
        AddText(this, VRect(left, top, left + width, top + detailsHeight), details,
                /*bold*/ false);
        top += detailsHeight;
    }
    top = std::max(top, kMargin + kMarkSize) + kMargin;
    const int right = left + width;
    PlaceButtons(buttons, right, top);
    IWindow("", VPoint(right + kMargin, top + kButtonHeight + kMargin));
}

int TAlert::IndexOf(std::uint32_t button) {
    return button >= kFirst && button <= kThird ? static_cast<int>(button - kFirst) : -1;
}

namespace {

TAlert* NewAlert(EAlertKind kind, const std::string& message, const std::string& details,
                 std::vector<std::string> buttons) {
    auto* alert = new TAlert;
    const int last = static_cast<int>(std::min(buttons.size(), TAlert::kMostButtons)) - 1;
    alert->IAlert(kind, message, details, std::move(buttons), /*defaultButton*/ 0,
                  last > 0 ? last : -1);
    return alert;
}

} // namespace

int TAlert::Run(EAlertKind kind, const std::string& message, const std::string& details,
                std::vector<std::string> buttons) {
    TAlert* alert = NewAlert(kind, message, details, std::move(buttons));
    const int button = IndexOf(alert->RunModal());
    alert->Free();
    return button;
}

void TAlert::Show(EAlertKind kind, const std::string& message, const std::string& details,
                  std::vector<std::string> buttons, std::function<void(int button)> completion) {
    TAlert* alert = NewAlert(kind, message, details, std::move(buttons));
    alert->SetFreeOnClose(true);
    const bool opened = alert->OpenModal([completion](std::uint32_t button) {
        if (completion)
            completion(IndexOf(button));
    });
    if (opened)
        return;
    alert->Free();
    if (completion)
        completion(-1);
}

void TAlert::GetAccessibleInfo(TAccessibleInfo& info) const {
    TDialog::GetAccessibleInfo(info);
    info.mRole = "alertdialog";
    info.mName = mMessage;
}

// TTextEntryDialog

TTextEntryDialog::TTextEntryDialog() = default;
TTextEntryDialog::~TTextEntryDialog() = default;

void TTextEntryDialog::ITextEntryDialog(const std::string& title, const std::string& prompt,
                                        const std::string& text, std::size_t maximumLength) {
    const QLX_Font font = QLX_FontMap::RetrieveFont(kFont_Interface, kFontSelect_Plain);
    const int right = kMargin + kTextWidth;
    int top = kMargin;
    const int promptHeight = HeightOf(prompt, font, kTextWidth);
    AddText(this, VRect(kMargin, top, right, top + promptHeight), prompt, /*bold*/ false);
    top += promptHeight + kGap;
    auto* field = new TEditText;
    field->SetIdentifier(kField);
    field->SetMaximumLength(maximumLength);
    field->SetText(text, /*redraw*/ false);
    field->SetAccessibleName(prompt);
    field->IView(this, VRect(kMargin, top, right, top + 26));
    field->SelectAll();
    field->SetChangeCallback([this](TControl&, std::int32_t) { UpdateOK(); });
    top += 26 + kMargin;
    const QLX_DialogTexts& texts = QLX_DialogTexts::Get();
    PlaceButtons({AddButton(this, texts.mOK, kOK, TButton::kRole_Default),
                  AddButton(this, texts.mCancel, kCancelButton, TButton::kRole_Cancel)},
                 right, top);
    IWindow(title, VPoint(right + kMargin, top + kButtonHeight + kMargin));
    SetInitialTarget(kField);
}

void TTextEntryDialog::SetTextValidator(std::function<bool(const std::string& text)> validator) {
    mTextValidator = std::move(validator);
    UpdateOK();
}

std::string TTextEntryDialog::GetText() {
    TEditText* field = QLX_ObjectCast<TEditText>(FindSubView(kField, /*deep*/ true));
    return field ? field->GetText() : std::string();
}

void TTextEntryDialog::UpdateOK() {
    if (TView* button = FindSubView(kOK, /*deep*/ true))
        button->SetEnable(!mTextValidator || mTextValidator(GetText()));
}

bool TTextEntryDialog::Run(const std::string& title, const std::string& prompt, std::string& text,
                           std::size_t maximumLength,
                           std::function<bool(const std::string& text)> validator) {
    auto* dialog = new TTextEntryDialog;
    dialog->ITextEntryDialog(title, prompt, text, maximumLength);
    dialog->SetTextValidator(std::move(validator));
    const StDispatch dispatch; // its text is read when it has ended
    const bool entered = dialog->RunModal() == kOK;
    if (entered)
        text = dialog->GetText();
    dialog->Free();
    return entered;
}
