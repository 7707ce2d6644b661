// preview: the window follows its files, and what is wrong is seen in place.
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>

#include "qlx/imaging/qlx_image.h"
#include "run_tool.h"

#ifndef _WIN32 // the shell changes the files while the tool runs
namespace {
std::string Window(const std::string& button, const std::string& more = "") {
    return "<container><viewhierarchy name='w'>\n"
           "<view class='TWindow' Identifier='wind'>"
           "<property name='Size' type='point' value='150 300'/>\n"
           "<view class='TEditText' Identifier='edit'>"
           "<property name='Frame' type='rect' value='10 10 40 200'/></view>\n"
           "<view class='TButton' Identifier='butt'>" +
           button + "</view>\n" + more + "</view></viewhierarchy></container>";
}

std::string Button(const std::string& title, const std::string& more = "") {
    return "<property name='Frame' type='rect' value='50 10 80 100'/>"
           "<property name='Title' type='string' value='" +
           title + "'/>" + more;
}

class Preview : public ::testing::Test {
  protected:
    Preview() : mFolder(std::filesystem::absolute(FreshFolder("qlxview-preview")).string()) {}

    /// A step of a play script.
    void Step(const std::string& line) { mInput += "cat <<'END'\n" + line + "\nEND\n"; }
    /// Waits until the steps so far were done, then replaces the description.
    void Replace(const std::string& text) {
        const std::string number = std::to_string(++mReplaced);
        WriteText(mFolder + "/next" + number + ".xml", text);
        Step("picture \"" + mFolder + "/sync" + number + ".png\"");
        mInput += "n=0\nuntil [ -e " + mFolder + "/sync" + number +
                  ".png ] || [ $n = 400 ]; do sleep 0.05; n=$((n+1)); done\nmv " + mFolder +
                  "/next" + number + ".xml " + mFolder + "/W.xml\n";
    }
    ToolRun Run(const std::string& description) {
        WriteText(mFolder + "/W.xml", description);
        WriteText(mFolder + "/input.sh", mInput);
        ToolRun run =
            RunTool("preview --headless " + mFolder + "/W.xml < " + mFolder + "/input.fifo");
        for (std::size_t at; (at = run.mOut.find(mFolder + "/")) != std::string::npos;)
            run.mOut.erase(at, mFolder.size() + 1);
        return run;
    }
    void StartInput() {
        const std::string fifo = mFolder + "/input.fifo";
        ASSERT_EQ(std::system(("mkfifo " + fifo).c_str()), 0);
        // Holds none of the test's own streams, and ends when nobody reads.
        const std::string write = "until [ -e " + mFolder +
                                  "/input.sh ]; do sleep 0.05; done; sh " + mFolder +
                                  "/input.sh > " + fifo;
        ASSERT_EQ(std::system(("timeout 60 sh -c '" + write + "' >/dev/null 2>&1 &").c_str()), 0);
    }

