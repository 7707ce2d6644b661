#include "qlx/imaging/win32/qlx_d2dmanager.h"

#include <algorithm>
#include <cstdio>
#include <iterator>

#include "basekit/cmn/cmn_trace.h"
#include "qlx/imaging/win32/qlx_d2dshapes.h"
#include "qlx/imaging/win32/qlx_d2dtext.h"

namespace {

using CreateD2DFactory = HRESULT(WINAPI*)(D2D1_FACTORY_TYPE, REFIID, const D2D1_FACTORY_OPTIONS*,
                                          void**);
using CreateTextFactory = HRESULT(WINAPI*)(DWRITE_FACTORY_TYPE, REFIID, IUnknown**);

// CLSID_WICImagingFactory, written out so that no import library is needed.
constexpr GUID kImagingFactory = {
    0xcacaf262, 0x9370, 0x4615, {0xa1, 0x3b, 0x9f, 0x55, 0x39, 0xda, 0x4c, 0x0a}};

struct D2DState {
    bool tried = false;
    bool triedImaging = false;
    bool triedSmoothing = false;
    bool smooths = true;
    std::string failure;
    QLX_ComPtr<ID2D1Factory> factory;
    QLX_ComPtr<IDWriteFactory> textFactory;
    QLX_ComPtr<IWICImagingFactory> imagingFactory;
    unsigned missing = 0;
    int losses = 0;
    bool noTargets = false;
};

// Deliberate: never deleted. When the process ends, the libraries' own threads are gone already,
// and giving their objects back would wait for them for ever. Shutdown does it in time.
D2DState& State() {
    static auto& state = *new D2DState;
    return state;
}

// Libraries stay loaded for the life of the process: their objects may outlive every painter.
HMODULE Load(const wchar_t* name, QLX_D2DManager::EMissing kind) {
    return (State().missing & kind) != 0 ? nullptr : LoadLibraryW(name);
}

template <class Function>
Function Find(HMODULE library, const char* name, QLX_D2DManager::EMissing kind) {
    if ((State().missing & kind) != 0)
        return nullptr;
    return reinterpret_cast<Function>(reinterpret_cast<void*>(GetProcAddress(library, name)));
}

std::string WithCode(const char* text, HRESULT result) {
    char code[24];
    std::snprintf(code, sizeof code, " (0x%08lX)", static_cast<unsigned long>(result));
    return text + std::string(code);
}

// Answers the failure, empty for none.
std::string LoadD2D() {
    const HMODULE library = Load(L"d2d1.dll", QLX_D2DManager::kMissing_D2D);
    if (!library)
        return "Direct2D can't be loaded!!! (no d2d1.dll)";
    const auto create =
        Find<CreateD2DFactory>(library, "D2D1CreateFactory", QLX_D2DManager::kMissing_D2DEntry);
    if (!create)
        return "QLX_D2DManager::InitD2D -> ::GetProcAddress of \"D2D1CreateFactory\"";
    void* made = nullptr;
    const HRESULT result =
        create(D2D1_FACTORY_TYPE_SINGLE_THREADED, __uuidof(ID2D1Factory), nullptr, &made);
    if (FAILED(result))
        return WithCode("QLX_D2DManager::InitD2D -> ::D2D1CreateFactory", result);
    State().factory.Adopt(static_cast<ID2D1Factory*>(made));
    return {};
}

std::string LoadDirectWrite() {
    const HMODULE library = Load(L"dwrite.dll", QLX_D2DManager::kMissing_DirectWrite);
    if (!library)
        return "DirectWrite can't be loaded!!! (no dwrite.dll)";
    const auto create = Find<CreateTextFactory>(library, "DWriteCreateFactory",
                                                QLX_D2DManager::kMissing_DirectWriteEntry);
    if (!create)
        return "QLX_D2DManager::InitD2D -> ::GetProcAddress of \"DWriteCreateFactory\"";
    IUnknown* made = nullptr;
    const HRESULT result = create(DWRITE_FACTORY_TYPE_SHARED, __uuidof(IDWriteFactory), &made);
    if (FAILED(result))
        return WithCode("QLX_D2DManager::InitD2D -> ::DWriteCreateFactory", result);
    State().textFactory.Adopt(static_cast<IDWriteFactory*>(made));
    return {};
}

// Draws half a square, cut along its diagonal, and looks for pixels between black and white.
bool TrySmoothing(ID2D1Factory& factory, IWICImagingFactory& imaging) {
    constexpr int kSide = 8;
    QLX_ComPtr<IWICBitmap> bitmap;
    IWICBitmap* made = nullptr;
    if (FAILED(imaging.CreateBitmap(kSide, kSide, GUID_WICPixelFormat32bppPBGRA,
                                    WICBitmapCacheOnLoad, &made)))
        return true;
    bitmap.Adopt(made);
    const D2D1_RENDER_TARGET_PROPERTIES properties{
        D2D1_RENDER_TARGET_TYPE_DEFAULT,
        {DXGI_FORMAT_B8G8R8A8_UNORM, D2D1_ALPHA_MODE_PREMULTIPLIED},
        96,
        96,
        D2D1_RENDER_TARGET_USAGE_NONE,
        D2D1_FEATURE_LEVEL_DEFAULT};
    QLX_ComPtr<ID2D1RenderTarget> target;
    ID2D1RenderTarget* madeTarget = nullptr;
    if (FAILED(factory.CreateWicBitmapRenderTarget(made, &properties, &madeTarget)))
        return true;
    target.Adopt(madeTarget);
    QLX_WinShape half;
    half.path.MoveTo(0, 0);
    half.path.LineTo(kSide, kSide - 1);
    half.path.LineTo(0, kSide - 1);
    half.path.Close();
    const QLX_ComPtr<ID2D1PathGeometry> geometry = QLX_MakeD2DGeometry(half);
    QLX_ComPtr<ID2D1SolidColorBrush> brush;
    ID2D1SolidColorBrush* madeBrush = nullptr;
    const D2D1_COLOR_F black{0, 0, 0, 0}, white{1, 1, 1, 1};
    if (!geometry || FAILED(target->CreateSolidColorBrush(&white, nullptr, &madeBrush)))
        return true;
    brush.Adopt(madeBrush);
    target->BeginDraw();
    target->Clear(&black);
    target->SetAntialiasMode(D2D1_ANTIALIAS_MODE_PER_PRIMITIVE);
    target->FillGeometry(geometry.Get(), brush.Get(), nullptr);
    std::uint8_t pixels[kSide * kSide * 4] = {};
    const WICRect all{0, 0, kSide, kSide};
    if (FAILED(target->EndDraw(nullptr, nullptr)) ||
        FAILED(bitmap->CopyPixels(&all, kSide * 4, sizeof pixels, pixels)))
        return true;
    return std::any_of(std::begin(pixels), std::end(pixels),
                       [](std::uint8_t value) { return value > 16 && value < 240; });
}

} // namespace

