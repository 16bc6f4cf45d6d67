// A definition in the program comes before the shared libraries' own: it decides, or passes the call on to theirs.
#include "components/support/Interposed.h"

#include <FreeImage.h>

#include <tov/Runtime.h>

#if defined(ZQX_CAN_INTERPOSE)
#include <dlfcn.h>
#endif

namespace test {

namespace {

Fault gFault = Fault::NONE;
RegistrySpy* gSpy = nullptr;
std::function<void()> gDuringLoad;

} // namespace

FaultScope::FaultScope(Fault fault) {
    gFault = fault;
}

FaultScope::~FaultScope() {
    gFault = Fault::NONE;
}

DuringLoad::DuringLoad(std::function<void()> function) {
    gDuringLoad = std::move(function);
}

DuringLoad::~DuringLoad() {
    gDuringLoad = nullptr;
}

RegistrySpy::RegistrySpy(std::vector<tov::Result> results) : mResults(std::move(results)) {
    gSpy = this;
}

RegistrySpy::~RegistrySpy() {
    gSpy = nullptr;
}

tov::Result RegistrySpy::answer(Registration call) {
    mCalls.push_back(std::move(call));
    return mResults.at(mCalls.size() - 1);
}

} // namespace test

#if defined(ZQX_CAN_INTERPOSE)

namespace {

using test::Fault;
using test::gFault;
using test::gSpy;

/// The definition that would have been used without the one here.
template <typename Function>
Function* next(const char* name) {
    return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name));
}

} // namespace

extern "C" {

FITAG* FreeImage_CreateTag() {
    static auto* const original = next<decltype(FreeImage_CreateTag)>("FreeImage_CreateTag");
    return gFault == Fault::CREATE_TAG ? nullptr : original();
}

BOOL FreeImage_SetMetadata(FREE_IMAGE_MDMODEL model, FIBITMAP* bitmap, const char* key, FITAG* tag) {
    static auto* const original = next<decltype(FreeImage_SetMetadata)>("FreeImage_SetMetadata");
    return gFault == Fault::SET_METADATA ? FALSE : original(model, bitmap, key, tag);
}

FIMEMORY* FreeImage_OpenMemory(BYTE* data, DWORD size) {
    static auto* const original = next<decltype(FreeImage_OpenMemory)>("FreeImage_OpenMemory");
    return gFault == Fault::OPEN_MEMORY ? nullptr : original(data, size);
}

FIBITMAP* FreeImage_LoadFromMemory(FREE_IMAGE_FORMAT format, FIMEMORY* memory, int flags) {
    static auto* const original = next<decltype(FreeImage_LoadFromMemory)>("FreeImage_LoadFromMemory");
    if (test::gDuringLoad) {
        test::gDuringLoad();
    }
    return original(format, memory, flags);
}

BOOL FreeImage_SaveToMemory(FREE_IMAGE_FORMAT format, FIBITMAP* bitmap, FIMEMORY* memory, int flags) {
    static auto* const original = next<decltype(FreeImage_SaveToMemory)>("FreeImage_SaveToMemory");
    return gFault == Fault::SAVE_TO_MEMORY ? FALSE : original(format, bitmap, memory, flags);
}

BOOL FreeImage_AcquireMemory(FIMEMORY* memory, BYTE** data, DWORD* size) {
    static auto* const original = next<decltype(FreeImage_AcquireMemory)>("FreeImage_AcquireMemory");
    return gFault == Fault::ACQUIRE_MEMORY ? FALSE : original(memory, data, size);
}

BYTE* FreeImage_GetBits(FIBITMAP* bitmap) {
    static auto* const original = next<decltype(FreeImage_GetBits)>("FreeImage_GetBits");
    return gFault == Fault::GET_BITS ? nullptr : original(bitmap);
}

FREE_IMAGE_COLOR_TYPE FreeImage_GetColorType(FIBITMAP* bitmap) {
    static auto* const original = next<decltype(FreeImage_GetColorType)>("FreeImage_GetColorType");
    return gFault == Fault::COLOR_TYPE ? static_cast<FREE_IMAGE_COLOR_TYPE>(6) : original(bitmap);
}

} // extern "C"

namespace tov {

Result tovRegisterDSO(const char* clsid, unsigned int a, unsigned int b) {
    static auto* const original = next<decltype(tovRegisterDSO)>("_ZN3tov14tovRegisterDSOEPKcjj");
    return gSpy != nullptr ? gSpy->answer({true, clsid, a, b}) : original(clsid, a, b);
}

Result tovUnregisterDSO(const char* clsid, unsigned int a, unsigned int b) {
    static auto* const original = next<decltype(tovUnregisterDSO)>("_ZN3tov16tovUnregisterDSOEPKcjj");
    return gSpy != nullptr ? gSpy->answer({false, clsid, a, b}) : original(clsid, a, b);
}

} // namespace tov

#endif
