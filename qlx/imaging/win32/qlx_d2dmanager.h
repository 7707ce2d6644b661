// Direct2D, DirectWrite and the Windows Imaging Component, found at run time and shared by all
// painters of the process.
#pragma once

#include <string>

#include "qlx/imaging/win32/qlx_nativehandles.h"

#include <d2d1.h>
#include <dwrite.h>
#include <wincodec.h>

/// The factories. Made on first use; a process where one of the libraries is missing draws with
/// GDI. User-interface thread.
class QLX_API QLX_D2DManager {
  public:
    /// True when everything a Direct2D painter needs is there. Of a failure the reason is traced
    /// once and kept.
    [[nodiscard]] static bool InitD2D();
    /// Why InitD2D said no; empty when it has not.
    [[nodiscard]] static const std::string& GetFailure();

    [[nodiscard]] static ID2D1Factory* GetFactory() noexcept;       ///< null before InitD2D
    [[nodiscard]] static IDWriteFactory* GetTextFactory() noexcept; ///< null before InitD2D
    /// For images; also made without Direct2D. Null when the component is missing.
    [[nodiscard]] static IWICImagingFactory* GetImagingFactory();

    /// Whether this Direct2D smooths the edges of shapes, tried out once: some implementations draw
    /// them rough whatever they are asked for. True before InitD2D.
    [[nodiscard]] static bool SmoothsShapes();

    /// Gives the factories and the kept text layouts back; the next use begins anew.
    static void Shutdown();

    // For tests

    /// What can be made to look missing.
    enum EMissing : unsigned {
        kMissing_Nothing = 0,
        kMissing_D2D = 1,
        kMissing_D2DEntry = 2, ///< the library is there, its entry point is not
        kMissing_DirectWrite = 4,
        kMissing_DirectWriteEntry = 8,
        kMissing_Imaging = 16
    };
    /// Bits of EMissing; shuts down, so that the next use finds them missing.
    static void SimulateMissing(unsigned missing);
    /// Answers SmoothsShapes for the system until the next Shutdown.
    static void SimulateSmoothing(bool smooths) noexcept;
    /// The next frames that are completed report that the device was lost.
    static void SimulateDeviceLoss(int frames) noexcept;
    /// Makes every new render target fail, as when no device is left.
    static void SimulateNoTargets(bool refused) noexcept;
    [[nodiscard]] static bool RefusesTargets() noexcept;
    /// Asked at the end of every frame.
    [[nodiscard]] static bool TakeSimulatedLoss() noexcept;
};
