// The program's side of decoding in another process: what went wrong there becomes an error here.
#include "zqx/pictures/isolation/IsolatedDecoder.h"

#include "zqx/pictures/codecs/Limits.h"
#include "zqx/pictures/files/Error.h"

#if defined(__unix__) || defined(__APPLE__)

#include <algorithm>
#include <csignal>
#include <cstdio>
#include <mutex>
#include <system_error>
#include <utility>

#include <unistd.h>

#include "zqx/pictures/isolation/DecodeRequest.h"
#include "zqx/pictures/isolation/DecoderProcess.h"
#include "zqx/pictures/isolation/PictureTransfer.h"
#include "zqx/pictures/isolation/SharedMemory.h"
#include "zqx/text/Amounts.h"
#include "zqx/text/Cleaning.h"
#include "zqx/text/Numbers.h"

namespace zqx::pictures {

namespace {

std::uint64_t memoryFor(const ReadOptions& options) {
    if (options.decodeMemory != 0) {
        return options.decodeMemory;
    }
    constexpr std::uint64_t LEAST = std::uint64_t{4} << 30U;
    const auto pages = static_cast<std::uint64_t>(std::max(sysconf(_SC_PHYS_PAGES), 0L));
    const auto pageSize = static_cast<std::uint64_t>(std::max(sysconf(_SC_PAGESIZE), 0L));
    return std::max(LEAST, pages * pageSize / 2);
}

DecodeRequest requestFor(const std::string& name, const ReadOptions& options, DecodeRequest::Task task) {
    DecodeRequest request;
    request.parent = static_cast<std::uint64_t>(getpid());
    request.memory = memoryFor(options);
    request.milliseconds = std::max<std::uint64_t>(1, static_cast<std::uint64_t>(options.decodeSeconds * 1000.0));
    request.limits = options.limits;
    request.task = task;
    request.requireConfinement = options.requireConfinement;
    request.name = name;
    return request;
}

const char* getName(int signal) {
    switch (signal) {
    case SIGABRT: return "aborted";
    case SIGBUS: return "bus error";
    case SIGFPE: return "arithmetic fault";
    case SIGILL: return "illegal instruction";
    case SIGSEGV: return "segmentation fault";
    case SIGSYS: return "forbidden system call";
    default: return "a signal";
    }
}

[[noreturn]] void throwTooLong(const std::string& name, const ReadOptions& options) {
    throw Error(name, "takes longer to decode than the " + text::significant(options.decodeSeconds) +
                          " s allowed; --decode-time raises this limit");
}

[[noreturn]] void throwTooMuch(const std::string& name, const ReadOptions& options) {
    throw Error(name, "needs more than the " + text::exactSize(memoryFor(options)) +
                          " allowed for decoding; --decode-memory raises this limit");
}

[[noreturn]] void throwUnconfined(const std::string& name) {
    throw Error(name, "cannot be decoded in isolation, as this system does not confine processes (it takes Linux with "
                      "seccomp filters); --weak-isolation works without");
}

/// Once: it is as true of the next picture.
void warnOfWeakIsolation(const std::string& name) {
    static std::once_flag told;
    std::call_once(told, [&] {
        warn(name, "is decoded in a separate process that this system cannot confine: a hostile file can do there what "
                   "you can");
    });
}

/// The line without the subject in front, which is added again: nobody else's is believed.
std::string withoutSubject(const std::string& line, const std::string& name) {
    const std::string subject = text::inOneLine(name) + ": "; // as texts arrive
    return line.starts_with(subject) ? line.substr(subject.size()) : line;
}

std::string describeDecoder(const Transfer& transfer) {
    return transfer.format == FileFormat::UNKNOWN ? "its decoder"
                                                  : std::string("the ") + getName(transfer.format) + " decoder";
}

/// What a process that died left, if anything.
Transfer readRemains(const SharedMemory& memory) {
    try {
        const SharedMemory::Content content = memory.content();
        return content.bytes ? readTransfer(content.bytes, content.size) : Transfer();
    } catch (const BadTransfer&) {
        return {};
    } catch (const std::system_error&) {
        return {};
    }
}

void throwDeath(const std::string& name, const ReadOptions& options, const DecoderEnd& end,
                const SharedMemory& memory) {
    if (end.tookTooLong || end.signal == SIGXCPU || end.signal == SIGALRM) {
        throwTooLong(name, options);
    }
    if (end.signal == SIGXFSZ) {
        throwTooMuch(name, options);
    }
    if (end.signal == SIGKILL) {
        throw Error(name, describeDecoder(readRemains(memory)) + " was killed, possibly for lack of memory");
    }
    if (end.signal != 0) {
        throw Error(name, "crashed " + describeDecoder(readRemains(memory)) + " (" + getName(end.signal) +
                              "); the file is damaged or hostile");
    }
    if (end.exitCode != 0) {
        throw Error(name, describeDecoder(readRemains(memory)) + " failed with exit code " +
                              std::to_string(end.exitCode) + "; the file may be damaged");
    }
}

/// What a process that ended in peace says. @throws Error for everything but what was asked for
Transfer readResult(const std::string& name, const ReadOptions& options, Outcome wanted, const SharedMemory& memory) {
    const SharedMemory::Content content = memory.content();
    if (!content.bytes) {
        throw BadTransfer("it is empty");
    }
    Transfer transfer = readTransfer(content.bytes, content.size);
    if (transfer.outcome == Outcome::UNCONFINED) {
        throwUnconfined(name);
    }
    if (!transfer.confined) {
        warnOfWeakIsolation(name);
    }
    for (const std::string& warning : transfer.warnings) {
        warn(name, withoutSubject(warning, name));
    }
    if (transfer.outcome == Outcome::FAILURE) {
        throw Error(name, withoutSubject(transfer.failure, name));
    }
    if (transfer.outcome == Outcome::OUT_OF_MEMORY) {
        throwTooMuch(name, options);
    }
    if (transfer.outcome != wanted) {
        throw BadTransfer("it is no answer");
    }
    if (transfer.picture) {
        checkPictureSize(name, transfer.picture->width(), transfer.picture->height(), options.limits);
    }
    return transfer;
}

Transfer run(const PictureFile& file, const ReadOptions& options, DecodeRequest::Task task) {
    const std::string& name = file.name();
    const std::string program = findDecoder(name);
    try {
        const SharedMemory memory;
        const DecoderEnd end =
            runDecoder(program, requestFor(name, options, task), fileno(file.input.stream()), memory.descriptor());
        throwDeath(name, options, end, memory);
        return readResult(name, options, task == DecodeRequest::Task::DECODE ? Outcome::PICTURE : Outcome::FACTS,
                          memory);
    } catch (const BadTransfer& bad) {
        throw Error(name, std::string("its decoder's result cannot be used (") + bad.what() +
                              "); the file is hostile, or " + program + " is of another version");
    } catch (const std::system_error& failure) {
        throw Error(name, "cannot be decoded in a separate process (" + failure.code().message() +
                              "); --no-isolate works without");
    }
}

} // namespace

bool canIsolate() {
    return true;
}

Picture decodeIsolated(PictureFile& file, const ReadOptions& options) {
    return std::move(*run(file, options, DecodeRequest::Task::DECODE).picture);
}

PictureFacts describeIsolated(PictureFile& file, const ReadOptions& options) {
    return std::move(*run(file, options, DecodeRequest::Task::DESCRIBE).facts);
}

} // namespace zqx::pictures

#else

namespace zqx::pictures {

bool canIsolate() {
    return false;
}

Picture decodeIsolated(PictureFile& file, const ReadOptions&) {
    throw Error(file.name(), "cannot be decoded in a separate process on this system");
}

PictureFacts describeIsolated(PictureFile& file, const ReadOptions&) {
    throw Error(file.name(), "cannot be decoded in a separate process on this system");
}

} // namespace zqx::pictures

#endif