bool QLX_D2DManager::InitD2D() {
    D2DState& state = State();
    if (state.tried)
        return state.failure.empty();
    state.tried = true;
    state.failure = LoadD2D();
    if (state.failure.empty())
        state.failure = LoadDirectWrite();
    if (state.failure.empty() && !GetImagingFactory())
        state.failure = "Windows Imaging Component can't be loaded!!! (no windowscodecs.dll)";
    if (state.failure.empty())
        return true;
    Cmn_TraceWrite("%s", state.failure.c_str());
    state.factory.Reset();
    state.textFactory.Reset();
    return false;
}

const std::string& QLX_D2DManager::GetFailure() { return State().failure; }

ID2D1Factory* QLX_D2DManager::GetFactory() noexcept { return State().factory.Get(); }

IDWriteFactory* QLX_D2DManager::GetTextFactory() noexcept { return State().textFactory.Get(); }

IWICImagingFactory* QLX_D2DManager::GetImagingFactory() {
    D2DState& state = State();
    if (state.triedImaging)
        return state.imagingFactory.Get();
    state.triedImaging = true;
    if ((state.missing & kMissing_Imaging) != 0)
        return nullptr;
    // Somebody else's choice of apartment is as good; the library never closes it again.
    const HRESULT opened = CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
    if (FAILED(opened) && opened != RPC_E_CHANGED_MODE)
        return nullptr;
    void* made = nullptr;
    if (SUCCEEDED(CoCreateInstance(kImagingFactory, nullptr, CLSCTX_INPROC_SERVER,
                                   __uuidof(IWICImagingFactory), &made)))
        state.imagingFactory.Adopt(static_cast<IWICImagingFactory*>(made));
    return state.imagingFactory.Get();
}

bool QLX_D2DManager::SmoothsShapes() {
    D2DState& state = State();
    if (state.triedSmoothing || !state.factory || !state.imagingFactory)
        return state.smooths;
    state.triedSmoothing = true;
    state.smooths = TrySmoothing(*state.factory.Get(), *state.imagingFactory.Get());
    Cmn_Trace(kTrace_Drawing, "Direct2D %s",
              state.smooths ? "smooths edges" : "leaves edges rough: coverage is drawn instead");
    return state.smooths;
}

void QLX_D2DManager::SimulateSmoothing(bool smooths) noexcept {
    State().triedSmoothing = true;
    State().smooths = smooths;
}

void QLX_D2DManager::Shutdown() {
    QLX_D2DText::Clear();
    D2DState& state = State();
    state.factory.Reset();
    state.textFactory.Reset();
    state.imagingFactory.Reset();
    state.failure.clear();
    state.tried = state.triedImaging = state.triedSmoothing = false;
    state.smooths = true;
}

void QLX_D2DManager::SimulateMissing(unsigned missing) {
    Shutdown();
    State().missing = missing;
}

void QLX_D2DManager::SimulateDeviceLoss(int frames) noexcept { State().losses = frames; }

void QLX_D2DManager::SimulateNoTargets(bool refused) noexcept { State().noTargets = refused; }

bool QLX_D2DManager::RefusesTargets() noexcept { return State().noTargets; }

bool QLX_D2DManager::TakeSimulatedLoss() noexcept {
    if (State().losses == 0)
        return false;
    --State().losses;
    return true;
}
