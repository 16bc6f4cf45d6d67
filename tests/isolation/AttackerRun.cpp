// Runs the attacker where a decoder would run.
#include "isolation/AttackerRun.h"

#include <sstream>

#include <fcntl.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <support/Process.h>

#include "zqx/pictures/isolation/SharedMemory.h"

namespace zqx::pictures::test {

AttackerTest::AttackerTest() : mBystander(fork()) {
    if (mBystander == 0) {
        for (;;) {
            pause();
        }
    }
    img::test::writeFile(at("victim"), "untouched");
    img::test::writeFile(at("picture"), "a picture");
}

AttackerTest::~AttackerTest() {
    kill(mBystander, SIGKILL);
    waitpid(mBystander, nullptr, 0);
}

AttackerTest::Result AttackerTest::run(const std::string& mode, std::uint64_t milliseconds) {
    DecodeRequest request;
    request.parent = static_cast<std::uint64_t>(getpid());
    request.memory = std::uint64_t{1} << 30U;
    request.milliseconds = milliseconds;
    request.name = mode + "\n" + at("") + "\n" + std::to_string(mBystander);
    const int picture = open(at("picture").c_str(), O_RDONLY | O_CLOEXEC);
    const SharedMemory memory;
    Result result;
    result.end = runDecoder(ZQX_ATTACKER, request, picture, memory.descriptor());
    close(picture);
    const SharedMemory::Content content = memory.content();
    if (content.bytes) {
        result.words.assign(reinterpret_cast<const char*>(content.bytes.get()), content.size);
    }
    std::istringstream lines(result.words);
    for (std::string name, answer; std::getline(lines, name, '\t') && std::getline(lines, answer);) {
        result.answers[name] = std::stoi(answer);
    }
    return result;
}

} // namespace zqx::pictures::test
