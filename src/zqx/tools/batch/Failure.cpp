// Not all exceptions derive from std::exception: the XMP toolkit throws types of its own.
#include "zqx/tools/batch/Failure.h"

#include <exception>
#include <new>

#include "zqx/pictures/files/Error.h"

namespace zqx::tools {

std::string describeFailure(const std::string& subject) {
    try {
        throw;
    } catch (const pictures::Error& error) {
        return error.what(); // begins with its own subject
    } catch (const std::bad_alloc&) {
        return subject + ": out of memory; close other programs or use a smaller picture";
    } catch (const std::exception& error) {
        return subject + ": unexpected failure: " + error.what();
    } catch (...) {
        return subject + ": unexpected failure of unknown cause";
    }
}

} // namespace zqx::tools
