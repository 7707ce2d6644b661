// The law of drawing piece by piece: what stands on the screen is what a full repaint draws.
#pragma once

#include <string>

#include "qlx/platform/testing/qlx_testdriver.h"
#include "qlx/views/uwindow.h"

/// Display scales at which the law is put to the test; 120 is 1.
inline constexpr int kRepaintScales[] = {120, 150, 180, 240};

/// Empty when a full repaint of the window in use changes no pixel of the screen. Otherwise what is
/// wrong, and NAME_shown.png and NAME_whole.png among the tests' output.
[[nodiscard]] inline std::string RepaintComplaint(QLX_TestDriver& driver, const std::string& name) {
    driver.WaitForIdle();
    const QLX_Image::Ptr shown = driver.GetPicture();
    driver.GetWindow()->ForceRedraw();
    driver.WaitForIdle();
    const QLX_Image::Ptr whole = driver.GetPicture();
    if (QLX_TestDriver::IsSamePicture(shown, whole))
        return "";
    shown->ToPNGFile(QLX_TEST_OUTPUT "/" + name + "_shown.png");
    whole->ToPNGFile(QLX_TEST_OUTPUT "/" + name + "_whole.png");
    return "a full repaint changes the picture";
}
