#pragma once
// The one error type of the automation runtime. An error in flight is the pending error: the
// catch block that receives it is the failure path of the operation it passes through.

#include <cstdint>
#include <exception>
#include <string>
#include <string_view>

namespace automation {

class Error : public std::exception {
 public:
  Error() = default;
  Error(int32_t number, std::string source, std::string description, std::string helpFile = {},
        int32_t helpContext = 0, int32_t line = 0);

  int32_t Number() const { return number_; }
  const std::string& Source() const { return source_; }
  const std::string& Description() const { return description_; }
  const std::string& HelpFile() const { return helpFile_; }
  int32_t HelpContext() const { return helpContext_; }
  int32_t Line() const { return line_; }

  const char* what() const noexcept override { return description_.c_str(); }

 private:
  int32_t number_ = 0;
  std::string source_;
  std::string description_;
  std::string helpFile_;
  int32_t helpContext_ = 0;
  int32_t line_ = 0;
};

// Error numbers used across the program: VB runtime errors, and the one user-level number.
namespace err {
inline constexpr int32_t kInvalidCall = 5;
inline constexpr int32_t kOverflow = 6;
inline constexpr int32_t kOutOfMemory = 7;
inline constexpr int32_t kSubscript = 9;
inline constexpr int32_t kTypeMismatch = 13;
inline constexpr int32_t kInternal = 51;
inline constexpr int32_t kBadFileMode = 54;
inline constexpr int32_t kFileNotFound = 53;
inline constexpr int32_t kDeviceIo = 57;
inline constexpr int32_t kPermissionDenied = 70;
inline constexpr int32_t kPathFileAccess = 75;
inline constexpr int32_t kPathNotFound = 76;
inline constexpr int32_t kInvalidFileFormat = 321;
inline constexpr int32_t kObjectNotSet = 91;
inline constexpr int32_t kInvalidPropertyValue = 380;
inline constexpr int32_t kReadOnlyProperty = 383;
inline constexpr int32_t kWriteOnlyProperty = 394;
inline constexpr int32_t kCantCreateObject = 429;
inline constexpr int32_t kNoSuchMember = 438;
inline constexpr int32_t kArgumentNotOptional = 449;
inline constexpr int32_t kWrongArgumentCount = 450;
inline constexpr int32_t kDuplicateKey = 457;
inline constexpr int32_t kServerUnavailable = 462;
inline constexpr int32_t kClassNotRegistered = 463;
// Not VB's own: the number that the driver and the host library give every refusal or
// user-level problem they find, with an empty source and a full-sentence message.
inline constexpr int32_t kUserError = -32767;
}  // namespace err

// The text VB's runtime gives a standard error number ("Application-defined or object-defined
// error" for numbers it does not know).
std::string_view StandardText(int32_t number);

// An error with the standard text of its number and an empty source.
Error StandardError(int32_t number);

// Raises a standard runtime error; with a detail, the detail follows the standard text so that
// the user learns which file, key or member was meant.
[[noreturn]] void Raise(int32_t number);
[[noreturn]] void Raise(int32_t number, std::string_view detail);
// Raises an error with exactly this description and an empty source.
[[noreturn]] void RaiseMessage(int32_t number, std::string description);

// Inside a catch block: the exception in flight as an automation error. Errors of the C++
// library become their nearest VB counterparts (out of memory, internal error).
Error CurrentError();

}  // namespace automation
