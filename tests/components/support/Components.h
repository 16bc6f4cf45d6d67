// How tests get at the components: as a host does through the runtime's loader, or straight from the entry points.
#pragma once

#include <cstdint>
#include <string>

#include <gtest/gtest.h>

#include <tov/IObjectFactory.h>
#include <tov/Module.h>
#include <tov/TovRef.h>
#include <zqx/img/IImageProcessingPipeline.h>
#include <zqx/qfreeimage/IFreeImage.h>

extern "C" {
std::uint32_t dsoGetObjectFactory(const char* clsid, const char* iid, void** pOut);
std::uint32_t dsoRegisterServer(unsigned int a, unsigned int b);
std::uint32_t dsoUnregisterServer(unsigned int a, unsigned int b);
}

namespace test {

using zqx::img::IImageProcessingPipeline;
using zqx::qfreeimage::IFreeImage;
using Bitmap = tov::TovRef<IFreeImage>;
using Pipeline = tov::TovRef<IImageProcessingPipeline>;
using Factory = tov::TovRef<tov::IObjectFactory>;

inline constexpr const char* BITMAP_CLASS = "f92bd073-5780-4bcf-843c-f375c20b9455";
inline constexpr const char* PIPELINE_CLASS = "5388994d-6d2a-486f-a4cc-161e246cc725";

/// The module as the runtime's loader has loaded it.
inline const tov::Module& module() {
    static const tov::Module loaded = tov::Module::load(ZQX_MODULE);
    return loaded;
}

inline Bitmap newBitmap() {
    return module().create<IFreeImage>(BITMAP_CLASS);
}

inline Pipeline newPipeline() {
    return module().create<IImageProcessingPipeline>(PIPELINE_CLASS);
}

inline Factory getFactory(const char* clsid) {
    void* found = nullptr;
    EXPECT_EQ(dsoGetObjectFactory(clsid, tov::IObjectFactory::IID, &found), tov::SUCCESS);
    return Factory::adopt(static_cast<tov::IObjectFactory*>(found));
}

/// The present reference count.
template <typename Component>
std::uint32_t getReferences(Component& component) {
    component.addRef();
    return component.release();
}

} // namespace test
