/// @file
/// The interface through which a module's components are made.
#pragma once

#include <tov/IUnknown.h>

namespace tov {

/// Makes components of one class.
class IObjectFactory : public IUnknown {
public:
    /// The interface's identifier.
    static constexpr const char* IID = "IDL:tov/IObjectFactory:1.0";

    /// Makes an object and hands out one of its interfaces, with one reference that the caller owns.
    /// @param outer object to become part of; factories that cannot do that refuse all but null (NO_AGGREGATION).
    /// @param iid identifier of the interface wanted.
    /// @param pOut receives the interface, or null on failure.
    virtual Result createInstance(IUnknown* outer, const char* iid, void** pOut) = 0;

    /// Asks to keep the factory's module in memory (non-zero) or not. Modules are never unloaded, so nothing happens.
    virtual Result lockServer(int lock) = 0;

protected:
    /// @{

    /// For components alone: they end through release().
    IObjectFactory() = default;
    IObjectFactory(const IObjectFactory&) = default;
    IObjectFactory& operator=(const IObjectFactory&) = default;
    ~IObjectFactory() = default;
    /// @}
};

/// Base of factories: what remains pure is what they have to say themselves.
class IObjectFactory_Adapter : public UnknownAdapter<IObjectFactory> {
protected:
    /// @{

    /// For components alone: they end through release().
    IObjectFactory_Adapter() = default;
    IObjectFactory_Adapter(const IObjectFactory_Adapter&) = default;
    IObjectFactory_Adapter& operator=(const IObjectFactory_Adapter&) = default;
    ~IObjectFactory_Adapter() = default;
    /// @}
};

} // namespace tov
