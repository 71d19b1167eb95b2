#include "automation/error.h"

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

std::string_view StandardText(int32_t number) {
  switch (number) {
    case 3:
      return "Return without GoSub";
    case 5:
      return "Invalid procedure call or argument";
    case 6:
      return "Overflow";
    case 7:
      return "Out of memory";
    case 9:
      return "Subscript out of range";
    case 10:
      return "This array is fixed or temporarily locked";
    case 11:
      return "Division by zero";
    case 13:
      return "Type mismatch";
    case 14:
      return "Out of string space";
    case 17:
      return "Can't perform requested operation";
    case 20:
      return "Resume without error";
    case 28:
      return "Out of stack space";
    case 35:
      return "Sub or Function not defined";
    case 48:
      return "Error in loading DLL";
    case 49:
      return "Bad DLL calling convention";
    case 51:
      return "Internal error";
    case 52:
      return "Bad file name or number";
    case 53:
      return "File not found";
    case 54:
      return "Bad file mode";
    case 55:
      return "File already open";
    case 57:
      return "Device I/O error";
    case 58:
      return "File already exists";
    case 61:
      return "Disk full";
    case 62:
      return "Input past end of file";
    case 67:
      return "Too many files";
    case 68:
      return "Device unavailable";
    case 70:
      return "Permission denied";
    case 71:
      return "Disk not ready";
    case 74:
      return "Can't rename with different drive";
    case 75:
      return "Path/File access error";
    case 76:
      return "Path not found";
    case 91:
      return "Object variable or With block variable not set";
    case 92:
      return "For loop not initialized";
    case 93:
      return "Invalid pattern string";
    case 94:
      return "Invalid use of Null";
    case 380:
      return "Invalid property value";
    case 381:
      return "Invalid property array index";
    case 382:
      return "Set not supported at runtime";
    case 383:
      return "Set not supported (read-only property)";
    case 385:
      return "Need property array index";
    case 387:
      return "Set not permitted";
    case 393:
      return "Get not supported at runtime";
    case 394:
      return "Get not supported (write-only property)";
    case 422:
      return "Property not found";
    case 423:
      return "Property or method not found";
    case 424:
      return "Object required";
    case 429:
      return "ActiveX component can't create object";
    case 430:
      return "Class does not support Automation or does not support expected interface";
    case 438:
      return "Object doesn't support this property or method";
    case 440:
      return "Automation error";
    case 445:
      return "Object doesn't support this action";
    case 446:
      return "Object doesn't support named arguments";
    case 448:
      return "Named argument not found";
    case 449:
      return "Argument not optional";
    case 450:
      return "Wrong number of arguments or invalid property assignment";
    case 451:
      return "Property let procedure not defined and property get procedure did not return an "
             "object";
    case 457:
      return "This key is already associated with an element of this collection";
    case 458:
      return "Variable uses an Automation type not supported in Visual Basic";
    case 461:
      return "Method or data member not found";
    case 462:
      return "The remote server machine does not exist or is unavailable";
    case 463:
      return "Class not registered on local machine";
    case 481:
      return "Invalid picture";
    case 482:
      return "Printer error";
    case 735:
      return "Can't save file to TEMP";
    case 744:
      return "Search text not found";
    case 746:
      return "Replacements too long";
    default:
      return "Application-defined or object-defined error";
  }
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
