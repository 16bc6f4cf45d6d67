// Result codes in words.
#include <qutil/StrError.h>

#include <tov/Result.h>

namespace qutil {

const char* tovStrError(std::uint32_t code) {
    switch (code) {
    case tov::SUCCESS: return "Success";
    case tov::INVALID_ARGUMENT: return "Invalid argument";
    case tov::UNEXPECTED: return "Unexpected failure";
    case tov::NO_INTERFACE: return "No such interface";
    case tov::FAILURE: return "Operation failed";
    case tov::NOT_READY: return "Object not ready";
    case tov::NOT_SUPPORTED: return "Operation not supported";
    case tov::NO_AGGREGATION: return "Aggregation not supported";
    case tov::CLASS_NOT_AVAILABLE: return "Class not available";
    default: return "Unknown result code";
    }
}

} // namespace qutil
