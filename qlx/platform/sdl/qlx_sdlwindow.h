// A window of the SDL platform. For the SDL platform's own source files.
#pragma once

#include <SDL_video.h>

#include <memory>
#include <vector>

#include "qlx/imaging/qlx_devicescale.h"
#include "qlx/platform/sdl/qlx_sdl.h"
#include "qlx/views/qlx_windowport.h"

class QLX_SDLWindow : public QLX_WindowPort {
  public:
    QLX_SDLWindow(QLX_SDLPlatform::State& platform, const QLX_WindowSettings& settings,
                  QLX_WindowPortClient* client);
    ~QLX_SDLWindow() override;
    [[nodiscard]] bool IsMade() const { return mWindow != nullptr; }

    Cmn_Point<int> GetSize() const override;
    void SetSize(Cmn_Point<int> size) override;
    void SetMinimumSize(Cmn_Point<int> size) override;
    Cmn_Point<int> GetPlace() const override;
    void SetPlace(Cmn_Point<int> place) override;
    int GetScale() const override { return mScale.Get120ths(); }
    void SetTitle(const std::string& title) override;
    void Show(bool shown) override;
    void Activate() override;
    const PainterPtr& GetPainter() override;
    void Present(const std::vector<Cmn_Rect<int>>& rects) override;
    void SetCursor(ECursor cursor) override;
    void SetCapture(bool capture) override;
    void SetTextInput(const Cmn_Rect<int>* caret) override;
    void* GetNativeHandle() const override { return mWindow; }

    [[nodiscard]] QLX_WindowPortClient* GetClient() const { return mClient; }
    [[nodiscard]] SDL_Window* GetWindow() const { return mWindow; }
    [[nodiscard]] Uint32 GetID() const;
    /// From SDL's window coordinates, which are device pixels, to logical ones.
    [[nodiscard]] Cmn_Point<int> ToLogical(int x, int y) const;
    /// The surface is invalid: the next GetPainter fetches it anew.
    void SurfaceChanged();

  private:
    [[nodiscard]] Cmn_Point<int> ToDevice(Cmn_Point<int> size) const;

    QLX_SDLPlatform::State& mPlatform;
    QLX_WindowPortClient* mClient; // not owned
    SDL_Window* mWindow = nullptr; // owned
    QLX_DeviceScale mScale;
    PainterPtr mPainter;
    bool mSurfaceIsStale = true;
};
