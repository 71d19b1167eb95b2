#include "automation/error.h"

#include <algorithm>
#include <iterator>
#include <new>
#include <utility>

namespace automation {

Error::Error(int32_t number, std::string source, std::string description, std::string helpFile,
             int32_t helpContext, int32_t line)
    : number_(number),
      source_(std::move(source)),
      description_(std::move(description)),
      helpFile_(std::move(helpFile)),
      helpContext_(helpContext),
      line_(line) {}

namespace {

struct StandardEntry {
  int32_t number;
  std::string_view text;
};

// VB's runtime errors and their texts, by number.
constexpr StandardEntry kStandardErrors[] = {
    {3, "Return without GoSub"},
    {5, "Invalid procedure call or argument"},
    {6, "Overflow"},
    {7, "Out of memory"},
    {9, "Subscript out of range"},
    {10, "This array is fixed or temporarily locked"},
    {11, "Division by zero"},
    {13, "Type mismatch"},
    {14, "Out of string space"},
    {17, "Can't perform requested operation"},
    {20, "Resume without error"},
    {28, "Out of stack space"},
    {35, "Sub or Function not defined"},
    {48, "Error in loading DLL"},
    {49, "Bad DLL calling convention"},
    {51, "Internal error"},
    {52, "Bad file name or number"},
    {53, "File not found"},
    {54, "Bad file mode"},
    {55, "File already open"},
    {57, "Device I/O error"},
    {58, "File already exists"},
    {61, "Disk full"},
    {62, "Input past end of file"},
    {67, "Too many files"},
    {68, "Device unavailable"},
    {70, "Permission denied"},
    {71, "Disk not ready"},
    {74, "Can't rename with different drive"},
    {75, "Path/File access error"},
    {76, "Path not found"},
    {91, "Object variable or With block variable not set"},
    {92, "For loop not initialized"},
    {93, "Invalid pattern string"},
    {94, "Invalid use of Null"},
    {321, "Invalid file format"},
    {380, "Invalid property value"},
    {381, "Invalid property array index"},
    {382, "Set not supported at runtime"},
    {383, "Set not supported (read-only property)"},
    {385, "Need property array index"},
    {387, "Set not permitted"},
    {393, "Get not supported at runtime"},
    {394, "Get not supported (write-only property)"},
    {422, "Property not found"},
    {423, "Property or method not found"},
    {424, "Object required"},
    {429, "ActiveX component can't create object"},
    {430, "Class does not support Automation or does not support expected interface"},
    {438, "Object doesn't support this property or method"},
    {440, "Automation error"},
    {445, "Object doesn't support this action"},
    {446, "Object doesn't support named arguments"},
    {448, "Named argument not found"},
    {449, "Argument not optional"},
    {450, "Wrong number of arguments or invalid property assignment"},
    {451, "Property let procedure not defined and property get procedure did not return an object"},
    {457, "This key is already associated with an element of this collection"},
    {458, "Variable uses an Automation type not supported in Visual Basic"},
    {461, "Method or data member not found"},
    {462, "The remote server machine does not exist or is unavailable"},
    {463, "Class not registered on local machine"},
    {481, "Invalid picture"},
    {482, "Printer error"},
    {735, "Can't save file to TEMP"},
    {744, "Search text not found"},
    {746, "Replacements too long"},
};

}  // namespace

std::string_view StandardText(int32_t number) {
  static_assert(std::ranges::is_sorted(kStandardErrors, {}, &StandardEntry::number));
  const auto* entry = std::ranges::lower_bound(kStandardErrors, number, {}, &StandardEntry::number);
  if (entry != std::end(kStandardErrors) && entry->number == number) return entry->text;
  return "Application-defined or object-defined error";
}

Error StandardError(int32_t number) {
  return Error(number, {}, std::string(StandardText(number)));
}

void Raise(int32_t number) {
  throw StandardError(number);
}

void Raise(int32_t number, std::string_view detail) {
  std::string text(StandardText(number));
  text += ": ";
  text += detail;
  throw Error(number, {}, std::move(text));
}

void RaiseMessage(int32_t number, std::string description) {
  throw Error(number, {}, std::move(description));
}

Error CurrentError() {
  try {
    throw;
  } catch (const Error& e) {
    return e;
  } catch (const std::bad_alloc&) {
    return StandardError(err::kOutOfMemory);
  } catch (const std::exception& e) {
    return Error(err::kInternal, {}, std::string(StandardText(err::kInternal)) + ": " + e.what());
  } catch (...) {
    return StandardError(err::kInternal);
  }
}

}  // namespace automation
