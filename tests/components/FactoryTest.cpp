// The module's entry points, its factories, and the life of a component from its first reference to its last.
#include <memory>
#include <thread>
#include <typeinfo>
#include <vector>

#include <zqx/img/FreeImage.h>
#include <zqx/img/ImageProcessingPipeline.h>

#include "components/support/Bitmaps.h"
#include "components/support/ComponentTest.h"
#include "components/support/Components.h"
#include "components/support/Interposed.h"
#include "components/support/LeakScope.h"

namespace {

using namespace test;

constexpr const char* UNKNOWN_IID = "IDL:none:1.0";

/// Anything but null, to see that a pointer is written.
void* const UNTOUCHED = reinterpret_cast<void*>(0x1234);

class FactoryTest : public ComponentTest {};

/// The same for both classes.
class FactoryOfEachClassTest : public ComponentTest, public testing::WithParamInterface<const char*> {
protected:
    const char* iid() const {
        return std::string(GetParam()) == BITMAP_CLASS ? IFreeImage::IID : IImageProcessingPipeline::IID;
    }
};

INSTANTIATE_TEST_SUITE_P(Classes, FactoryOfEachClassTest, testing::Values(BITMAP_CLASS, PIPELINE_CLASS),
                         [](const auto& tested) {
                             return std::string(tested.param) == BITMAP_CLASS ? "Bitmap" : "Pipeline";
                         });

} // namespace

TEST_F(FactoryTest, UnknownClassIsNotAvailable) {
    void* factory = UNTOUCHED;
    EXPECT_EQ(dsoGetObjectFactory("00000000-0000-0000-0000-000000000000", tov::IObjectFactory::IID, &factory),
              0x96240012U);
    EXPECT_EQ(factory, nullptr);
}

TEST_F(FactoryTest, UnknownClassWithUnknownInterfaceIsStillTheClassThatIsMissing) {
    void* factory = UNTOUCHED;
    EXPECT_EQ(dsoGetObjectFactory("none", UNKNOWN_IID, &factory), 0x96240012U);
    EXPECT_EQ(factory, nullptr);
}

TEST_P(FactoryOfEachClassTest, CallerHoldsTheOnlyReferenceOnAFactory) {
    void* found = nullptr;
    ASSERT_EQ(dsoGetObjectFactory(GetParam(), "IDL:tov/IObjectFactory:1.0", &found), 0U);
    auto* factory = static_cast<tov::IObjectFactory*>(found);
    EXPECT_EQ(factory->addRef(), 2U);
    EXPECT_EQ(factory->release(), 1U);
    EXPECT_EQ(factory->release(), 0U);
}

TEST_P(FactoryOfEachClassTest, FactoryIsAlsoHandedOutAsUnknown) {
    void* found = nullptr;
    ASSERT_EQ(dsoGetObjectFactory(GetParam(), "IDL:tov/IUnknown:1.0", &found), 0U);
    const auto unknown = tov::TovRef<tov::IUnknown>::adopt(static_cast<tov::IUnknown*>(found));
    EXPECT_STREQ(unknown->getInterfaceName(), "IDL:tov/IObjectFactory:1.0");
    EXPECT_EQ(getReferences(*unknown), 1U);
}

TEST_P(FactoryOfEachClassTest, FactoryWithUnknownInterfaceIsRefusedAndDestroyed) {
    void* factory = UNTOUCHED;
    EXPECT_EQ(dsoGetObjectFactory(GetParam(), UNKNOWN_IID, &factory), 0x80004002U);
    EXPECT_EQ(factory, nullptr);
}

TEST_P(FactoryOfEachClassTest, ComponentInterfaceIsNotOneOfTheFactory) {
    void* factory = UNTOUCHED;
    EXPECT_EQ(dsoGetObjectFactory(GetParam(), iid(), &factory), 0x80004002U);
    EXPECT_EQ(factory, nullptr);
}

TEST_P(FactoryOfEachClassTest, EveryCallMakesAFactoryOfItsOwn) {
    const Factory first = getFactory(GetParam());
    const Factory second = getFactory(GetParam());
    EXPECT_NE(first.get(), second.get());
}

TEST_P(FactoryOfEachClassTest, FactoryAnswersForTwoInterfacesWithAReferenceEach) {
    const Factory factory = getFactory(GetParam());
    for (const char* iid : {"IDL:tov/IUnknown:1.0", "IDL:tov/IObjectFactory:1.0"}) {
        tov::IUnknown* found = nullptr;
        EXPECT_EQ(factory->queryInterface(iid, &found), 0U);
        EXPECT_EQ(found, factory.get());
        EXPECT_EQ(factory->release(), 1U);
    }
}

