// A library as a host has one: a view class of its own, which reads a property of its own.
#include "qlx/persistence/qlx_persistence.h"
#include "qlx/views/uview.h"

class THostGauge : public TView {
  public:
    QLX_DECLARE_CLASS(THostGauge);
    void ReadProperties(QLX_RawPropertyContainer* container,
                        const Cmn_AliasedRefCountPtr<QLX_ViewMemento>& memento) override;

  private:
    std::int32_t mTicks = 12;
};

QLX_DEFINE_CLASS(THostGauge, TView)

void THostGauge::ReadProperties(QLX_RawPropertyContainer* container,
                                const Cmn_AliasedRefCountPtr<QLX_ViewMemento>& memento) {
    TView::ReadProperties(container, memento);
    container->GetInt32Property("Ticks", mTicks);
}
