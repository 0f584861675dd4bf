// Raised errors and the boundary that keeps them inside the program.
#pragma once

#include <cstdint>
#include <exception>
#include <functional>
#include <new>
#include <string>
#include <string_view>
#include <utility>

namespace tessary {

// An error with a number and a description that may be shown to the user.
class RaisedError : public std::exception {
  public:
    RaisedError(uint32_t number, std::wstring description)
        : number_(number), description_(std::move(description)) {}

    uint32_t Number() const { return number_; }
    const std::wstring& Description() const { return description_; }
    const char* what() const noexcept override { return "tessary::RaisedError"; }

  private:
    uint32_t number_;
    std::wstring description_;
};

// Numbers of errors that are no plug-in object's: a value that does not fit or convert, no memory
// left, anything else.
constexpr uint32_t kErrorOverflow = 6;
constexpr uint32_t kErrorOutOfMemory = 7;
constexpr uint32_t kErrorTypeMismatch = 13;
constexpr uint32_t kErrorInternal = 51;

// What is known of the exception being handled; call only inside a catch block.
RaisedError CurrentError();

// Shows the message that an unexpected error gets. `procedureLabel` names the routine that was
// left.
void ReportUnexpectedError(uint32_t errorNumber, std::wstring_view errorDescription,
                           std::wstring_view procedureLabel);

// For its own life such errors of this thread go to `take` and no message is shown: for long work
// that nobody may be watching. Only one of these at a time.
class DivertedErrors {
  public:
    explicit DivertedErrors(std::function<void(const RaisedError& error)> take);
    DivertedErrors(const DivertedErrors&) = delete;
    DivertedErrors& operator=(const DivertedErrors&) = delete;
    ~DivertedErrors();

  private:
    std::function<void(const RaisedError& error)> take_;
};

// Runs `body`; whatever it throws ends here and yields `fallback`. Event handlers, window
// procedures and callbacks run inside it: no exception may cross into the system's code.
template <typename Body, typename Result>
Result Trapped(Result fallback, Body&& body) {
    try {
        return std::forward<Body>(body)();
    } catch (...) {
        return fallback;
    }
}
template <typename Body>
void Trapped(Body&& body) {
    try {
        std::forward<Body>(body)();
    } catch (...) {  // the handler ends; what was shown stays
    }
}

}  // namespace tessary
