// Descriptions that came by mail: whatever is in them, every command ends in time, says where and
// why, and opens nothing but the description's own files.
#include <gtest/gtest.h>

#include <sstream>

#include "app/misc/qlx_init.h"
#include "qlx/foundation/uobject.h"
#include "run_tool.h"

namespace {
std::string Wrap(const std::string& inside) {
    return "<container><viewhierarchy name='W'>\n" + inside + "</viewhierarchy></container>";
}

std::string Times(int count, const std::string& text) {
    std::string out;
    for (int i = 0; i < count; ++i)
        out += text;
    return out;
}

/// Without the folder, whose name differs from build to build.
std::string Shorten(std::string text, const std::string& folder) {
    for (std::size_t at; (at = text.find(folder + "/")) != std::string::npos;)
        text.erase(at, folder.size() + 1);
    return text;
}

TEST(HostileDescription, IsReportedWhereItIsWrong) {
    const std::string folder = FreshFolder("hostile");
    const std::string label = "<view class='TView' Identifier='main'>"
                              "<property name='Frame' type='rect' value='0 0 40 40'/>";
    const struct {
        const char* mWhy;
        const char* mCommand;
        std::string mText;
        int mStatus;
        const char* mSaid; // somewhere in what is said; empty when nothing is to be said
    } rows[] = {
        {"a window that no memory holds", "render -o %/a.png",
         Wrap("<view class='TWindow' Identifier='main'>"
              "<property name='Size' type='point' value='2147483647 2147483647'/></view>"),
         2, "Bad.xml:2:1: the window is too large: 2147483647 by 2147483647"},
        {"a window of no size", "render -o %/a.png",
         Wrap("<view class='TView' Identifier='main'/>"), 2, "Bad.xml: there is no picture"},
        {"a picture from elsewhere", "render -o %/b.png",
         Wrap(label + "\n<view class='TPicture' Identifier='pict'>"
                      "<property name='Image' type='string' value='../../x.png'/></view></view>"),
         1,
         "Bad.xml:3:1: error: the picture \"../../x.png\" lies outside the description's folder: "
         "TPicture [view]"},
        {"the same by its root", "check",
         Wrap("<view class='TPicture' Identifier='pict'>"
              "<property name='Image' type='string' value='/etc/passwd'/></view>"),
         1, "Bad.xml:2:1: error: the picture \"/etc/passwd\" lies outside"},
        {"the same by a drive", "check",
         Wrap("<view class='TButton' Identifier='butt'>"
              "<property name='Icon' type='string' value='C:\\x.png'/></view>"),
         1, "lies outside the description's folder"},
        {"the same by another machine", "check",
         Wrap("<view class='TButton' Identifier='butt'>"
              "<property name='Icon' type='string' value='\\\\server\\x.png'/></view>"),
         1, "lies outside the description's folder"},
        {"a picture that is none", "check",
         Wrap("<view class='TPicture' Identifier='pict'>"
              "<property name='Image' type='string' value='Bad.xml'/></view>"),
         1, "Bad.xml:2:1: error: "},
        {"a picture that is not there", "check",
         Wrap("<view class='TPicture' Identifier='pict'>"
              "<property name='Image' type='string' value='none.png'/></view>"),
         1, "none.png: "}, // the reason in the system's own words
        {"an entity in another file", "tree",
         "<!DOCTYPE c [<!ENTITY x SYSTEM 'file:///etc/passwd'>]>" + Wrap("&x;"), 2,
         "Bad.xml:2:1: an entity lies outside the file: file:///etc/passwd"},
        {"an entity that nothing defines", "format", "<!DOCTYPE c SYSTEM 'c.dtd'>" + Wrap("&x;"), 2,
         "the entity \"x\" is not known here"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.mWhy);
        WriteText(folder + "/Bad.xml", row.mText);
        std::string command = row.mCommand;
        if (const std::size_t at = command.find('%'); at != std::string::npos)
            command.replace(at, 1, folder);
        const ToolRun run = RunTool(command + " " + folder + "/Bad.xml");
        EXPECT_EQ(run.mStatus, row.mStatus);
        EXPECT_NE(Shorten(run.mOut + run.mErr, folder).find(row.mSaid), std::string::npos)
            << run.mOut << run.mErr;
    }
}

/// Each would take hours if some step went through all of them for each of them.
TEST(HostileDescription, IsDoneWithInTimeHoweverWideItIs) {
    const std::string folder = FreshFolder("hostile-wide");
    const std::string open = "<view class='TView' Identifier='main'>"
                             "<property name='Frame' type='rect' value='0 0 40 40'/>";
    std::string filters;
    for (int i = 0; i < 2000; ++i)
        filters += "<property name='Enabled' type='bool' value='true' Layout='L" +
                   std::to_string(i) + "'/>";
    const struct {
        const char* mWhy;
        std::string mText;
    } rows[] = {
        {"nameless siblings", Wrap(open + Times(20'000, "<view/>") + "</view>")},
        {"unknown classes",
         Wrap(open + Times(5000, "<view class='TNo' Identifier='x'/>") + "</view>")},
        {"one property again and again",
         Wrap(open + Times(20'000, "<property name='p' type='int32' value='1'/>") + "</view>")},
        {"many layouts", Wrap(open + filters + "</view>")},
        {"a long value",
         Wrap("<view class='" + std::string(1'000'000, 'T') + "' Identifier='main'/>")},
        {"as deep as it may be", Wrap(Times(509, open) + Times(509, "</view>"))},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.mWhy);
        WriteText(folder + "/Wide.xml", row.mText);
        for (const char* command : {"check", "tree", "strings extract --check"}) {
            const ToolRun run = RunTool(std::string(command) + " " + folder + "/Wide.xml");
            EXPECT_TRUE(run.mStatus == 0 || run.mStatus == 1) << command << ": " << run.mErr;
            EXPECT_LT(run.mOut.size(), 4'000'000u) << command;
        }
    }
}

/// A description may name any registered class anywhere.
TEST(HostileDescription, NamesClassesThatFitNowhere) {
    QLX_Init::Init();
    const std::string folder = FreshFolder("hostile-classes");
    std::string views;
    int count = 0;
    for (const ClassDesc* desc = ClassDesc::fgClassDescList; desc;
         desc = desc->GetNextClassDesc()) {
        for (const char* element : {"view", "behavior", "adorner", "drawingenvironment", "state"})
            views += std::string("<") + element + " class='" + desc->GetClassName() +
                     "' Identifier='" + element + "'/>\n";
        ++count;
    }
    EXPECT_GT(count, 50);
    WriteText(folder + "/All.xml", Wrap("<view class='TView' Identifier='main'>"
                                        "<property name='Frame' type='rect' value='0 0 40 40'/>\n" +
                                        views + "</view>"));
    const ToolRun check = RunTool("check " + folder + "/All.xml");
    EXPECT_LE(check.mStatus, 1) << check.mErr;
    const ToolRun render =
        RunTool("render --force -o " + folder + "/all.png " + folder + "/All.xml");
    EXPECT_EQ(render.mStatus, 1) << render.mErr; // what cannot be made is said, the others drawn
    EXPECT_NE(render.mErr.find("not a view"), std::string::npos) << render.mErr;
    EXPECT_EQ(render.mErr.find("Sanitizer"), std::string::npos) << render.mErr;
}

/// The gallery shows all controls with all their properties.
TEST(Gallery, EveryPropertyIsKnownAndAMisspelledOneIsFound) {
    const std::string source = ReadText("examples/gallery/gallery.xml");
    const ToolRun check = RunTool("check --strict examples/gallery/gallery.xml");
    std::string line;
    std::istringstream lines(check.mOut);
    while (std::getline(lines, line)) // menus are made by code, so no view uses their keys
        EXPECT_NE(line.find("[string-unused]"), std::string::npos) << line;
    // Each property of the file in its turn, with a letter too many.
    const std::string folder = FreshFolder("gallery-check");
    for (const char* name : {"gallery.ENU.str", "gallery.DEU.str", "picture.png", "record.png"})
        WriteText(folder + "/" + name, ReadText(std::string("examples/gallery/") + name));
    const std::string mark = "<property name=\"";
    std::string misspelled;
    std::vector<std::string> expected;
    int lineNumber = 1;
    std::istringstream text(source);
    for (; std::getline(text, line); ++lineNumber) {
        const std::size_t at = line.find(mark);
        if (at != std::string::npos && line.find("name=\"Filter\"") == std::string::npos) {
            const std::size_t end = line.find('"', at + mark.size());
            const std::string name = line.substr(at + mark.size(), end - at - mark.size());
            line.insert(end, "x");
            expected.push_back("gallery.xml:" + std::to_string(lineNumber) + ":" +
                               std::to_string(at + 1) + ": warning: ");
            EXPECT_FALSE(name.empty());
        }
        misspelled += line + "\n";
    }
    ASSERT_GT(expected.size(), 200u);
    WriteText(folder + "/gallery.xml", misspelled);
    const ToolRun found = RunTool("check --strict " + folder + "/gallery.xml");
    EXPECT_EQ(found.mStatus, 1);
    const std::string said = Shorten(found.mOut, folder);
    for (const std::string& place : expected) {
        const std::size_t at = said.find(place);
        ASSERT_NE(at, std::string::npos) << place;
        const std::string message = said.substr(at, said.find('\n', at) - at);
        EXPECT_NE(message.find("reads no property"), std::string::npos) << message;
    }
}
} // namespace
