/// @file
/// What every component has in common: reference counting, interface lookup and its class name.
#pragma once

#include <cstdint>
#include <typeinfo>

#include <qutil/MethodGuard.h>
#include <rhm/Atomic.h>
#include <tov/IObjectFactory.h>
#include <tov/IUnknown.h>
#include <tov/Runtime.h>

namespace zqx {

namespace detail {

inline constexpr const char* ADAPTER_SOURCE = "include/qutil/InterfaceAdapter";

/// A component without further interfaces.
struct NoInterfaceProvider {};

/// What a factory's createInstance does, see there. @param create makes a new object with a count of 0
template <typename Create>
tov::Result createComponent(const MethodSite& site, tov::IUnknown* outer, const char* iid, void** pOut,
                            const Create& create) {
    if (pOut == nullptr) {
        return nullArgument(site, "pOut");
    }
    *pOut = nullptr;
    if (outer != nullptr) {
        return tov::NO_AGGREGATION;
    }
    return guarded(site, [&] {
        tov::IUnknown* component = nullptr;
        const tov::Result result = create()->queryInterface(iid, &component);
        *pOut = component;
        return result;
    });
}

} // namespace detail

/// Implements the common slots of a component over the interface that it implements.
///
/// The reference count is 0 when the object is made; queryInterface takes the first reference, and the release that
/// brings the count back to 0 destroys the object. Copying copies the count along with the rest.
///
/// Thread-safety: references may be taken and dropped on any thread.
/// @tparam Interface the interface's adapter class; names its identifier `IID`
/// @tparam Provider what answers for further interfaces; there are none as yet
/// @tparam Primary whose `IID` and name the component goes by
/// @ingroup components
template <typename Interface, typename Provider = detail::NoInterfaceProvider, typename Primary = Interface>
class TovInterfaceAdapter : public Interface {
public:
    /// Answers for tov::IUnknown and the component's own interface with a new reference.
    /// @return tov::INVALID_ARGUMENT for a null out-pointer, tov::NO_INTERFACE for other identifiers
    tov::Result queryInterface(const char* iid, tov::IUnknown** pIfc) override {
        if (pIfc == nullptr) {
            return detail::nullArgument(ZQX_METHOD_SITE(detail::ADAPTER_SOURCE), "pIfc");
        }
        *pIfc = nullptr;
        if (tov::tovCompareIID(iid, tov::IUnknown::IID) != 0 && tov::tovCompareIID(iid, Primary::IID) != 0) {
            return tov::NO_INTERFACE;
        }
        *pIfc = this;
        this->addRef();
        return tov::SUCCESS;
    }

    /// @return the new count
    std::uint32_t addRef() override { return rhm::rhmAtomicIncrement(&mRefCount); }

    /// Destroys the object with its last reference. @return the new count
    std::uint32_t release() override {
        const std::uint32_t count = rhm::rhmAtomicDecrement(&mRefCount);
        if (count == 0) {
            delete this;
        }
        return count;
    }

    /// The identifier of the component's own interface; a constant.
    const char* getInterfaceName() override { return Primary::IID; }

    /// Drops a reference without ever destroying the object. @return the new count
    std::uint32_t releaseNoDelete() { return rhm::rhmAtomicDecrement(&mRefCount); }

    /// Hands out a copy of the run-time class name as the compiler spells it. The caller frees it with tov::tovFree.
    tov::Result getClassName(char** pName) {
        if (pName == nullptr) {
            return detail::nullArgument(ZQX_METHOD_SITE(detail::ADAPTER_SOURCE), "pName");
        }
        *pName = tov::tovStrDup(typeid(*this).name());
        return tov::SUCCESS;
    }

    /// Objects with references end through release().
    virtual ~TovInterfaceAdapter() = default;

protected:
    /// A count of 0.
    TovInterfaceAdapter() = default;
    /// The other object's count.
    TovInterfaceAdapter(const TovInterfaceAdapter&) = default;
    /// The other object's count.
    TovInterfaceAdapter& operator=(const TovInterfaceAdapter&) = default;

private:
    std::uint32_t mRefCount = 0;
};

/// A factory of one component class.
/// @tparam Product the class; makes itself with a static `create()` that returns a new object with a count of 0
/// @ingroup components
template <typename Product>
class TovObjectFactory : public TovInterfaceAdapter<tov::IObjectFactory_Adapter> {
public:
    /// Makes a component and hands out its first reference.
    ///
    /// A new object that refuses the interface is left as it is: it has no reference that could be released.
    /// @param outer must be null: aggregation is not supported
    /// @param iid identifier of the interface
    /// @param pOut receives the interface, or null on failure
    /// @return tov::SUCCESS, tov::INVALID_ARGUMENT for a null pOut, tov::NO_AGGREGATION, tov::NO_INTERFACE, or
    ///         tov::UNEXPECTED when the component could not be made
    tov::Result createInstance(tov::IUnknown* outer, const char* iid, void** pOut) override {
        return detail::createComponent(ZQX_METHOD_SITE(detail::ADAPTER_SOURCE), outer, iid, pOut,
                                       [this] { return createObject(); });
    }

    /// Accepted without effect.
    tov::Result lockServer(int /*lock*/) override { return tov::SUCCESS; }

    /// A new object with a reference count of 0.
    virtual Product* createObject() { return Product::create(); }
};

} // namespace zqx
