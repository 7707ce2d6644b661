// Which files a description may name as its pictures, and what becomes of the others.
#include "qlx/views/udescribedpicture.h"

#include <gtest/gtest.h>

#include "qlx/persistence/qlx_persistence.h"
#include "qlx/views/uviewserver.h"

namespace {
using MementoPtr = Cmn_AliasedRefCountPtr<QLX_ViewMemento>;

/// Why the name gives no picture.
std::string ReasonAgainst(const MementoPtr& memento, const std::string& name) {
    QLX_RawPropertyContainer container("view");
    container.SetStringProperty("class", "TPicture", QLX_PropertyFilter::RootFilter());
    container.SetCurrentFilter(QLX_PropertyFilter::RootFilter());
    (void)TViewServer::Get()->TakeProblems();
    EXPECT_FALSE(QLX_ReadDescribedPicture(&container, memento, name)) << name;
    const std::vector<TViewServerProblem> problems = TViewServer::Get()->TakeProblems();
    if (problems.empty())
        return {};
    EXPECT_EQ(problems.size(), 1u);
    EXPECT_EQ(problems.front().mClassName, "TPicture");
    return problems.front().mReason;
}

TEST(DescribedPicture, LiesInTheDescriptionsFolder) {
    const MementoPtr memento(
        new QLX_ViewMemento(new QLX_RawPropertyContainer("viewhierarchy"), "Mix"));
    memento->SetFolder(QLX_TEST_OUTPUT);
    for (const char* outside : {"/etc/passwd", "..", "../x.png", "a/../../x.png", "a/..",
                                "C:\\x.png", "C:x.png", "\\\\server\\share\\x.png", "a\\..\\x.png"})
        EXPECT_EQ(ReasonAgainst(memento, outside), "the picture \"" + std::string(outside) +
                                                       "\" lies outside the description's folder");
    // Inside it, whatever the name looks like: it is looked for there.
    for (const char* inside : {"none.png", "..png", "a..b/none.png", "./none.png", "\xC3\xA4.png"})
        EXPECT_EQ(ReasonAgainst(memento, inside).find(std::string(QLX_TEST_OUTPUT) + "/"), 0u)
            << inside;
    EXPECT_EQ(ReasonAgainst(memento, ""), "");
}

#ifndef _WIN32
TEST(DescribedPicture, IsAFile) {
    // Neither waits nor reads without end.
    EXPECT_EQ(ReasonAgainst({}, "/dev/zero"), "/dev/zero: is no file");
    EXPECT_EQ(ReasonAgainst({}, QLX_TEST_OUTPUT),
              std::string(QLX_TEST_OUTPUT) + ": Is a directory");
}
#endif

TEST(DescribedPicture, AThousandProblemsAreEnough) {
    for (int i = 0; i < 3000; ++i)
        TViewServer::Get()->AddProblem(nullptr, {}, "TNo", "unknown class");
    const std::vector<TViewServerProblem> problems = TViewServer::Get()->TakeProblems();
    ASSERT_EQ(problems.size(), 1001u);
    EXPECT_EQ(problems.back().mReason, "further problems are not listed");
}
} // namespace
