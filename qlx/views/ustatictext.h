// Controls that only show: a text, a picture, a plate to put others on.
#pragma once

#include "qlx/imaging/qlx_image.h"
#include "qlx/views/ucontrol.h"

/// A text that the user reads and does not edit. Takes no focus.
///
/// Properties beside the base's: "Text" (string key or string), "Justification" (int32: 0 left, 1
/// centred, 2 right), "Vertical" (int32: 0 top, 1 middle, 2 bottom), "Wrap", "Ellipsis" (bool),
/// "TextColor" (string, a name of the theme's colours).
class QLX_API TStaticText : public TControl {
  public:
    QLX_DECLARE_CLASS(TStaticText);
    TStaticText();
    ~TStaticText() override;

    void SetText(const std::string& text, bool redraw);
    [[nodiscard]] const std::string& GetText() const { return mText; }
    void SetJustification(QLX_Painter::EJustification horizontal,
                          QLX_Painter::EVerticalJustification vertical, bool redraw);
    void SetTextColor(EThemeColor color) { mTextColor = color; }
    void SetWrap(bool wrap, bool redraw);

    void Draw(const VRect& area) override;
    void GetAccessibleInfo(TAccessibleInfo& info) const override;
    [[nodiscard]] VPoint CalcMinFrame() const override;
    [[nodiscard]] TObject* Clone() override;
    void ReadProperties(QLX_RawPropertyContainer* container, const MementoPtr& memento) override;

  private:
    [[nodiscard]] int VerticalInset(int textHeight) const;

    std::string mText;
    EThemeColor mTextColor = kThemeColor_Text;
    QLX_Painter::EJustification mJustification = QLX_Painter::kJustify_Left;
    QLX_Painter::EVerticalJustification mVertical = QLX_Painter::kJustify_Middle;
    bool mWrap = false;
    bool mEllipsis = true;
};

/// A picture from a PNG file, stretched to the view or at its own size in the middle.
///
/// Properties beside the base's: "Image" (string, a file name beside the description, or a path),
/// "Stretch" (bool).
class QLX_API TPicture : public TControl {
  public:
    QLX_DECLARE_CLASS(TPicture);
    TPicture();
    ~TPicture() override;

    /// Null for none.
    void SetImage(const Cmn_AliasedRefCountPtr<QLX_Image>& image, bool redraw);
    void SetStretch(bool stretch, bool redraw);

    void Draw(const VRect& area) override;
    void GetAccessibleInfo(TAccessibleInfo& info) const override;
    [[nodiscard]] TObject* Clone() override;
    void ReadProperties(QLX_RawPropertyContainer* container, const MementoPtr& memento) override;

  private:
    Cmn_AliasedRefCountPtr<QLX_Image> mImage; // counted
    bool mStretch = false;
};

/// A plate: a filled, framed background for other views, with an optional title in its upper edge.
///
/// Properties beside the base's: "Title" (string key or string), "Rounded" (bool), "Framed" (bool).
class QLX_API TPlate : public TControl {
  public:
    QLX_DECLARE_CLASS(TPlate);
    TPlate();
    ~TPlate() override;

    void SetTitle(const std::string& title, bool redraw);
    void Draw(const VRect& area) override;
    void GetAccessibleInfo(TAccessibleInfo& info) const override;
    [[nodiscard]] TObject* Clone() override;
    void ReadProperties(QLX_RawPropertyContainer* container, const MementoPtr& memento) override;

  private:
    std::string mTitle;
    bool mRounded = true;
    bool mFramed = true;
};
