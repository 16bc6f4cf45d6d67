/// @file
/// Base of components with one interface, for hosts and their streams: counting, lookup and name.
#pragma once

#include <rhm/Atomic.h>
#include <tov/IUnknown.h>
#include <tov/Runtime.h>

namespace tov {

/// Starts with no reference: put a new object into a TovRef at once.
template <typename Interface>
class CountedObject : public UnknownAdapter<Interface> {
public:
    CountedObject(const CountedObject&) = delete;
    CountedObject& operator=(const CountedObject&) = delete;

    /// Answers for IUnknown and the component's own interface with a new reference.
    /// @return SUCCESS, INVALID_ARGUMENT for a null pIfc, NO_INTERFACE for other identifiers
    Result queryInterface(const char* iid, IUnknown** pIfc) override {
        if (pIfc == nullptr) {
            return INVALID_ARGUMENT;
        }
        *pIfc = nullptr;
        if (tovCompareIID(iid, IUnknown::IID) != 0 && tovCompareIID(iid, Interface::IID) != 0) {
            return NO_INTERFACE;
        }
        *pIfc = this;
        addRef();
        return SUCCESS;
    }
    /// @return the new count. Thread-safe.
    std::uint32_t addRef() override { return rhm::rhmAtomicIncrement(&mReferences); }
    /// Destroys the object with its last reference. @return the new count. Thread-safe.
    std::uint32_t release() override {
        const std::uint32_t left = rhm::rhmAtomicDecrement(&mReferences);
        if (left == 0) {
            delete this;
        }
        return left;
    }
    /// The identifier of the component's own interface; static memory.
    const char* getInterfaceName() override { return Interface::IID; }

protected:
    /// No reference yet.
    CountedObject() = default;
    /// Called by the last release().
    virtual ~CountedObject() = default;

private:
    std::uint32_t mReferences = 0;
};

} // namespace tov
