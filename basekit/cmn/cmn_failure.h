// Deep failures: what no caller nearby can put right is raised as one exception type that carries a
// numeric code.
#pragma once

#include <exception>

#include "basekit/cmn/cmn_types.h"

inline constexpr std::int32_t kFailure_OutOfMemory = -108;
inline constexpr std::int32_t kFailure_UnknownClassID = -20008;

/// A numeric failure on its way up. Catch it by const reference.
class QLX_API Cmn_Failure : public std::exception {
  public:
    explicit Cmn_Failure(std::int32_t code) noexcept;
    [[nodiscard]] std::int32_t GetCode() const noexcept { return mCode; }
    /// "failure" and the code in decimal; lives as long as the exception.
    [[nodiscard]] const char* what() const noexcept override;

  private:
    std::int32_t mCode;
    char mText[24];
};

/// Raises a failure code; does not return.
[[noreturn]] QLX_API void Cmn_RaiseFailure(std::int32_t code);
