#include "qlx/platform/testing/qlx_preview.h"

#include "basekit/cmn/cmn_assert.h"
#include "qlx/persistence/qlx_persistence.h"
#include "qlx/views/uwindow.h"

QLX_DEFINE_CLASS(TPreviewEvent, TEvent)

TPreviewEvent::TPreviewEvent() = default;
TPreviewEvent::~TPreviewEvent() = default;

TObject* TPreviewEvent::Clone() {
    Cmn_Assert("TPreviewEvent::Clone is not supported", "qlx/platform/testing/qlx_preview",
               __LINE__);
    return nullptr;
}

void TPreviewEvent::Send(TWindow& window, const MementoPtr& memento, const std::string& folder) {
    auto* event = new TPreviewEvent;
    event->IEvent(kEvent_Preview, &window, &window);
    event->mMemento = memento;
    event->mFolder = folder;
    window.HandleEvent(kEvent_Preview, &window, event);
    event->Free();
}
