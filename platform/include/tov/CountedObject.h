// Base of components with one interface, for hosts and their streams: counting, lookup and name.
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
    std::uint32_t addRef() override { return rhm::rhmAtomicIncrement(&mReferences); }
    std::uint32_t release() override {
        const std::uint32_t left = rhm::rhmAtomicDecrement(&mReferences);
        if (left == 0) {
            delete this;
        }
        return left;
    }
    const char* getInterfaceName() override { return Interface::IID; }

protected:
    CountedObject() = default;
    virtual ~CountedObject() = default;

private:
    std::uint32_t mReferences = 0;
};

} // namespace tov
