#include "FreeImageFactory.h"

#include <qutil/InterfaceAdapter.h>
#include <rhm/Atomic.h>
#include <tov/Runtime.h>
#include <zqx/img/FreeImage.h>

namespace zqx::img {

tov::Result FreeImageFactory::queryInterface(const char* iid, tov::IUnknown** pIfc) {
    if (tov::tovCompareIID(iid, tov::IUnknown::IID) != 0 && tov::tovCompareIID(iid, IID) != 0) {
        *pIfc = nullptr;
        return tov::NO_INTERFACE;
    }
    *pIfc = this;
    addRef();
    return tov::SUCCESS;
}

std::uint32_t FreeImageFactory::addRef() {
    return rhm::rhmAtomicIncrement(&mRefCount);
}

std::uint32_t FreeImageFactory::release() {
    const std::uint32_t count = rhm::rhmAtomicDecrement(&mRefCount);
    if (count == 0) {
        delete this;
    }
    return count;
}

const char* FreeImageFactory::getInterfaceName() {
    return IID;
}

tov::Result FreeImageFactory::createInstance(tov::IUnknown* outer, const char* iid, void** pOut) {
    return detail::createComponent(ZQX_METHOD_SITE("src/zqx/img/FreeImageFactory"), outer, iid, pOut,
                                   FreeImage::create);
}

tov::Result FreeImageFactory::lockServer(int /*lock*/) {
    return tov::SUCCESS;
}

} // namespace zqx::img
