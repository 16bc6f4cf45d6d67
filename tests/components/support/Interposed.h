// Calls of the module that a test looks at or makes fail: the image library's, and the runtime's registration.
#pragma once

#include <functional>
#include <string>
#include <utility>
#include <vector>

#include <tov/Result.h>

#if defined(__ELF__)
#define ZQX_CAN_INTERPOSE 1
#endif

namespace test {

/// What the image library refuses.
enum class Fault { NONE, CREATE_TAG, SET_METADATA, OPEN_MEMORY, SAVE_TO_MEMORY, ACQUIRE_MEMORY, GET_BITS, COLOR_TYPE };

/// Makes one call of the image library fail for as long as it lives.
class FaultScope {
public:
    explicit FaultScope(Fault fault);
    ~FaultScope();
    FaultScope(const FaultScope&) = delete;
    FaultScope& operator=(const FaultScope&) = delete;
};

/// Runs a function inside each of the image library's loads from memory, for as long as it lives.
class DuringLoad {
public:
    explicit DuringLoad(std::function<void()> function);
    ~DuringLoad();
    DuringLoad(const DuringLoad&) = delete;
    DuringLoad& operator=(const DuringLoad&) = delete;
};

struct Registration {
    bool isRegister;
    std::string clsid;
    unsigned int a;
    unsigned int b;

    friend bool operator==(const Registration&, const Registration&) = default;
};

/// Takes the place of the runtime's registry for as long as it lives: notes the calls and answers one result after the
/// other.
class RegistrySpy {
public:
    explicit RegistrySpy(std::vector<tov::Result> results);
    ~RegistrySpy();
    RegistrySpy(const RegistrySpy&) = delete;
    RegistrySpy& operator=(const RegistrySpy&) = delete;

    tov::Result answer(Registration call);
    const std::vector<Registration>& calls() const { return mCalls; }

private:
    std::vector<tov::Result> mResults;
    std::vector<Registration> mCalls;
};

} // namespace test
