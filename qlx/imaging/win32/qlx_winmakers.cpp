// The Windows painters under their names: "gdi", "direct2d", and "windows", which takes Direct2D
// for windows where it loads and GDI for everything else.

#include <cstdlib>
#include <string_view>

#include "basekit/cmn/cmn_trace.h"
#include "qlx/imaging/win32/qlx_painterdirect2d.h"
#include "qlx/imaging/win32/qlx_paintergdi.h"

namespace {

class GDIMaker : public QLX_PainterMaker {
  public:
    const char* GetName() const noexcept override { return "gdi"; }
    QLX_Painter::Ptr MakeOffscreen(int width, int height, QLX_DeviceScale scale,
                                   bool withAlpha) override {
        return QLX_PainterGDI::New(width, height, scale, withAlpha);
    }
    QLX_Painter::Ptr MakeForBuffer(const QLX_PixelBuffer& buffer, QLX_DeviceScale scale) override {
        return QLX_PainterGDI::NewForBuffer(buffer, scale);
    }
    QLX_Painter::Ptr MakeForWindow(void* nativeWindow, QLX_DeviceScale scale) override {
        return QLX_PainterGDI::NewForWindow(static_cast<HWND>(nativeWindow), scale);
    }
    void Detach(QLX_Painter& painter) override {
        if (const auto* windows = dynamic_cast<QLX_PainterWindows*>(&painter))
            windows->GetCanvas().Detach();
    }
};

// What Direct2D refuses is drawn with GDI: a window that shows is worth more than how it is drawn.
class Direct2DMaker : public GDIMaker {
  public:
    const char* GetName() const noexcept override { return "direct2d"; }
    QLX_Painter::Ptr MakeOffscreen(int width, int height, QLX_DeviceScale scale,
                                   bool withAlpha) override {
        QLX_Painter::Ptr painter = QLX_PainterDirect2D::New(width, height, scale, withAlpha);
        return painter ? painter : GDIMaker::MakeOffscreen(width, height, scale, withAlpha);
    }
    QLX_Painter::Ptr MakeForWindow(void* nativeWindow, QLX_DeviceScale scale) override {
        QLX_Painter::Ptr painter =
            QLX_PainterDirect2D::NewForWindow(static_cast<HWND>(nativeWindow), scale);
        return painter ? painter : GDIMaker::MakeForWindow(nativeWindow, scale);
    }
};

class WindowsMaker final : public Direct2DMaker {
  public:
    const char* GetName() const noexcept override { return "windows"; }
    QLX_Painter::Ptr MakeOffscreen(int width, int height, QLX_DeviceScale scale,
                                   bool withAlpha) override {
        return Forced() == "direct2d"
                   ? Direct2DMaker::MakeOffscreen(width, height, scale, withAlpha)
                   : GDIMaker::MakeOffscreen(width, height, scale, withAlpha);
    }
    QLX_Painter::Ptr MakeForWindow(void* nativeWindow, QLX_DeviceScale scale) override {
        return Forced() == "gdi" ? GDIMaker::MakeForWindow(nativeWindow, scale)
                                 : Direct2DMaker::MakeForWindow(nativeWindow, scale);
    }

  private:
    // QLX_PAINTER in the environment; read again every time, since a host may set it at start.
    static std::string_view Forced() {
        const char* text = std::getenv("QLX_PAINTER");
        const std::string_view forced = text ? text : "";
        static bool reported = false;
        if (!forced.empty() && forced != "gdi" && forced != "direct2d" && !reported) {
            reported = true;
            Cmn_TraceWrite("QLX_PAINTER=%s is neither gdi nor direct2d and is not used", text);
        }
        return forced;
    }
};

[[maybe_unused]] const bool sRegistered = [] {
    static GDIMaker gdi;
    static Direct2DMaker direct2d;
    static WindowsMaker windows;
    QLX_PainterFactory::Register(&gdi);
    QLX_PainterFactory::Register(&direct2d);
    QLX_PainterFactory::Register(&windows);
    return true;
}();

} // namespace
