// render, fit and play: what they say about descriptions with planted faults, and what is in the
// pictures.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "qlx/imaging/qlx_image.h"
#include "run_tool.h"

namespace {
std::string View(const std::string& className, const std::string& identifier,
                 const std::string& properties) {
    return "<view class='" + className + "' Identifier='" + identifier + "'>" + properties +
           "</view>\n";
}

std::string Property(const std::string& name, const std::string& type, const std::string& value,
                     const std::string& filter = "") {
    return "<property name='" + name + "' type='" + type + "' value='" + value + "'" + filter +
           "/>";
}

std::string Frame(const std::string& numbers, const std::string& filter = "") {
    return Property("Frame", "rect", numbers, filter);
}

/// A window of 200 by 100, 160 by 80 in the layout Small.
std::string Window(const std::string& inside) {
    return "<container><viewhierarchy name='w'>\n"
           "<view class='TWindow' Identifier='wind'>" +
           Property("Size", "point", "100 200") +
           Property("Size", "point", "80 160", " Layout='Small'") + "\n" + inside +
           "</view></viewhierarchy></container>";
}

std::string Button(const std::string& frame) {
    return View("TButton", "butt", Frame(frame) + Property("Title", "stringidx", "save"));
}

/// German is wider than English, French as wide.
void WriteTables(const std::string& stem) {
    WriteText(stem + ".ENU.str", "{\n\tsave\t\"Save\"\n}\n");
    WriteText(stem + ".FRA.str", "{\n\tsave\t\"Save\"\t\"Noter\"\n}\n");
    WriteText(stem + ".DEU.str", "{\n\tsave\t\"Save\"\t\"Einstellungen sichern\"\n}\n");
}

std::string WithoutFolder(std::string text, const std::string& folder) {
    for (std::size_t at; (at = text.find(folder + "/")) != std::string::npos;)
        text.erase(at, folder.size() + 1);
    return text;
}

TEST(QlxViewRender, OneLookIsAPictureOfTheWindowsSizeAndSeveralAreASheet) {
    const std::string folder = FreshFolder("qlxview-render");
    WriteText(folder + "/W.xml", Window(Button("10 10 40 120")));
    WriteTables(folder + "/W");
    const std::string command = "render " + folder + "/W.xml -o " + folder;
    const struct {
        const char* mArguments;
        int mWidth;
        int mHeight;
    } rows[] = {
        {"/a.png", 200, 100},
        {"/b.png --layout Small --scale 1.25", 200, 100},
        {"/c.png --scale 2 --language DEU --theme dark", 400, 200},
        // Three languages beside each other, 12 pixels between and around, 20 for the caption.
        {"/d.png --language all", 3 * 200 + 4 * 12, 100 + 2 * 12 + 20},
        {"/e.png --language all --layout all", 3 * 200 + 4 * 12, 180 + 3 * 12 + 2 * 20},
        {"/f.png --language ENU,widest --width 100", 2 * 100 + 3 * 12, 50 + 2 * 12 + 20},
    };
    for (const auto& row : rows) {
        const ToolRun run = RunTool(command + row.mArguments);
        EXPECT_EQ(run.mStatus, 0) << row.mArguments << run.mErr;
        const std::string path = run.mOut.substr(0, run.mOut.find('\n'));
        const QLX_Image::Ptr picture = QLX_Image::FromPNGFile(path);
        EXPECT_EQ(picture->GetWidth(), row.mWidth) << row.mArguments;
        EXPECT_EQ(picture->GetHeight(), row.mHeight) << row.mArguments;
    }
    // Looks differ from each other, and the same look is the same picture.
    const ToolRun each = RunTool(
        command + "/each --each --layout all --language all --theme light,dark --scale 1,2");
    EXPECT_EQ(each.mStatus, 0) << each.mErr;
    std::vector<QLX_Image::Ptr> pictures;
    for (const auto& entry : std::filesystem::directory_iterator(folder + "/each"))
        pictures.push_back(QLX_Image::FromPNGFile(entry.path().string()));
    EXPECT_EQ(pictures.size(), 24u);
    for (std::size_t i = 0; i < pictures.size(); ++i)
        for (std::size_t j = 0; j < i; ++j)
            EXPECT_FALSE(pictures[i]->IsEqual(*pictures[j])) << i << " " << j;
    const QLX_Image::Ptr one = QLX_Image::FromPNGFile(folder + "/a.png");
    EXPECT_TRUE(one->IsEqual(*QLX_Image::FromPNGFile(folder + "/each/W-Default-ENU-light-1x.png")));
}

TEST(QlxViewRender, NothingIsReplacedUnasked) {
    const std::string folder = FreshFolder("qlxview-replace");
    WriteText(folder + "/W.xml", Window(Button("10 10 40 120")));
    WriteTables(folder + "/W");
    WriteText(folder + "/a.png", "mine");
    const ToolRun kept = RunTool("render " + folder + "/W.xml -o " + folder + "/a.png");
    EXPECT_EQ(kept.mStatus, 2);
    EXPECT_EQ(WithoutFolder(kept.mErr, folder),
              "qlxview: a.png: is there already; --force replaces it\n");
    EXPECT_EQ(ReadText(folder + "/a.png"), "mine");
    EXPECT_EQ(RunTool("fit " + folder + "/W.xml --sheet " + folder + "/a.png").mStatus, 2);
    EXPECT_EQ(ReadText(folder + "/a.png"), "mine");
    EXPECT_EQ(RunTool("render -f " + folder + "/W.xml -o " + folder + "/a.png").mStatus, 0);
    EXPECT_EQ(QLX_Image::FromPNGFile(folder + "/a.png")->GetWidth(), 200);
}

TEST(QlxViewRender, WhatCannotBeDoneIsSaid) {
    const std::string folder = FreshFolder("qlxview-refuse");
    WriteText(folder + "/W.xml",
              Window(Button("10 10 40 120") + View("THostGauge", "gaug", Frame("50 10 90 60"))));
    WriteTables(folder + "/W");
    WriteText(folder + "/Cut.xml", "<container>\n\t<viewhierarchy>\n\t\t<view\n");
    WriteText(folder + "/Empty.xml", "<container><viewhierarchy/></container>");
    const struct {
        const char* mArguments;
        int mStatus;
        const char* mSays;
    } rows[] = {
        {"/W.xml --layout Large", 2,
         "W.xml: there is no layout \"Large\"; there are: Default Small"},
        {"/W.xml --language GER", 2, "W.xml: there is no language \"GER\"; there are: ENU"},
        {"/W.xml --theme pink", 2, "W.xml: there is no theme \"pink\"; there are: light dark"},
        {"/W.xml --scale 7", 2, "--scale: Value 7 not in range"},
        {"/Cut.xml", 2, "Cut.xml:3:3: unclosed token"},
        {"/Empty.xml", 2, "Empty.xml: there is no view in it"},
        {"/Nowhere.xml", 2, "Nowhere.xml"},
        // The picture is there all the same, with a frame that says which class is missing.
        {"/W.xml --layout Small", 1,
         "W.xml:4:1: error: unknown class: THostGauge; load its library"},
    };
    for (const auto& row : rows) {
        const ToolRun run = RunTool("render -o " + folder + "/out.png " + folder + row.mArguments);
        EXPECT_EQ(run.mStatus, row.mStatus) << row.mArguments;
        EXPECT_NE(WithoutFolder(run.mErr, folder).find(row.mSays), std::string::npos)
            << row.mArguments << "\n"
            << run.mErr;
        EXPECT_EQ(std::filesystem::exists(folder + "/out.png"), row.mStatus == 1) << row.mArguments;
    }
    EXPECT_EQ(QLX_Image::FromPNGFile(folder + "/out.png")->GetWidth(), 160);
}

TEST(QlxViewFit, EachFaultIsFoundInTheLooksThatHaveIt) {
    const std::string folder = FreshFolder("qlxview-fit");
    const struct {
        const char* mWhy;
        std::string mInside;
        const char* mSays; // empty: all is well
    } rows[] = {
        {"room for every language", Button("10 10 40 170"), ""},
        {"too narrow for German", Button("10 10 40 120"),
         "W.xml:3:1: error: TButton 'butt': \"Einstellungen sichern\" needs 129 of 102 in width "
         "(Default, DEU at 1 2; Default, widest at 1 2; Small, DEU at 1 2; Small, widest at 1 2) "
         "[text-width]\n"},
        {"too narrow in one layout",
         View("TStaticText", "text",
              Frame("10 10 40 170") + Frame("10 10 40 40", " Layout='Small'") +
                  Property("Text", "string", "Session")),
         "W.xml:3:1: error: TStaticText 'text': \"Session\" needs 46 of 30 in width (Small, ENU at "
         "1 2; Small, FRA at 1 2; Small, DEU at 1 2; Small, widest at 1 2) [text-width]\n"},
        {"too low for the font",
         View("TCheckBox", "chck", Frame("10 10 20 120") + Property("Title", "string", "Ay")),
         "TCheckBox 'chck': \"Ay\" needs 14 of 10 in height"},
        {"lines that wrap need height",
         View("TStaticText", "text",
              Frame("10 10 40 80") + Property("Text", "string", "some words that wrap often") +
                  Property("Wrap", "bool", "true")),
         "in height"},
        {"a choice that is not the one shown",
         View("TPopup", "popu",
              Frame("10 10 40 70") + Property("Choices", "string", "A&#10;A much longer one")),
         "TPopup 'popu': \"A much longer one\" needs"},
        {"a time format that is not the one shown",
         View("TNumericEntryText", "time", Frame("10 10 40 60")), "TNumericEntryText 'time': "},
        {"a bound of a number",
         View("TNumericEntryText", "numb",
              Frame("10 10 40 60") + Property("FormatOverride", "int32", "32") +
                  Property("MaxValue", "int32", "1234567890")),
         "TNumericEntryText 'numb': \"1234567890\" is cut at the side"},
        {"a text that is hidden at first",
         View("TStaticText", "text",
              Frame("10 10 40 40") + Property("Text", "string", "Session") +
                  Property("Shown", "bool", "false")),
         "TStaticText 'text': \"Session\" needs 46 of 30 in width"},
        {"a neighbour that is painted over it",
         View("TStaticText", "text",
              Frame("10 10 40 100") + Property("Text", "string", "Session")) +
             View("TButton", "over", Frame("10 30 40 120")),
         "TStaticText 'text': \"Session\" is painted over by TButton 'over'"},
        {"a text that runs into another one",
         View("TStaticText", "text",
              Frame("10 10 30 100") + Property("Text", "string", "Session")) +
             View("TStaticText", "next",
                  Frame("14 10 34 100") + Property("Text", "string", "Track")),
         "TStaticText 'text': \"Session\" is painted over by TStaticText 'next'"},
        {"a view beyond the window's edge", Button("10 150 40 300"),
         "TButton 'butt': \"Save\" is cut at the side"},
#ifndef _WIN32 // where nobody can say which characters a font has
        {"a character that no font has",
         View("TStaticText", "text",
              Frame("10 10 40 100") + Property("Text", "string", "a&#x12345;b")),
         "\" no font has U+12345"},
#endif
        {"a text on a plate is not covered by it",
         View("TPlate", "plat", Frame("5 5 60 150") + Property("Title", "string", "Values")) +
             View("TStaticText", "text",
                  Frame("30 10 50 100") + Property("Text", "string", "Session")),
         ""},
        {"what a user scrolls may be cut",
         View("TEditText", "edit",
              Frame("10 10 30 60") +
                  Property("Text", "string", "a text as long as the user likes")),
         ""},
    };
    for (const auto& row : rows) {
        WriteText(folder + "/W.xml", Window(row.mInside));
        WriteTables(folder + "/W");
        const ToolRun run = RunTool("fit --scale 1,2 " + folder + "/W.xml");
        const std::string said = WithoutFolder(run.mOut, folder);
        const bool well = row.mSays[0] == '\0';
        EXPECT_EQ(run.mStatus, well ? 0 : 1) << row.mWhy << "\n" << said << run.mErr;
        if (well)
            EXPECT_EQ(said.find("error"), std::string::npos) << row.mWhy << "\n" << said;
        else
            EXPECT_NE(said.find(row.mSays), std::string::npos) << row.mWhy << "\n" << said;
    }
}

TEST(QlxViewFit, WidestTextsShowWhatNoSingleLanguageDoes) {
    // English has the wide first word, German the wide second one.
    const std::string folder = FreshFolder("qlxview-widest");
    WriteText(folder + "/W.xml",
              Window(View("TPopup", "popu",
                          Frame("10 10 40 70") + Property("Choices", "stringidx", "save"))));
    WriteText(folder + "/W.ENU.str", "{\n\tsave\t\"Sessions\nI\"\n}\n");
    WriteText(folder + "/W.DEU.str", "{\n\tsave\t\"\"\t\"I\nSitzungen\"\n}\n");
    const ToolRun run = RunTool("fit --scale 1 --language widest " + folder + "/W.xml");
    for (const char* text : {"\"Sessions\" needs", "\"Sitzungen\" needs"})
        EXPECT_NE(run.mOut.find(text), std::string::npos) << run.mOut;
}

TEST(QlxViewFit, TheSheetMarksWhatFails) {
    const std::string folder = FreshFolder("qlxview-fitsheet");
    WriteText(folder + "/W.xml", Window(Button("10 10 40 120")));
    WriteTables(folder + "/W");
    const ToolRun run = RunTool("fit --scale 1 --layout Default --language ENU,DEU " + folder +
                                "/W.xml --sheet " + folder + "/s.png");
    EXPECT_EQ(run.mStatus, 1);
    const QLX_Image::Ptr sheet = QLX_Image::FromPNGFile(folder + "/s.png");
    const auto redPixels = [&](int left, int right) {
        int count = 0;
        for (int y = 0; y < sheet->GetHeight(); ++y)
            for (int x = left; x < right; ++x)
                count += sheet->GetPixel(x, y) == 0xFFE00020 ? 1 : 0;
        return count;
    };
    EXPECT_EQ(redPixels(0, 212), 0);
    // Two pixels wide around the title's box of 102 by 30.
    EXPECT_EQ(redPixels(212, sheet->GetWidth()), (106 * 34) - (102 * 30));
}

TEST(QlxViewPlay, ScriptsAreJudged) {
    const std::string folder = FreshFolder("qlxview-play");
    WriteText(folder + "/W.xml",
              Window(View("TEditText", "edit", Frame("10 10 30 100")) + Button("40 10 60 150")));
    WriteTables(folder + "/W");
    const struct {
        const char* mScript;
        int mStatus;
        const char* mSays;
    } rows[] = {
        {"click 'edit'\ntype \"abc\"\nexpect 'edit' \"abc\"\n", 0,
         "3 steps, 1 expectations, 0 failed"},
        {"expect 'edit' \"abc\"\nexpect name 'butt' \"Save\"\n", 1,
         "s.play:1: edit is \"\", expected \"abc\""},
        {"click 'nope'\n", 1, "s.play:1: no view 'nope'"},
        {"clack 'edit'\n", 1, "s.play:1:1: "},
    };
    for (const auto& row : rows) {
        WriteText(folder + "/s.play", row.mScript);
        const ToolRun run = RunTool("play " + folder + "/W.xml " + folder + "/s.play");
        EXPECT_EQ(run.mStatus, row.mStatus) << row.mScript;
        EXPECT_NE(WithoutFolder(run.mOut + run.mErr, folder).find(row.mSays), std::string::npos)
            << row.mScript << run.mOut << run.mErr;
    }
    EXPECT_EQ(RunTool("play " + folder + "/W.xml " + folder + "/nowhere.play").mStatus, 2);
    const ToolRun german =
        RunTool("play " + folder + "/W.xml " + folder + "/s.play --language DEU,FRA --layout all");
    EXPECT_EQ(german.mStatus, 1);
}
} // namespace
