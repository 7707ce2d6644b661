// preview in a real window, on an X server of its own: it follows the file and its keys.
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>

#include "qlx/imaging/qlx_image.h"
#include "tests/tools/qlxview/run_tool.h"

namespace {
std::string Window(const std::string& title) {
    return "<container><viewhierarchy name='w'>\n<view class='TWindow' Identifier='wind'>"
           "<property name='Title' type='string' value='" +
           title +
           "'/><property name='Size' type='point' value='150 300'/>\n"
           "<property name='Size' type='point' value='100 200' Layout='Small'/>\n"
           "</view></viewhierarchy></container>";
}

// Every wait ends by itself.
constexpr const char* kScript = R"sh(
cd FOLDER
Xvfb -displayfd 7 -screen 0 800x600x24 -nolisten tcp 7>display 2>/dev/null &
server=$!
until_true() { n=0; until "$@" || [ $n = 100 ]; do sleep 0.1; n=$((n+1)); done; }
until_true test -s display
export DISPLAY=:$(cat display) SDL_VIDEODRIVER=x11
TOOL preview W.xml > out 2> err &
tool=$!
shown() { id=$(xdotool search --name "^$1\$" 2>/dev/null | tail -1); [ -n "$id" ]; }
until_true shown First
[ -n "$id" ] && import -window $id first.png
mv next.xml W.xml
problem() { grep -q '1 problems' out; }
until_true problem
sleep 0.3
[ -n "$id" ] && import -window $id second.png
[ -n "$id" ] && xdotool windowfocus $id key F6
look() { grep -q '(Small' out; }
until_true look
shown First
sleep 0.3
[ -n "$id" ] && import -window $id third.png
kill $tool
wait $tool
kill $server
wait $server
true
)sh";

TEST(PreviewWindow, FollowsTheFileAndTheKeys) {
    const std::string folder =
        std::filesystem::absolute(FreshFolder("qlxview-preview-window")).string();
    WriteText(folder + "/W.xml", Window("First"));
    std::string broken = Window("First");
    broken.insert(broken.find("</view>"), "<view class='TNothing' Identifier='none'>"
                                          "<property name='Frame' type='rect' value='10 10 60 90'/>"
                                          "</view>");
    WriteText(folder + "/next.xml", broken);
    std::string script = kScript;
    const auto put = [&script](const std::string& name, const std::string& value) {
        script.replace(script.find(name), name.size(), value);
    };
    put("FOLDER", folder);
    put("TOOL", std::filesystem::absolute(QLX_TEST_OUTPUT "/../bin/qlxview").string());
    WriteText(folder + "/script.sh", script);
    ASSERT_EQ(std::system(("sh " + folder + "/script.sh > " + folder + "/script.out 2>&1").c_str()),
              0);
    EXPECT_EQ(ReadText(folder + "/out"),
              "W.xml (Default, ENU, light): 0 problems\n"
              "W.xml (Default, ENU, light): 1 problems\n"
              "W.xml:4:1: error: the class TNothing is not known here; load its library with "
              "--load [class]\n"
              "W.xml (Small, ENU, light): 1 problems\n"
              "W.xml:4:1: error: the class TNothing is not known here; load its library with "
              "--load [class]\n")
        << ReadText(folder + "/script.out");
    const QLX_Image::Ptr first = QLX_Image::FromPNGFile(folder + "/first.png");
    const QLX_Image::Ptr second = QLX_Image::FromPNGFile(folder + "/second.png");
    const QLX_Image::Ptr third = QLX_Image::FromPNGFile(folder + "/third.png");
    EXPECT_EQ(first->GetWidth(), 300);
    EXPECT_NE(second->GetPixel(9, 30), first->GetPixel(9, 30));   // the mark's left edge
    EXPECT_NE(second->GetPixel(1, 149), first->GetPixel(1, 149)); // the band's
    EXPECT_EQ(third->GetWidth(), 200);
}
} // namespace
