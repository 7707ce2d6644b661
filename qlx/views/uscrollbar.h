// Scrolling: the bar, and the scroller that shows a part of a larger view.
#pragma once

#include "qlx/views/ucontrol.h"

/// A bar along the longer side of the view. Its value is the first visible position, its maximum
/// the last possible one; the page is how much is visible, in the value's units, and gives the
/// thumb its length. A press beside the thumb goes a page and repeats while held.
///
/// Properties beside the base's: "PageSize", "LineSize" (int32).
class QLX_API TScrollBar : public TControl {
  public:
    QLX_DECLARE_CLASS(TScrollBar);
    static constexpr int kThickness = 14;     ///< the usual one, logical pixels
    static constexpr int kShortestThumb = 18; ///< logical pixels

    TScrollBar();
    ~TScrollBar() override;

    void SetPageSize(std::int32_t page, bool redraw);
    [[nodiscard]] std::int32_t GetPageSize() const { return mPageSize; }
    void SetLineSize(std::int32_t line) { mLineSize = line; }
    [[nodiscard]] std::int32_t GetLineSize() const { return mLineSize; }
    [[nodiscard]] bool IsVertical() const;
    /// The thumb in local coordinates; empty when everything is visible.
    [[nodiscard]] VRect GetThumb() const;
    /// Goes a page towards the end (1) or the start (-1).
    void ScrollPage(int direction);

    bool DoMouseCommand(const VPoint& local, TToolboxEvent* event) override;
    bool DoMouseWheel(const VPoint& local, TToolboxEvent* event) override;
    void SetValue(std::int32_t value, bool redraw) override;
    void Draw(const VRect& area) override;
    void GetAccessibleInfo(TAccessibleInfo& info) const override;
    void ReadProperties(QLX_RawPropertyContainer* container, const MementoPtr& memento) override;

  private:
    std::int32_t mPageSize = 10;
    std::int32_t mLineSize = 1;
};

/// Shows a part of its first subview that is not a scroll bar, and makes and places the bars that
/// are needed for the rest. Wheel, Page Up and Down, Home and End scroll.
///
/// Properties beside the base's: "HorizontalBar", "VerticalBar" (bool: whether that bar may
/// appear).
class QLX_API TScroller : public TControl {
  public:
    QLX_DECLARE_CLASS(TScroller);
    TScroller();
    ~TScroller() override;

    /// The view that is scrolled; null when there is none.
    [[nodiscard]] TView* GetContent();
    /// The part of the content that is visible, in the content's superview: inside the bars.
    [[nodiscard]] VRect GetViewport();
    /// Brings a place of the content to the viewport's top left corner, as far as it goes.
    void ScrollContentTo(const VPoint& place, bool redraw);
    [[nodiscard]] VPoint GetContentPlace();
    /// Scrolls as far as needed to show a rectangle in the content's local coordinates.
    void RevealInContent(const VRect& rect);
    /// The scroller whose content a view is; null when it is none.
    [[nodiscard]] static TScroller* Around(TView* content);
    /// The content has changed its size.
    void ContentChanged(bool redraw);

    void SetEnable(bool enable) override;
    void SetFrame(const VRect& frame, bool redraw, bool layOut) override;
    void AddedASubView(TView* sub) override;
    void DoKeyEvent(TToolboxEvent* event) override;
    bool DoMouseWheel(const VPoint& local, TToolboxEvent* event) override;
    void DoEvent(std::int32_t number, TEventHandler* source, TEvent* event) override;
    void ReadContainer(QLX_RawPropertyContainer* container, const MementoPtr& memento,
                       TView* view) override;
    [[nodiscard]] TObject* Clone() override;
    void ReadProperties(QLX_RawPropertyContainer* container, const MementoPtr& memento) override;

  private:
    void PlaceBars(bool redraw);
    void MovePixels(TView* content, const VRect& visible, const VPoint& moved);
    void PlaceBar(TScrollBar*& bar, bool wanted, const VRect& frame, VCoordinate content,
                  VCoordinate visible, bool redraw);

    TScrollBar* mHorizontal = nullptr; // a subview, made when first needed
    TScrollBar* mVertical = nullptr;   // a subview, made when first needed
    bool mMayHaveHorizontal = true;
    bool mMayHaveVertical = true;
    bool mPlacing = false;
};
