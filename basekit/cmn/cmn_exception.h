// Exceptions that carry data: one template over data classes, so that a catcher names the data that
// it can use. Numeric failures have a type of their own (cmn_failure.h).
#pragma once

#include <exception>
#include <string>
#include <utility>
#include <vector>

#include "basekit/cmn/cmn_types.h"

/// An exception with a data object, which answers what() through its own What(). Instances cross
/// the border of the shared library and are caught by type on the other side.
template <class Data>
class QLX_API_TEMPLATE Cmn_TypedException : public std::exception {
  public:
    explicit Cmn_TypedException(Data data) : mData(std::move(data)) {}
    [[nodiscard]] const Data& GetData() const noexcept { return mData; }
    /// Lives as long as the exception.
    [[nodiscard]] const char* what() const noexcept override { return mData.What(); }

  private:
    Data mData;
};

/// A message for the user that can be shown in any language: the key of its text in the string
/// tables, what to put into the text's places, and the text in the developer's language.
class QLX_API L10N_ExceptionData {
  public:
    /// The text may hold "%1" to "%9" for the arguments and "%%" for a percent sign.
    explicit L10N_ExceptionData(std::string key, std::string text = std::string(),
                                std::vector<std::string> arguments = {});

    [[nodiscard]] const std::string& GetKey() const noexcept { return mKey; }
    [[nodiscard]] const std::vector<std::string>& GetArguments() const noexcept {
        return mArguments;
    }
    /// A translated text with the arguments in their places. A place without an argument stays as
    /// it is written.
    [[nodiscard]] std::string Format(const std::string& text) const;
    /// The developer's text with the arguments in their places, or the key when there is no text.
    [[nodiscard]] const char* What() const noexcept { return mWhat.c_str(); }

  private:
    std::string mKey;
    std::vector<std::string> mArguments;
    std::string mWhat;
};

using L10N_Exception = Cmn_TypedException<L10N_ExceptionData>;