TEST_P(FactoryOfEachClassTest, FactoryRefusesOtherInterfacesWithANullPointer) {
    const Factory factory = getFactory(GetParam());
    auto* found = static_cast<tov::IUnknown*>(factory.get());
    EXPECT_EQ(factory->queryInterface(UNKNOWN_IID, &found), 0x80004002U);
    EXPECT_EQ(found, nullptr);
    EXPECT_EQ(getReferences(*factory), 1U);
}

TEST_P(FactoryOfEachClassTest, FactoryNamesItsOwnInterface) {
    EXPECT_STREQ(getFactory(GetParam())->getInterfaceName(), "IDL:tov/IObjectFactory:1.0");
}

TEST_P(FactoryOfEachClassTest, LockServerAcceptsAnythingWithoutEffect) {
    const Factory factory = getFactory(GetParam());
    EXPECT_EQ(factory->lockServer(1), 0U);
    EXPECT_EQ(factory->lockServer(0), 0U);
    EXPECT_EQ(getReferences(*factory), 1U);
}

TEST_P(FactoryOfEachClassTest, OuterObjectIsRefusedAsAggregation) {
    const Factory factory = getFactory(GetParam());
    void* component = UNTOUCHED;
    EXPECT_EQ(factory->createInstance(factory.get(), iid(), &component), 0x96240010U);
    EXPECT_EQ(component, nullptr);
}

TEST_P(FactoryOfEachClassTest, CreatedComponentHasOneReference) {
    const Factory factory = getFactory(GetParam());
    void* component = nullptr;
    ASSERT_EQ(factory->createInstance(nullptr, iid(), &component), 0U);
    auto* unknown = static_cast<tov::IUnknown*>(component);
    EXPECT_STREQ(unknown->getInterfaceName(), iid());
    EXPECT_EQ(unknown->addRef(), 2U);
    EXPECT_EQ(unknown->addRef(), 3U);
    EXPECT_EQ(unknown->release(), 2U);
    EXPECT_EQ(unknown->release(), 1U);
    EXPECT_EQ(unknown->release(), 0U);
}

TEST_P(FactoryOfEachClassTest, ComponentIsCreatedAsUnknownToo) {
    const Factory factory = getFactory(GetParam());
    void* component = nullptr;
    ASSERT_EQ(factory->createInstance(nullptr, tov::IUnknown::IID, &component), 0U);
    EXPECT_EQ(static_cast<tov::IUnknown*>(component)->release(), 0U);
}

TEST_P(FactoryOfEachClassTest, CreatingForAnUnknownInterfaceLeavesTheObjectBehind) {
    const Factory factory = getFactory(GetParam());
    const LeakScope leftBehind;
    void* component = UNTOUCHED;
    EXPECT_EQ(factory->createInstance(nullptr, UNKNOWN_IID, &component), 0x80004002U);
    EXPECT_EQ(component, nullptr);
}

TEST_P(FactoryOfEachClassTest, ComponentOutlivesItsFactory) {
    void* component = nullptr;
    ASSERT_EQ(getFactory(GetParam())->createInstance(nullptr, iid(), &component), 0U);
    EXPECT_EQ(static_cast<tov::IUnknown*>(component)->release(), 0U);
}

TEST_P(FactoryOfEachClassTest, ComponentAnswersForUnknownAndItsOwnInterface) {
    const auto component = module().create<tov::IUnknown>(GetParam());
    for (const char* name : {"IDL:tov/IUnknown:1.0", iid()}) {
        tov::IUnknown* found = nullptr;
        EXPECT_EQ(component->queryInterface(name, &found), 0U);
        EXPECT_EQ(found, component.get());
        EXPECT_EQ(getReferences(*component), 2U);
        EXPECT_EQ(found->release(), 1U);
    }
}

TEST_P(FactoryOfEachClassTest, ComponentRefusesOtherInterfacesWithANullPointer) {
    const auto component = module().create<tov::IUnknown>(GetParam());
    for (const char* name : {UNKNOWN_IID, "IDL:tov/IObjectFactory:1.0", "idl:tov/iunknown:1.0", ""}) {
        tov::IUnknown* found = component.get();
        EXPECT_EQ(component->queryInterface(name, &found), 0x80004002U) << name;
        EXPECT_EQ(found, nullptr) << name;
    }
    EXPECT_EQ(getReferences(*component), 1U);
}

TEST_P(FactoryOfEachClassTest, ComponentLogsANullInterfacePointer) {
    const auto component = module().create<tov::IUnknown>(GetParam());
    EXPECT_EQ(component->queryInterface(tov::IUnknown::IID, nullptr), 0x80070057U);
    EXPECT_EQ(logTexts(), Texts{"pIfc"});
    EXPECT_EQ(getReferences(*component), 1U);
}

TEST_F(FactoryTest, PipelineFactoryLogsANullInterfacePointer) {
    const Factory factory = getFactory(PIPELINE_CLASS);
    EXPECT_EQ(factory->queryInterface(tov::IUnknown::IID, nullptr), 0x80070057U);
    EXPECT_EQ(logTexts(), Texts{"pIfc"});
}

