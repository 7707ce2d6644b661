// What stands in a window for a view that could not be made.
#pragma once

#include "qlx/views/uview.h"

/// A frame with a cross and the name of the class that is missing. It has the frame, the identifier
/// and the subviews of the description, so that the rest of the window is where it belongs.
class QLX_API TPlaceholderView : public TView {
  public:
    QLX_DECLARE_CLASS(TPlaceholderView);
    TPlaceholderView();
    ~TPlaceholderView() override;

    void SetMissingClass(const std::string& name);
    [[nodiscard]] const std::string& GetMissingClass() const { return *mMissingClass; }

    void Draw(const VRect& area) override;
    bool GetToolTip(const VPoint& local, std::string& text, VRect& area) const override;
    [[nodiscard]] TObject* Clone() override;

  private:
    std::string* mMissingClass; // owned; a pointer, since clones start as bytes
};
