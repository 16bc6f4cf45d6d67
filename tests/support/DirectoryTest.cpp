// The directory goes with the test, whatever became of it.
#include "DirectoryTest.h"

#include <algorithm>
#include <stdexcept>
#include <system_error>

#include <stdlib.h>

namespace zqx::img::test {

namespace fs = std::filesystem;

DirectoryTest::DirectoryTest() {
    std::string name = (fs::temp_directory_path() / "zqx-img-test-XXXXXX").string();
    if (mkdtemp(name.data()) == nullptr) {
        throw std::runtime_error("cannot make a temporary directory");
    }
    mDirectory = name;
}

DirectoryTest::~DirectoryTest() {
    std::error_code ignored;
    fs::remove_all(mDirectory, ignored);
}

std::vector<std::string> DirectoryTest::files() const {
    std::vector<std::string> names;
    for (const fs::directory_entry& entry : fs::directory_iterator(mDirectory)) {
        names.push_back(entry.path().filename().string());
    }
    std::ranges::sort(names);
    return names;
}

} // namespace zqx::img::test