TEST_F(FactoryTest, BitmapFactoryIsNotMadeOfTheAdapter) {
    using Adapter = zqx::TovInterfaceAdapter<tov::IObjectFactory_Adapter>;
    EXPECT_EQ(dynamic_cast<Adapter*>(getFactory(BITMAP_CLASS).get()), nullptr);
    EXPECT_NE(dynamic_cast<Adapter*>(getFactory(PIPELINE_CLASS).get()), nullptr);
    const Factory factory = getFactory(BITMAP_CLASS);
    const tov::IObjectFactory& made = *factory;
    EXPECT_NE(std::string(typeid(made).name()).find("FreeImageFactory"), std::string::npos);
}

TEST(FactoryDeathTest, BitmapFactoryDoesNotCheckWhereTheInterfaceGoes) {
    const Factory factory = getFactory(BITMAP_CLASS);
    EXPECT_DEATH(factory->queryInterface(tov::IUnknown::IID, nullptr), "");
    EXPECT_DEATH(factory->queryInterface(UNKNOWN_IID, nullptr), "");
}

TEST_P(FactoryOfEachClassTest, CreatingChecksThePointerFirst) {
    const Factory factory = getFactory(GetParam());
    EXPECT_EQ(factory->createInstance(factory.get(), iid(), nullptr), 0x80070057U);
    EXPECT_EQ(logTexts(), Texts{"pOut"});
}

TEST_P(FactoryOfEachClassTest, PlainSlotsKnowNoInterfaceAndShareTheCount) {
    const auto component = module().create<tov::IUnknown>(GetParam());
    void* found = UNTOUCHED;
    EXPECT_EQ(component->plainQueryInterface(tov::IUnknown::IID, &found), 0x80004002U);
    EXPECT_EQ(found, nullptr);
    EXPECT_EQ(component->plainAddRef(), 2U);
    EXPECT_EQ(component->addRef(), 3U);
    EXPECT_EQ(component->plainRelease(), 2U);
    EXPECT_EQ(component->release(), 1U);
}

