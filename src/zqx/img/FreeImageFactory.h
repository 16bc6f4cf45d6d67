// The factory of bitmap components.
#pragma once

#include <cstdint>

#include <tov/IObjectFactory.h>

namespace zqx::img {

/// Makes bitmap components. Unlike TovObjectFactory it has no slot that makes an object without references, and it
/// takes its callers to know what they pass: hosts rely on both.
class FreeImageFactory : public tov::IObjectFactory_Adapter {
public:
    /// Answers for tov::IUnknown and tov::IObjectFactory with a new reference. The out-pointer is not checked.
    /// @return tov::NO_INTERFACE, with a null pointer, for other identifiers
    tov::Result queryInterface(const char* iid, tov::IUnknown** pIfc) override;
    /// @return the new count
    std::uint32_t addRef() override;
    /// Destroys the factory with its last reference. @return the new count
    std::uint32_t release() override;
    const char* getInterfaceName() override;

    /// As TovObjectFactory does.
    tov::Result createInstance(tov::IUnknown* outer, const char* iid, void** pOut) override;
    /// Accepted without effect.
    tov::Result lockServer(int lock) override;

    virtual ~FreeImageFactory() = default;

private:
    std::uint32_t mRefCount = 0;
};

} // namespace zqx::img
