// A view for tests of windows: shows what it was given (keys, drags, the wheel, whether the pointer
// is over it and whether it is the target) as shapes and text, so that pictures tell whether it got
// it.
#pragma once

#include <memory>
#include <string>

#include "qlx/persistence/qlx_persistence.h"
#include "qlx/views/uview.h"

class TProbeView : public TView {
  public:
    QLX_DECLARE_CLASS(TProbeView);
    TProbeView();
    ~TProbeView() override;

    [[nodiscard]] std::string GetText() const { return mText; }
    [[nodiscard]] VPoint GetDragged() const { return mDragged; }
    void SetDragged(const VPoint& way);

    void Draw(const VRect& area) override;
    bool DoMouseCommand(const VPoint& local, TToolboxEvent* event) override;
    bool DoMouseWheel(const VPoint& local, TToolboxEvent* event) override;
    void DoMouseEnter(const VPoint& local, TToolboxEvent* event) override;
    void DoMouseLeave(TToolboxEvent* event) override;
    void DoKeyEvent(TToolboxEvent* event) override;
    bool WantsToBeTarget() override { return true; }
    void BecameTarget() override;
    void ResignedTarget() override;
    [[nodiscard]] TObject* Clone() override;

  private:
    void Typed(std::uint32_t character);

    char mText[64] = ""; // UTF-8; plain bytes, since clones start as bytes
    VPoint mDragged;
    int mWheel = 0;
};

/// Reads a description of tests/data; throws what the reader throws.
[[nodiscard]] Cmn_AliasedRefCountPtr<QLX_ViewMemento> ReadDescription(const std::string& name);
/// The same from XML text.
[[nodiscard]] Cmn_AliasedRefCountPtr<QLX_ViewMemento> DescriptionFromText(const std::string& xml);