TEST_P(FactoryOfEachClassTest, ReferencesAreCountedExactlyOnManyThreads) {
    const auto component = module().create<tov::IUnknown>(GetParam());
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i) {
        threads.emplace_back([&component] {
            for (int k = 0; k < 20000; ++k) {
                component->addRef();
                component->release();
            }
            component->addRef();
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(component->release(), 4U);
    EXPECT_EQ(component->release(), 3U);
    EXPECT_EQ(component->release(), 2U);
    EXPECT_EQ(component->release(), 1U);
}

TEST_F(FactoryTest, ClassIdentifiersIgnoreCaseOnlyAsTheRuntimesComparisonDoes) {
    void* found = nullptr;
    ASSERT_EQ(dsoGetObjectFactory("F92BD073-5780-4BCF-843C-F375C20B9455", tov::IObjectFactory::IID, &found), 0U);
    static_cast<tov::IObjectFactory*>(found)->release();
}

TEST_F(FactoryTest, NewBitmapIsEmpty) {
    int width = -1;
    EXPECT_EQ(newBitmap()->getWidth(&width), 0x80000100U);
    EXPECT_EQ(width, -1);
}

TEST_F(FactoryTest, NewPipelineHasAllStagesActive) {
    int stages = 0;
    EXPECT_EQ(newPipeline()->getActiveStages(&stages), 0U);
    EXPECT_EQ(stages, 65535);
}

TEST_F(FactoryTest, SuccessfulLookupsLogNothing) {
    const Bitmap bitmap = newBitmap();
    tov::IUnknown* found = nullptr;
    bitmap->queryInterface(tov::IUnknown::IID, &found);
    found->release();
    EXPECT_TRUE(records().empty());
}

TEST_F(FactoryTest, LastReleaseWithoutDeletingLeavesTheObject) {
    auto* pipeline = zqx::img::ImageProcessingPipeline::create();
    EXPECT_EQ(pipeline->addRef(), 1U);
    EXPECT_EQ(pipeline->releaseNoDelete(), 0U);
    int stages = 0;
    EXPECT_EQ(pipeline->getActiveStages(&stages), 0U);
    pipeline->addRef();
    EXPECT_EQ(pipeline->release(), 0U);
}

TEST_F(FactoryTest, ClassNameIsACopyOfTheRunTimeTypesName) {
    const tov::TovRef bitmap(zqx::img::FreeImage::create());
    char* first = nullptr;
    char* second = nullptr;
    EXPECT_EQ(bitmap->getClassName(&first), 0U);
    EXPECT_EQ(bitmap->getClassName(&second), 0U);
    EXPECT_STREQ(first, typeid(zqx::img::FreeImage).name());
    EXPECT_NE(first, second);
    tov::tovFree(first);
    tov::tovFree(second);
}

TEST_F(FactoryTest, ClassNameLogsANullPointer) {
    const tov::TovRef pipeline(zqx::img::ImageProcessingPipeline::create());
    EXPECT_EQ(pipeline->getClassName(nullptr), 0x80070057U);
    EXPECT_EQ(logTexts(), Texts{"pName"});
}

TEST_F(FactoryTest, CopiedPipelineCopiesTheReferenceCount) {
    using zqx::img::ImageProcessingPipeline;
    const tov::TovRef original(ImageProcessingPipeline::create());
    original->addRef();
    const auto copy = std::make_unique<ImageProcessingPipeline>(*original);
    EXPECT_EQ(getReferences(*copy), 2U);
    const auto assigned = std::make_unique<ImageProcessingPipeline>(0);
    *assigned = *copy;
    EXPECT_EQ(getReferences(*assigned), 2U);
    EXPECT_EQ(original->release(), 1U);
}

TEST_F(FactoryTest, CopiedBitmapSharesThePixelsAndCopiesTheCount) {
    using zqx::img::FreeImage;
    const tov::TovRef original(FreeImage::create());
    original->allocate(1, 2, 2, 24);
    const auto copy = std::make_unique<FreeImage>(*original);
    EXPECT_EQ(copy->getBitmap(), original->getBitmap());
    EXPECT_EQ(getReferences(*copy), 1U);
    *copy = FreeImage(); // or both would free the bitmap
    EXPECT_EQ(copy->getBitmap(), nullptr);
}

TEST_F(FactoryTest, BitmapMadeFromALibraryBitmapOwnsIt) {
    const tov::TovRef bitmap(new zqx::img::FreeImage(FreeImage_Allocate(3, 2, 24)));
    EXPECT_EQ(bitmap->getWidth(), 3U);
    EXPECT_EQ(bitmap->getHeight(), 2U);
    EXPECT_EQ(bitmap->getBitsPerPixel(), 24U);
    EXPECT_EQ(getReferences(*bitmap), 1U);
}

TEST_F(FactoryTest, LoaderFindsBothClassesRegisteredUnderTheModule) {
    ASSERT_TRUE(module().isLoaded());
    EXPECT_EQ(tov::tovFindDSO(BITMAP_CLASS), module().number());
    EXPECT_EQ(tov::tovFindDSO(PIPELINE_CLASS), module().number());
}

#if defined(ZQX_CAN_INTERPOSE)

TEST_F(FactoryTest, RegistrationPassesItsArgumentsForBothClassesInOrder) {
    RegistrySpy spy({0, 0});
    EXPECT_EQ(dsoRegisterServer(7, 9), 0U);
    EXPECT_EQ(spy.calls(), (std::vector<Registration>{{true, BITMAP_CLASS, 7, 9}, {true, PIPELINE_CLASS, 7, 9}}));
}

TEST_F(FactoryTest, RegistrationStopsAtTheFirstFailure) {
    RegistrySpy spy({0x80004005, 0});
    EXPECT_EQ(dsoRegisterServer(7, 9), 0x80004005U);
    EXPECT_EQ(spy.calls().size(), 1U);
}

TEST_F(FactoryTest, RegistrationGivesTheSecondClassesFailure) {
    RegistrySpy spy({0, 0x80070057});
    EXPECT_EQ(dsoRegisterServer(1, 0), 0x80070057U);
}

TEST_F(FactoryTest, RegistrationRemarksCountAsSuccess) {
    RegistrySpy spy({1, 2});
    EXPECT_EQ(dsoRegisterServer(1, 0), 0U);
    EXPECT_EQ(spy.calls().size(), 2U);
}

TEST_F(FactoryTest, UnregistrationAlwaysTriesBothClassesInOrder) {
    RegistrySpy spy({0x80004005, 0});
    EXPECT_EQ(dsoUnregisterServer(3, 4), 0x80004005U);
    EXPECT_EQ(spy.calls(), (std::vector<Registration>{{false, BITMAP_CLASS, 3, 4}, {false, PIPELINE_CLASS, 3, 4}}));
}

TEST_F(FactoryTest, UnregistrationGivesTheFirstFailure) {
    RegistrySpy spy({0x80004005, 0x80070057});
    EXPECT_EQ(dsoUnregisterServer(3, 4), 0x80004005U);
    RegistrySpy second({1, 0x80070057});
    EXPECT_EQ(dsoUnregisterServer(3, 4), 0x80070057U);
}

TEST_F(FactoryTest, UnregistrationRemarksCountAsSuccess) {
    RegistrySpy spy({1, 2});
    EXPECT_EQ(dsoUnregisterServer(3, 4), 0U);
}

#endif
