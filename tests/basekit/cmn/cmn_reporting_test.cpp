// Assertions, trace channels, failures, typed exceptions and runs of values.

#include <gtest/gtest.h>

#include "basekit/cmn/cmn_assert.h"
#include "basekit/cmn/cmn_exception.h"
#include "basekit/cmn/cmn_failure.h"
#include "basekit/cmn/cmn_memory.h"
#include "basekit/cmn/cmn_polyvector.h"
#include "basekit/cmn/cmn_trace.h"
#include "basekit/sys/sys_clock.h"
#include "tests/support/assertion_catcher.h"

namespace {

std::vector<std::string> sLines;

/// Collects trace lines for as long as it lives.
class TraceCatcher {
  public:
    TraceCatcher() : mPrevious(Cmn_SetTraceSink([](const char* line) { sLines.push_back(line); })) {
        sLines.clear();
    }
    ~TraceCatcher() { Cmn_SetTraceSink(mPrevious); }

  private:
    Cmn_TraceSink mPrevious;
};

} // namespace

TEST(Assertion, ReportsAndCarriesOn) {
    AssertionCatcher caught;
    int evaluated = 0;
    CMN_ASSERT(++evaluated == 1);
    CMN_ASSERT(++evaluated == 1);
    Cmn_Assert("a text of its own", "some/source", 47);
    EXPECT_EQ(evaluated, 2);
    ASSERT_EQ(caught.GetFailures().size(), 2u);
    EXPECT_EQ(caught.GetFailures()[0].mText, "++evaluated == 1");
    EXPECT_TRUE(
        caught.GetFailures()[0].mSource.ends_with("tests/basekit/cmn/cmn_reporting_test.cpp"));
    EXPECT_EQ(caught.GetFailures()[1].mSource, "some/source");
    EXPECT_EQ(caught.GetFailures()[1].mLine, 47);
}

TEST(Assertion, DefaultHandlerWritesOneLine) {
    TraceCatcher trace;
    const Cmn_AssertionHandler installed = Cmn_SetAssertionHandler(nullptr);
    Cmn_Assert("count > 0", "qlx/views/uview", 12);
    const Cmn_AssertionHandler byDefault = Cmn_SetAssertionHandler(installed);
    EXPECT_NE(byDefault, installed);
    EXPECT_EQ(sLines, std::vector<std::string>{"ASSERT count > 0 qlx/views/uview line 12"});
}

TEST(Trace, ChannelsAreSwitchedOneByOne) {
    TraceCatcher trace;
    Cmn_TraceEnable(kTrace_FirstHostChannel + 1, true);
    Cmn_TraceEnable(-1, true);
    Cmn_TraceEnable(kTrace_ChannelCount, true);
    Cmn_Trace(kTrace_FirstHostChannel + 1, "seen %d", 1);
    Cmn_Trace(kTrace_FirstHostChannel, "not seen");
    Cmn_Trace(-1, "no channel");
    Cmn_Trace(kTrace_ChannelCount, "no channel");
    Cmn_TraceAssert("off", "at start", 1);
    Cmn_TraceEnable(kTrace_FirstHostChannel + 1, false);
    Cmn_Trace(kTrace_FirstHostChannel + 1, "not seen");
    Cmn_TraceEnable(kTrace_Assertions, true);
    Cmn_TraceAssert("alive", "here", 8);
    Cmn_TraceEnable(kTrace_Assertions, false);
    const std::string longText(5000, 'x');
    Cmn_TraceWrite("%s", longText.c_str());
    EXPECT_EQ(sLines,
              (std::vector<std::string>{"seen 1", "CMN_TRACEASSERT alive here line 8", longText}));
}

TEST(Failure, CarriesItsCode) {
    try {
        Cmn_RaiseFailure(kFailure_UnknownClassID);
    } catch (const std::exception& failure) {
        EXPECT_STREQ(failure.what(), "failure -20008");
    }
    Cmn_FailAllocationsAfter(1);
    void* bytes = Cmn_AllocateOrFail(8);
    try {
        (void)Cmn_AllocateOrFail(8);
        ADD_FAILURE() << "the second allocation succeeded";
    } catch (const Cmn_Failure& failure) {
        EXPECT_EQ(failure.GetCode(), -108);
    }
    Cmn_FailAllocationsAfter(-1);
    ::operator delete(bytes);
}

TEST(TypedException, IsCaughtByItsDataAndFillsPlaces) {
    try {
        throw L10N_Exception(L10N_ExceptionData(
            "file.missing", "%1 of %2 is missing: 100%% sure, %3", {"track.wav", "Session"}));
    } catch (const L10N_Exception& exception) {
        EXPECT_STREQ(exception.what(), "track.wav of Session is missing: 100% sure, %3");
        EXPECT_EQ(exception.GetData().GetKey(), "file.missing");
        EXPECT_EQ(exception.GetData().Format("%2 fehlt %1%"), "Session fehlt track.wav%");
    }
    EXPECT_STREQ(L10N_Exception(L10N_ExceptionData("only.key")).what(), "only.key");
}

TEST(PolyVector, ReadsEverySourceAlike) {
    const int numbers[] = {1, 2, 3};
    Cmn_PolyVector<int> own = {1, 2, 3};
    const auto borrowed = Cmn_PolyVector<int>::Borrow(numbers, 3);
    const auto repeated = Cmn_PolyVector<int>::Repeat(7, 3);
    for (std::size_t i = 0; i < 3; ++i) {
        EXPECT_EQ(own[i], numbers[i]);
        EXPECT_EQ(&borrowed[i], &numbers[i]);
        EXPECT_EQ(repeated[i], 7);
    }
    EXPECT_TRUE(repeated.IsRepeated());
    EXPECT_FALSE(borrowed.IsRepeated());
    // A copy reads its own values, also when the original is gone; a borrowed one does not move.
    auto copy = std::make_unique<Cmn_PolyVector<int>>(repeated);
    const Cmn_PolyVector<int> copyOfCopy = *copy;
    copy.reset();
    EXPECT_EQ(copyOfCopy[2], 7);
    Cmn_PolyVector<int> moved = std::move(own);
    own = borrowed;
    EXPECT_EQ(moved[2], 3);
    EXPECT_EQ(&own[0], numbers);
    std::swap(moved, own);
    EXPECT_EQ(&moved[0], numbers);
    EXPECT_EQ(own[0], 1);
    EXPECT_NE(&own[0], numbers);
    EXPECT_TRUE(Cmn_PolyVector<int>().empty());
}

TEST(Clock, TicksAreSixtiethsOfTheSourcesSeconds) {
    static double sNow = 0.0;
    const Sys_ClockSource previous = Sys_SetClockSource([] { return sNow; });
    sNow = 2.0;
    EXPECT_EQ(Sys_Clock_Ticks(), 120u);
    sNow = 2.0 + 1.5 / 60;
    EXPECT_EQ(Sys_Clock_Ticks(), 121u);
    sNow = 4294967296.0 / 60 + 1.0 / 30; // wraps
    EXPECT_EQ(Sys_Clock_Ticks(), 2u);
    EXPECT_EQ(Sys_Clock_Seconds(), sNow);
    Sys_SetClockSource(previous);
    const double first = Sys_Clock_Seconds();
    EXPECT_LE(first, Sys_Clock_Seconds());
}