    std::string mFolder;
    std::string mInput;
    int mReplaced = 0;
};

TEST_F(Preview, WhatTheUserDidStaysWhenValuesAreAddedAndChanged) {
    StartInput();
    Step("expect name 'butt' \"Play\"");
    Step("click 'edit'");
    Step("type \"mine\"");
    Replace(Window(Button("Stop", "<property name='Enabled' type='bool' value='false'/>"),
                   "<view class='TButton' Identifier='more'>"
                   "<property name='Frame' type='rect' value='90 10 120 100'/></view>"));
    Step("expect name 'butt' \"Stop\"");
    Step("expect 'edit' \"mine\"");
    Step("expect shown 'more' yes");
    // A value that is taken away cannot be forgotten by a living view: the window is made anew.
    Replace(Window(Button("Stop")));
    Step("expect 'edit' \"\"");
    const ToolRun run = Run(Window(Button("Play")));
    EXPECT_EQ(run.mErr, "");
    EXPECT_EQ(run.mOut, "W.xml (Default, ENU, light): 0 problems\n"
                        "W.xml (Default, ENU, light): 0 problems\n"
                        "W.xml (Default, ENU, light): 0 problems\n");
    EXPECT_EQ(run.mStatus, 0);
}

TEST_F(Preview, ProblemsAreSaidAndMarkedAndGoAway) {
    StartInput();
    Replace(Window(Button("A title that is far too long for it"),
                   "<view class='TNothing' Identifier='none'>"
                   "<property name='Frame' type='rect' value='90 10 120 100'/></view>"));
    Replace("<container>\n<viewhierarchy>\n<view");
    Step("expect name 'butt' \"A title that is far too long for it\""); // the last good one
    Replace(Window(Button("Play")));
    Step("picture \"" + mFolder + "/end.png\"");
    const ToolRun run = Run(Window(Button("Play")));
    EXPECT_EQ(run.mErr, "");
    EXPECT_EQ(run.mOut,
              "W.xml (Default, ENU, light): 0 problems\n"
              "W.xml (Default, ENU, light): 2 problems\n"
              "W.xml:5:1: error: the class TNothing is not known here; load its library with "
              "--load [class]\n"
              "W.xml:4:1: error: TButton 'butt': \"A title that is far too long for it\" needs 183 "
              "of 82 in width [text-width]\n"
              "W.xml (Default, ENU, light): 1 problems\n"
              "W.xml:3:1: error: unclosed token [unreadable]\n"
              "W.xml (Default, ENU, light): 0 problems\n");
    EXPECT_EQ(run.mStatus, 0);
    const QLX_Image::Ptr well = QLX_Image::FromPNGFile(mFolder + "/sync1.png");
    const QLX_Image::Ptr marked = QLX_Image::FromPNGFile(mFolder + "/sync2.png");
    const QLX_Image::Ptr broken = QLX_Image::FromPNGFile(mFolder + "/sync3.png");
    const std::uint32_t mark = marked->GetPixel(50, 49); // above the button's title
    EXPECT_NE(mark, well->GetPixel(50, 49));
    EXPECT_EQ(marked->GetPixel(50, 89), mark);                     // the missing class
    EXPECT_EQ(marked->GetPixel(1, marked->GetHeight() - 1), mark); // the band's edge
    EXPECT_EQ(broken->GetPixel(1, broken->GetHeight() - 1), mark);
    EXPECT_TRUE(QLX_Image::FromPNGFile(mFolder + "/end.png")->IsEqual(*well));
}

TEST_F(Preview, KeysShowTheOtherLooks) {
    StartInput();
    const std::string small = "<property name='Title' type='string' value='S' Layout='Small'/>"
                              "<property name='Title' type='string' value='Los' Language='DEU'/>";
    Step("chord F6");
    Step("expect name 'butt' \"S\"");
    Step("chord F6");
    Step("chord F7");
    Step("expect name 'butt' \"Los\"");
    Step("chord F7");
    Step("expect name 'butt' \"Play\""); // the widest of all
    Step("chord F8");
    const ToolRun run = Run(Window(Button("Play", small)));
    EXPECT_EQ(run.mErr, "");
    EXPECT_EQ(run.mOut, "W.xml (Default, ENU, light): 0 problems\n"
                        "W.xml (Small, ENU, light): 0 problems\n"
                        "W.xml (Default, ENU, light): 0 problems\n"
                        "W.xml (Default, DEU, light): 0 problems\n"
                        "W.xml (Default, widest, light): 0 problems\n"
                        "W.xml (Default, widest, dark): 0 problems\n");
}

TEST_F(Preview, AFileThatIsBrokenAtFirstIsShownOnceItIsMended) {
    StartInput();
    Replace(Window(Button("Play")));
    Step("expect name 'butt' \"Play\"");
    Step("expect name 'butt' \"Stop\"");
    const ToolRun run = Run("<container>");
    EXPECT_EQ(run.mErr, "stdin:3: butt name is \"Play\", expected \"Stop\"\n");
    EXPECT_EQ(run.mOut, "W.xml (Default, ENU, light): 1 problems\n"
                        "W.xml:1:12: error: no element found [unreadable]\n"
                        "W.xml (Default, ENU, light): 0 problems\n");
    EXPECT_EQ(run.mStatus, 1); // of the step
}

TEST_F(Preview, WhatCannotBeShownIsSaid) {
    WriteText(mFolder + "/W.xml", Window(Button("Play")));
    EXPECT_EQ(RunTool("preview --headless " + mFolder + "/none.xml").mStatus, 2);
    EXPECT_EQ(RunTool("preview --headless --layout Large " + mFolder + "/W.xml").mStatus, 2);
    EXPECT_EQ(RunTool("preview --scale 2 " + mFolder + "/W.xml").mStatus, 2);
}
} // namespace
#endif
