// Failed assertions in tests: caught and compared, or else they fail the test.
#pragma once

#include <string>
#include <vector>

/// While one lives, failed assertions are kept here instead of failing the test. Scopes nest.
class AssertionCatcher {
  public:
    AssertionCatcher();
    ~AssertionCatcher();
    AssertionCatcher(const AssertionCatcher&) = delete;
    AssertionCatcher& operator=(const AssertionCatcher&) = delete;

    struct Failure {
        std::string mText;
        std::string mSource;
        int mLine;
    };
    /// Everything caught so far, in order.
    [[nodiscard]] const std::vector<Failure>& GetFailures() const { return mFailures; }
    /// The texts caught since the last call.
    [[nodiscard]] std::vector<std::string> TakeTexts();

    /// Makes unexpected assertions fail the running test; main calls it once.
    static void Install();

  private:
    static void OnAssertion(const char* text, const char* source, int line);
    std::vector<Failure> mFailures;
    AssertionCatcher* mOuter; // not owned
};
