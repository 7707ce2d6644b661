// Reading and writing descriptions: through text in memory, and through files.
#include "qlx/persistence/qlx_sourceformat.h"

#include <gtest/gtest.h>

#include "tests/support/assertion_catcher.h"

namespace {
std::unique_ptr<QLX_RawPropertyContainer> Read(const std::string& text,
                                               std::vector<QLX_SourceProblem>* problems = nullptr,
                                               QLX_RawPropertyContainerFactory* factory = nullptr) {
    Sys_File file("test.xml", text);
    QLX_XMLParser parser(&file, factory);
    std::unique_ptr<QLX_RawPropertyContainer> root(parser.Parse());
    if (problems)
        *problems = parser.GetProblems();
    return root;
}

const char* const kSmall =
    R"(<container name="Mix">
	<viewhierarchy name="Mix" resid="128">
		<property name="Filter" type="string" value="Filter" Layout="Compact"/>
		<behavior class="TDrag" Identifier="drag">
		</behavior> <!-- -->
		<view class="TButton" Identifier="mute">
			<property name="Enabled" type="bool" value="true"/>
			<property name="Frame" type="rect" value="1 2 3 4"/>
			<property name="Title" type="stringidx" value="MUTE"/>
			<property name="Frame" type="rect" value="5 6 7 8" Layout="Compact"/>
		</view> <!-- -->
	</viewhierarchy> <!--Mix -->
</container>)";

TEST(SourceFormat, WritesWhatItReads) {
    const auto wrapper = Read(kSmall);
    ASSERT_TRUE(wrapper);
    EXPECT_EQ(wrapper->GetName(), "container");
    ASSERT_EQ(wrapper->CountChildren(), 1u);
    EXPECT_EQ(QLX_SourceViewFormat::WriteToText(*wrapper->GetFirstChild(), LineEndings::Unix),
              kSmall);
}

TEST(SourceFormat, SelectsLayoutAndLanguage) {
    const auto wrapper = Read(kSmall);
    QLX_RawPropertyContainer* const root = wrapper->GetFirstChild();
    QLX_RawPropertyContainer* const button = root->GetChildren("view").at(0);
    VRect frame;
    root->SetCurrentFilter(QLX_PropertyFilter::MakeFilter("Default"));
    EXPECT_TRUE(button->GetRectProperty("Frame", frame));
    EXPECT_EQ(frame, VRect(2, 1, 4, 3));
    StCurrentLanguage french(QLX_Language::French);
    root->SetCurrentFilter(QLX_PropertyFilter::MakeFilter("Compact"));
    EXPECT_TRUE(button->GetRectProperty("Frame", frame));
    EXPECT_EQ(frame, VRect(6, 5, 8, 7));
    bool enabled = false;
    EXPECT_TRUE(button->GetBoolProperty("Enabled", enabled) && enabled);
}
} // namespace
