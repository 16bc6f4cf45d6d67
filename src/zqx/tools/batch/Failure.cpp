// Not all exceptions are of the standard's kind: the toolkit that reads XMP throws records of its own.
#include "zqx/tools/batch/Failure.h"

#include <exception>
#include <new>

#include "zqx/pictures/files/Error.h"

namespace zqx::tools {

std::string describeFailure(const std::string& subject) {
    try {
        throw;
    } catch (const pictures::Error& error) {
        return error.what(); // names its subject itself
    } catch (const std::bad_alloc&) {
        return subject + ": out of memory; close other programs or use a smaller picture";
    } catch (const std::exception& error) {
        return subject + ": unexpected failure: " + error.what();
    } catch (...) {
        return subject + ": unexpected failure of unknown cause";
    }
}

} // namespace zqx::tools
