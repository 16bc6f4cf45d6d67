// Loading of modules. What differs between operating systems is in the first functions of this file.
#include <tov/Module.h>

#include <atomic>
#include <utility>

#include <tov/IObjectFactory.h>

#if defined(_WIN32)
#if !defined(NOMINMAX)
#define NOMINMAX
#endif
#define WIN32_LEAN_AND_MEAN
#include <windows.h>

#include <system_error>

#include <qutil/XString.h>
#else
#include <dlfcn.h>
#endif

namespace tov {

namespace {

#if defined(_WIN32)

void* openLibrary(const std::string& path, std::string& error) {
    void* library = LoadLibraryW(qutil::XString(path).toWide().c_str());
    if (library == nullptr) {
        error = path + ": " + std::system_category().message(static_cast<int>(GetLastError()));
    }
    return library;
}

void* findSymbol(void* library, const char* name) {
    return reinterpret_cast<void*>(GetProcAddress(static_cast<HMODULE>(library), name));
}

void closeLibrary(void* library) {
    FreeLibrary(static_cast<HMODULE>(library));
}

#else

void* openLibrary(const std::string& path, std::string& error) {
    void* library = dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL);
    if (library == nullptr) {
        const char* reason = dlerror();
        error = reason != nullptr ? reason : path + ": cannot be loaded";
    }
    return library;
}

void* findSymbol(void* library, const char* name) {
    return dlsym(library, name);
}

void closeLibrary(void* library) {
    dlclose(library);
}

#endif

std::atomic<unsigned int> sLastNumber = 0;

} // namespace

Module Module::load(const std::string& path, std::string* pError) {
    Module module;
    std::string error;
    // An empty name would mean the program itself to the system.
    void* library = path.empty() ? nullptr : openLibrary(path, error);
    if (library != nullptr) {
        module.mLibrary = library;
        const std::string missing = module.resolveEntryPoints();
        if (!missing.empty()) {
            error = path + ": is not a module, it lacks " + missing;
            module = Module();
            // Nothing of it has been called, so nothing of it can be running.
            closeLibrary(library);
        } else {
            module.mNumber = ++sLastNumber;
            if (failed(module.mRegisterServer(module.mNumber, 0))) {
                error = path + ": its classes could not be registered, another module may hold them";
                module = Module();
            }
        }
    } else if (error.empty()) {
        error = "A module needs a file name";
    }
    if (pError != nullptr) {
        *pError = error;
    }
    return module;
}

Module::Module(Module&& other) noexcept {
    swap(other);
}

Module& Module::operator=(Module&& other) noexcept {
    Module moved(std::move(other));
    swap(moved);
    return *this;
}

Module::~Module() {
    // Also after a failed registration, which may have got half the way. The library itself stays, see the class.
    if (mNumber != 0) {
        mUnregisterServer(mNumber, 0);
    }
}

Result Module::createComponent(const char* clsid, const char* iid, void** pOut) const {
    if (clsid == nullptr || iid == nullptr || pOut == nullptr) {
        return INVALID_ARGUMENT;
    }
    *pOut = nullptr;
    if (!isLoaded()) {
        return NOT_READY;
    }
    void* found = nullptr;
    const Result result = mGetObjectFactory(clsid, IObjectFactory::IID, &found);
    if (failed(result)) {
        return result;
    }
    const auto factory = TovRef<IObjectFactory>::adopt(static_cast<IObjectFactory*>(found));
    return factory->createInstance(nullptr, iid, pOut);
}

void* Module::symbol(const char* name) const {
    return isLoaded() && name != nullptr ? findSymbol(mLibrary, name) : nullptr;
}

void Module::swap(Module& other) noexcept {
    std::swap(mLibrary, other.mLibrary);
    std::swap(mNumber, other.mNumber);
    std::swap(mGetObjectFactory, other.mGetObjectFactory);
    std::swap(mRegisterServer, other.mRegisterServer);
    std::swap(mUnregisterServer, other.mUnregisterServer);
}

/// @return the name of an entry point that is missing, or nothing.
std::string Module::resolveEntryPoints() {
    const auto resolve = [this](const char* name, auto& entryPoint) {
        entryPoint = reinterpret_cast<std::remove_reference_t<decltype(entryPoint)>>(symbol(name));
        return entryPoint != nullptr;
    };
    if (!resolve("dsoGetObjectFactory", mGetObjectFactory)) {
        return "dsoGetObjectFactory";
    }
    if (!resolve("dsoRegisterServer", mRegisterServer)) {
        return "dsoRegisterServer";
    }
    return resolve("dsoUnregisterServer", mUnregisterServer) ? "" : "dsoUnregisterServer";
}

} // namespace tov
