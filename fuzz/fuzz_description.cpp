// Any bytes as a view description that came by mail: its window is made, shown, used a little, read
// anew and closed, whatever the classes and values in it are.
#include <cstdlib>
#include <memory>
#include <string>

#include "app/misc/qlx_init.h"
#include "basekit/cmn/cmn_assert.h"
#include "basekit/cmn/cmn_trace.h"
#include "qlx/persistence/qlx_sourceformat.h"
#include "qlx/platform/testing/qlx_testdriver.h"
#include "qlx/views/uviewserver.h"
#include "qlx/views/uwindow.h"

// Fontconfig keeps a little for as long as the process lives.
extern "C" [[gnu::visibility("default")]] const char* __lsan_default_suppressions() {
    return "leak:libfontconfig\n";
}

namespace {
constexpr VCoordinate kLargest = 600;
using MementoPtr = Cmn_AliasedRefCountPtr<QLX_ViewMemento>;

MementoPtr Read(const std::string& text) {
    Sys_File file("fuzz.xml", text);
    const std::unique_ptr<QLX_RawPropertyContainer> wrapper(QLX_XMLParser(&file, nullptr).Parse());
    if (!wrapper || !wrapper->GetFirstChild())
        return {};
    MementoPtr memento(
        new QLX_ViewMemento(wrapper->RemoveChild(wrapper->GetFirstChild()).release(), "fuzz"));
    memento->GetRoot()->SetCurrentFilter(QLX_PropertyFilter::DefaultFilter());
    return memento;
}

/// The description's window, or one around its view; null when it has no view.
TWindow* MakeWindow(const MementoPtr& memento) {
    TView* const view = TViewServer::Get()->NewViewHierarchy(memento);
    (void)TViewServer::Get()->TakeProblems();
    if (!view)
        return nullptr;
    auto* window = QLX_ObjectCast<TWindow>(view);
    if (!window) {
        window = new TWindow;
        window->IWindow("fuzz", VPoint(kLargest, kLargest));
        view->Locate(VPoint(0, 0), /*redraw*/ false);
        window->AddSubView(view);
    }
    window->SetFreeOnClose(false);
    return window;
}

void Use(QLX_TestDriver& driver) {
    try {
        driver.Type("1a");
        driver.Chord("Tab");
        driver.Chord("Down");
        (void)driver.GetPicture();
    } catch (const QLX_TestDriverError&) {
        // No picture of a window without a size, no keys for one that has closed itself.
    }
}
} // namespace

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size) {
    Cmn_SetAssertionHandler([](const char*, const char*, int) {});
    Cmn_SetTraceSink([](const char*) {});
    QLX_Init::Init();
    const MementoPtr memento = Read(std::string(reinterpret_cast<const char*>(data), size));
    if (!memento)
        return 0;
    QLX_TestDriver driver;
    TWindow* const window = MakeWindow(memento);
    if (!window)
        return 0;
    if (window->GetSize().v <= kLargest && window->GetSize().h <= kLargest) {
        driver.OpenWindow(*window);
        Use(driver);
        TViewServer::Get()->ReReadHierarchy(window, memento);
        (void)TViewServer::Get()->TakeProblems();
        driver.WaitForIdle();
        window->Close();
    }
    window->Free();
    return 0;
}
