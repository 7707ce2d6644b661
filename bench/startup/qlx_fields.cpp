// A program that a benchmark starts: reads a packed description, opens its window headless, paints
// the first frame and ends. Exit code 1 when nothing was painted.
#include <exception>
#include <memory>

#include <cstdio>

#include "app/misc/qlx_init.h"
#include "mediakit/ff/ff_document.h"
#include "qlx/persistence/qlx_binaryformat.h"
#include "qlx/platform/headless/qlx_headless.h"
#include "qlx/views/uapplication.h"
#include "qlx/views/uviewserver.h"
#include "qlx/views/uwindow.h"

namespace {

bool PaintFirstFrame(const char* file) {
    QLX_Init::Init();
    QLX_HeadlessPlatform platform;
    platform.Install();
    auto* application = new TApplication;
    const auto document = FF_Document::Open(Sys_FileLoc(file), Sys_FileMode::Read);
    QLX_BinaryViewFormat format(document.get());
    const TViewServer::MementoPtr memento(format.ReadMemento("fields", /*trim*/ false));
    TWindow* window = memento ? TViewServer::Get()->NewWindow(memento) : nullptr;
    bool painted = false;
    if (window && window->Open()) {
        platform.GetHeadlessLoop().RunOnce(0);
        painted = !window->NeedsDrawing() && window->GetCosts().mViewsDrawn > 20;
    }
    if (window)
        window->Free();
    platform.Uninstall();
    application->Free();
    return painted;
}

} // namespace

int main(int argc, char** argv) {
    try {
        return argc == 2 && PaintFirstFrame(argv[1]) ? 0 : 1;
    } catch (const std::exception& failure) {
        std::fprintf(stderr, "%s\n", failure.what());
        return 1;
    }
}
