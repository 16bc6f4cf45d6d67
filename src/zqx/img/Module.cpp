// The entry points through which the component runtime reaches the module.
#include <cstdint>

#include <qutil/InterfaceAdapter.h>
#include <tov/Runtime.h>
#include <tov/TovRef.h>
#include <zqx/img/Export.h>
#include <zqx/img/ImageProcessingPipeline.h>

#include "FreeImageFactory.h"

namespace zqx::img {

namespace {

constexpr const char* BITMAP_CLASS = "f92bd073-5780-4bcf-843c-f375c20b9455";
constexpr const char* PIPELINE_CLASS = "5388994d-6d2a-486f-a4cc-161e246cc725";

/// Makes a factory and hands out the wanted interface of it; the reference behind it is the only one.
template <typename Factory>
tov::Result handOutFactory(const char* iid, void** pOut) {
    const tov::TovRef<Factory> factory(new Factory);
    tov::IUnknown* found = nullptr;
    const tov::Result result = factory->queryInterface(iid, &found);
    *pOut = found;
    return result;
}

} // namespace

} // namespace zqx::img

extern "C" {

/// Registers both component classes for the module that the arguments describe to the runtime. Stops at a failure.
ZQX_IMG_API std::uint32_t dsoRegisterServer(unsigned int a, unsigned int b) {
    const tov::Result bitmap = tov::tovRegisterDSO(zqx::img::BITMAP_CLASS, a, b);
    if (tov::failed(bitmap)) {
        return bitmap;
    }
    const tov::Result pipeline = tov::tovRegisterDSO(zqx::img::PIPELINE_CLASS, a, b);
    return tov::failed(pipeline) ? pipeline : tov::SUCCESS;
}

/// Unregisters both component classes, the second one whatever became of the first. @return the first failure
ZQX_IMG_API std::uint32_t dsoUnregisterServer(unsigned int a, unsigned int b) {
    const tov::Result bitmap = tov::tovUnregisterDSO(zqx::img::BITMAP_CLASS, a, b);
    const tov::Result pipeline = tov::tovUnregisterDSO(zqx::img::PIPELINE_CLASS, a, b);
    if (tov::failed(bitmap)) {
        return bitmap;
    }
    return tov::failed(pipeline) ? pipeline : tov::SUCCESS;
}

/// Hands out a new factory of a component class with one reference, owned by the caller.
ZQX_IMG_API std::uint32_t dsoGetObjectFactory(const char* clsid, const char* iid, void** pOut) {
    const zqx::detail::MethodSite site = ZQX_METHOD_SITE("src/zqx/img/Module");
    if (pOut == nullptr) {
        return zqx::detail::nullArgument(site, "pOut");
    }
    *pOut = nullptr;
    return zqx::detail::guarded(site, [&]() -> tov::Result {
        if (tov::tovCompareCLSID(clsid, zqx::img::BITMAP_CLASS) == 0) {
            return zqx::img::handOutFactory<zqx::img::FreeImageFactory>(iid, pOut);
        }
        if (tov::tovCompareCLSID(clsid, zqx::img::PIPELINE_CLASS) == 0) {
            return zqx::img::handOutFactory<zqx::TovObjectFactory<zqx::img::ImageProcessingPipeline>>(iid, pOut);
        }
        return tov::CLASS_NOT_AVAILABLE;
    });
}

} // extern "C"
