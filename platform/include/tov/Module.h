/// @file
/// The host's side of a module: loads its shared library, registers its classes and makes components.
#pragma once

#include <cstdint>
#include <string>

#include <tov/Export.h>
#include <tov/Result.h>
#include <tov/TovRef.h>

namespace tov {

// The entry points that a module exports, as plain C functions.
extern "C" {
/// dsoGetObjectFactory: makes a factory of a class and hands out its first reference.
using DsoGetObjectFactory = std::uint32_t (*)(const char* clsid, const char* iid, void** pOut);
/// dsoRegisterServer and dsoUnregisterServer: put the module's classes into the registry, or take them off it.
using DsoRegisterServer = std::uint32_t (*)(unsigned int module, unsigned int flags);
}

/// A loaded module. Its classes are registered for as long as this object lives; its code stays for good, because
/// components made from it may outlive this object, and threads of its parallel loops may be waiting in it.
/// One object is used from one thread at a time; components may be made on any thread after that.
class ZQX_PLATFORM_API Module {
public:
    /// No module.
    Module() = default;

    /// Loads a library and registers its classes under a number of its own.
    /// @param path file name in UTF-8; without a directory it is searched for as the system does.
    /// @param pError receives what went wrong, in words, if anything did.
    /// @return the module, not loaded on failure. A library of which another Module still holds the classes fails.
    static Module load(const std::string& path, std::string* pError = nullptr);

    /// @{

    /// The other object is not loaded afterwards; what this one held is released.
    Module(Module&& other) noexcept;
    Module& operator=(Module&& other) noexcept;
    /// @}
    Module(const Module&) = delete;
    Module& operator=(const Module&) = delete;
    /// Takes the classes off the registry; the code stays in memory.
    ~Module();

    /// False for a module that was not loaded, could not be, or was moved from.
    bool isLoaded() const { return mLibrary != nullptr; }

    /// What the registry knows this module by; 0 when not loaded.
    unsigned int number() const { return mNumber; }

    /// Makes a component and hands out an interface of it, with one reference that the caller owns.
    /// @return SUCCESS; NOT_READY when not loaded; INVALID_ARGUMENT for a null pointer; else the module's code.
    Result createComponent(const char* clsid, const char* iid, void** pOut) const;

    /// The same for an interface class; empty on failure.
    template <class I>
    TovRef<I> create(const char* clsid) const {
        void* created = nullptr;
        createComponent(clsid, I::IID, &created);
        return TovRef<I>::adopt(static_cast<I*>(created));
    }

    /// The address of an exported symbol, or null.
    void* symbol(const char* name) const;

private:
    void swap(Module& other) noexcept;
    std::string resolveEntryPoints();

    void* mLibrary = nullptr;
    unsigned int mNumber = 0;
    DsoGetObjectFactory mGetObjectFactory = nullptr;
    DsoRegisterServer mRegisterServer = nullptr;
    DsoRegisterServer mUnregisterServer = nullptr;
};

} // namespace tov
