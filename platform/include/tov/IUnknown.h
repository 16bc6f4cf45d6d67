/// @file
/// The interface that every component starts with: reference counting and the way from one interface to another.
#pragma once

#include <cstdint>

#include <tov/Result.h>

namespace tov {

/// Base of all interfaces. The order of declaration is the order of slots, which separately built modules rely on:
/// hence no virtual destructor here (compilers give it one slot or two) and no overloaded virtuals anywhere (some
/// compilers reorder them). Objects end through release(), never through delete.
class IUnknown {
public:
    /// The interface's identifier.
    static constexpr const char* IID = "IDL:tov/IUnknown:1.0";

    /// @{

    /// The three slots of the older, binary-identifier protocol; see UnknownAdapter.
    virtual Result plainQueryInterface(const void* iid, void** pOut) = 0;
    virtual std::uint32_t plainAddRef() = 0;
    virtual std::uint32_t plainRelease() = 0;
    /// @}

    /// Hands out another interface of the object, with one reference that the caller owns.
    /// @param iid the interface identifier; not changed.
    /// @param pIfc receives the interface, or null on failure.
    /// @return SUCCESS, NO_INTERFACE, or INVALID_ARGUMENT for a null pIfc where the object checks that.
    virtual Result queryInterface(const char* iid, IUnknown** pIfc) = 0;

    /// Takes a reference. @return the new count. Thread-safe, as is release.
    virtual std::uint32_t addRef() = 0;

    /// Gives a reference back; the object is destroyed with the last. @return the new count.
    virtual std::uint32_t release() = 0;

    /// The identifier of the object's own interface; static memory.
    virtual const char* getInterfaceName() = 0;

protected:
    /// @{

    /// For components alone: they end through release().
    IUnknown() = default;
    IUnknown(const IUnknown&) = default;
    IUnknown& operator=(const IUnknown&) = default;
    ~IUnknown() = default;
    /// @}
};

/// Answers the older protocol's slots for any interface: no identifier is known there, and the counts are the same.
template <typename Interface>
class UnknownAdapter : public Interface {
public:
    /// Finds nothing. @return NO_INTERFACE, with a null pointer where there is room for one
    Result plainQueryInterface(const void* /*iid*/, void** pOut) final {
        if (pOut != nullptr) {
            *pOut = nullptr;
        }
        return NO_INTERFACE;
    }
    /// The same as addRef().
    std::uint32_t plainAddRef() final { return this->addRef(); }
    /// The same as release().
    std::uint32_t plainRelease() final { return this->release(); }

protected:
    /// For components alone: they end through release().
    UnknownAdapter() = default;
    /// For components alone.
    UnknownAdapter(const UnknownAdapter&) = default;
    /// For components alone.
    UnknownAdapter& operator=(const UnknownAdapter&) = default;
    ~UnknownAdapter() = default;
};

} // namespace tov
