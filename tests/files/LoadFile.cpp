// LoadFile SECONDS FILE...: loads files by path and by stream, each in a process of its own with little memory and
// time, and says what became of it: one line "OUTCOME WAY FILE" each. Damaged files may bring the picture library down;
// they must not reach further.
#include <csignal>
#include <cstdint>
#include <cstdio>
#include <exception>
#include <fstream>
#include <string>

#include <sys/resource.h>
#include <sys/time.h>
#include <sys/wait.h>
#include <unistd.h>

#include <qutil/Log.h>
#include <qutil/Streams.h>

#include "Component.h"

namespace {

namespace test = zqx::img::test;

constexpr rlim_t MEMORY_LIMIT = rlim_t{512} << 20U;
constexpr int WALL_FACTOR = 20; // for machines that are busy with other things

/// What a child process ends with. Numbers that no runtime uses by itself.
enum Ending : int { LOADED = 40, REFUSED = 41, FAULTED = 42, INCONSISTENT = 43 };

enum class Way { PATH, STREAM };

std::uint64_t addressSpace() {
    std::uint64_t pages = 0;
    std::ifstream("/proc/self/statm") >> pages;
    return pages * static_cast<std::uint64_t>(sysconf(_SC_PAGESIZE));
}

void limitResources(int cpuSeconds) {
    // Sanitizers reserve terabytes of addresses for themselves; they have limits of their own.
    if (addressSpace() < MEMORY_LIMIT) {
        const rlimit memory = {MEMORY_LIMIT, MEMORY_LIMIT};
        setrlimit(RLIMIT_AS, &memory);
    }
    const itimerval time = {{0, 0}, {cpuSeconds, 0}};
    setitimer(ITIMER_PROF, &time, nullptr);
    const rlimit noDump = {0, 0};
    setrlimit(RLIMIT_CORE, &noDump);
    alarm(static_cast<unsigned>(cpuSeconds * WALL_FACTOR));
}

tov::Result loadIt(test::IFreeImage& component, const char* file, Way way) {
    if (way == Way::PATH) {
        return component.load(test::DETECT, file, 0);
    }
    const auto stream = qutil::FileInputStream::create(file);
    return stream ? component.loadFromStream(test::DETECT, stream.get(), 0) : tov::FAILURE;
}

/// Whether a loaded picture can be walked through from end to end.
bool isReadable(test::IFreeImage& component) {
    int width = 0;
    int height = 0;
    int hash = 0;
    void* line = nullptr;
    return component.getWidth(&width) == tov::SUCCESS && component.getHeight(&height) == tov::SUCCESS && width > 0 &&
           height > 0 && component.getScanline(0, &line) == tov::SUCCESS &&
           component.getScanline(height - 1, &line) == tov::SUCCESS && component.getHash(&hash) == tov::SUCCESS;
}

Ending tryLoading(const char* file, Way way) {
    const test::Component component = test::makeComponent();
    const tov::Result result = loadIt(*component, file, way);
    if (result == tov::SUCCESS) {
        return isReadable(*component) ? LOADED : INCONSISTENT;
    }
    int width = 0;
    if (component->getWidth(&width) != tov::NOT_READY) {
        return INCONSISTENT;
    }
    return result == tov::FAILURE ? REFUSED : result == tov::UNEXPECTED ? FAULTED : INCONSISTENT;
}

std::string describe(int status) {
    if (WIFSIGNALED(status)) {
        const int number = WTERMSIG(status);
        return number == SIGPROF || number == SIGALRM ? "hung" : "died";
    }
    switch (WEXITSTATUS(status)) {
    case LOADED: return "loaded";
    case REFUSED: return "refused";
    case FAULTED: return "faulted";
    case INCONSISTENT: return "inconsistent";
    default: return "died"; // a sanitizer's exit
    }
}

std::string getOutcome(const char* file, Way way, int cpuSeconds) {
    const pid_t child = fork();
    if (child < 0) {
        return "not-tried";
    }
    if (child == 0) {
        limitResources(cpuSeconds);
        _exit(tryLoading(file, way));
    }
    int status = 0;
    waitpid(child, &status, 0);
    return describe(status);
}

} // namespace

int main(int argc, char** argv) {
    try {
        qutil::Log::setSink([](const qutil::LogRecord&) {});
        test::makeComponent(); // so that children find the module loaded
        const int cpuSeconds = argc > 1 ? std::stoi(argv[1]) : 0;
        for (int i = 2; i < argc; ++i) {
            std::printf("%s path %s\n", getOutcome(argv[i], Way::PATH, cpuSeconds).c_str(), argv[i]);
            std::printf("%s stream %s\n", getOutcome(argv[i], Way::STREAM, cpuSeconds).c_str(), argv[i]);
            std::fflush(stdout); // a child would write out what is pending once more
        }
        return 0;
    } catch (const std::exception& error) {
        std::fprintf(stderr, "%s\n", error.what());
        return 1;
    }
}
