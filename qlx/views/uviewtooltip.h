// The little box that explains what the pointer rests on.
#pragma once

#include "qlx/views/uview.h"

/// Made and placed by the window, in front of everything; never takes the mouse.
class QLX_API TToolTipView : public TView {
  public:
    QLX_DECLARE_CLASS(TToolTipView);
    TToolTipView();
    ~TToolTipView() override;

    /// Sets the text and the size it needs, at most maxWidth wide.
    void SetText(const std::string& text, const PainterPtr& painter, int maxWidth);
    [[nodiscard]] const std::string& GetText() const { return *mText; }

    void Draw(const VRect& area) override;
    bool ContainsMouse(const VPoint& local) const override;
    [[nodiscard]] TObject* Clone() override;

  private:
    std::string* mText; // owned; a pointer, since clones start as bytes
};
