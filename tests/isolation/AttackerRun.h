// Runs the attacker where a decoder would run.
#pragma once

#include <map>
#include <string>

#include <support/DirectoryTest.h>

#include "zqx/pictures/isolation/DecoderProcess.h"

namespace zqx::pictures::test {

class AttackerTest : public img::test::DirectoryTest {
protected:
    AttackerTest();
    ~AttackerTest() override;

    struct Result {
        DecoderEnd end;
        std::string words;                  ///< all that it wrote
        std::map<std::string, int> answers; ///< what the kernel said to each attempt, 0 for a success
    };

    /// @param mode as the attacker knows it
    Result run(const std::string& mode, std::uint64_t milliseconds = 60'000);

    /// A process that has nothing to do with any of this.
    int bystander() const { return mBystander; }

private:
    int mBystander;
};

} // namespace zqx::pictures::test
