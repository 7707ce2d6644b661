// What a window without a screen must not wait for: the libraries of the desktop and of joined
// scripts are loaded by what needs them.
#include <memory>
#include <string>

#include <dlfcn.h>
#include <gtest/gtest.h>

#include "basekit/cmn/cmn_types.h"
#include "qlx/persistence/qlx_binaryformat.h"
#include "qlx/platform/testing/qlx_testdriver.h"
#include "qlx/views/uwindow.h"

namespace {

bool IsLoaded(const char* library) {
    void* const handle = dlopen(library, RTLD_LAZY | RTLD_NOLOAD);
    if (handle)
        dlclose(handle);
    return handle != nullptr;
}

TEST(HeadlessStartup, AWindowWithTextFieldsLoadsNoDesktop) {
    ClassDesc::InitUClassDesc();
    constexpr const char* kLibraries[] = {"libSDL2-2.0.so.0", "libX11-xcb.so.1", "libpulse.so.0",
                                          "libpangoft2-1.0.so.0", "libgobject-2.0.so.0"};
    std::string before;
    for (const char* library : kLibraries)
        before += IsLoaded(library) ? '1' : '0'; // by another test of this program

    const QLX_PropertyFilter& filter = QLX_PropertyFilter::DefaultFilter();
    auto* root = new QLX_RawPropertyContainer("viewhierarchy");
    auto window = std::make_unique<QLX_RawPropertyContainer>("view");
    window->SetStringProperty("class", "TWindow", filter);
    window->SetRectProperty("Frame", {0, 0, 120, 40}, filter);
    auto field = std::make_unique<QLX_RawPropertyContainer>("view");
    field->SetStringProperty("class", "TEditText", filter);
    field->SetIDTypeProperty("Identifier", Cmn_FourChar("name"), filter);
    field->SetRectProperty("Frame", {10, 10, 110, 30}, filter);
    field->SetStringProperty("Text", "Größe 1.3", filter);
    window->AddChild(std::move(field));
    root->AddChild(std::move(window));
    const QLX_ViewMemento memento(root, "start");
    const std::string packed = QLX_BinaryViewFormat::EncodeMemento(memento);

    QLX_TestDriver driver;
    driver.OpenWindow(Cmn_AliasedRefCountPtr<QLX_ViewMemento>(
        QLX_BinaryViewFormat::DecodeMemento(packed, "start").release()));
    driver.Click(Cmn_FourChar("name"));
    driver.Type("!");
    EXPECT_NE(driver.GetDrawing(Cmn_FourChar("name")).find("!"), std::string::npos);
    const QLX_Image::Ptr picture = driver.GetPicture();
    EXPECT_EQ(picture->GetWidth(), 120);

    std::string after;
    for (const char* library : kLibraries)
        after += IsLoaded(library) ? '1' : '0';
    EXPECT_EQ(after, before);
}

} // namespace
