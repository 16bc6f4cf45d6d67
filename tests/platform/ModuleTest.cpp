// Loading of modules: registration, components, and what is said when it fails.
#include <tov/Module.h>

#include <utility>

#include <gtest/gtest.h>

#include <tov/Runtime.h>

#include "modules/Greeter.h"

using tov::Module;

TEST(Module, LoadedModuleIsRegisteredUnderItsNumber) {
    const Module module = Module::load(ZQX_SAMPLE_MODULE);
    ASSERT_TRUE(module.isLoaded());
    EXPECT_NE(module.number(), 0U);
    EXPECT_EQ(tov::tovFindDSO(GREETER_CLASS), module.number());
}

TEST(Module, DestructionUnregistersTheClasses) {
    { const Module module = Module::load(ZQX_SAMPLE_MODULE); }
    EXPECT_EQ(tov::tovFindDSO(GREETER_CLASS), 0U);
}

TEST(Module, CreatesComponents) {
    const Module module = Module::load(ZQX_SAMPLE_MODULE);
    const tov::TovRef<IGreeter> greeter = module.create<IGreeter>(GREETER_CLASS);
    ASSERT_TRUE(greeter);
    int number = 0;
    EXPECT_EQ(greeter->greet(&number), tov::SUCCESS);
    EXPECT_EQ(number, 42);
    EXPECT_STREQ(greeter->getInterfaceName(), IGreeter::IID);
    EXPECT_EQ(greeter->addRef(), 2U);
    EXPECT_EQ(greeter->release(), 1U);
}

TEST(Module, ComponentsOutliveTheModuleObject) {
    tov::TovRef<IGreeter> greeter;
    {
        const Module module = Module::load(ZQX_SAMPLE_MODULE);
        greeter = module.create<IGreeter>(GREETER_CLASS);
    }
    int number = 0;
    EXPECT_EQ(greeter->greet(&number), tov::SUCCESS);
}

TEST(Module, UnknownClassOrInterfaceGivesTheModulesCodeAndNull) {
    const Module module = Module::load(ZQX_SAMPLE_MODULE);
    void* created = &created;
    EXPECT_EQ(module.createComponent("none", IGreeter::IID, &created), tov::CLASS_NOT_AVAILABLE);
    EXPECT_EQ(created, nullptr);
    EXPECT_EQ(module.createComponent(GREETER_CLASS, "IDL:none:1.0", &created), tov::NO_INTERFACE);
    EXPECT_EQ(created, nullptr);
    EXPECT_FALSE(module.create<IGreeter>("none"));
}

TEST(Module, NullPointersAreInvalidArguments) {
    const Module module = Module::load(ZQX_SAMPLE_MODULE);
    void* created = nullptr;
    EXPECT_EQ(module.createComponent(nullptr, IGreeter::IID, &created), tov::INVALID_ARGUMENT);
    EXPECT_EQ(module.createComponent(GREETER_CLASS, nullptr, &created), tov::INVALID_ARGUMENT);
    EXPECT_EQ(module.createComponent(GREETER_CLASS, IGreeter::IID, nullptr), tov::INVALID_ARGUMENT);
}

TEST(Module, FindsExportedSymbols) {
    const Module module = Module::load(ZQX_SAMPLE_MODULE);
    EXPECT_NE(module.symbol("dsoGetObjectFactory"), nullptr);
    EXPECT_EQ(module.symbol("noSuchFunction"), nullptr);
    EXPECT_EQ(module.symbol(nullptr), nullptr);
}

TEST(Module, MovingKeepsTheRegistrationOnce) {
    Module first = Module::load(ZQX_SAMPLE_MODULE);
    const unsigned int number = first.number();
    Module second = std::move(first);
    EXPECT_FALSE(first.isLoaded()); // NOLINT(bugprone-use-after-move): moved-from modules are empty
    EXPECT_EQ(tov::tovFindDSO(GREETER_CLASS), number);
    second = Module();
    EXPECT_EQ(tov::tovFindDSO(GREETER_CLASS), 0U);
}

TEST(Module, SuccessLeavesNoErrorText) {
    std::string error = "stale";
    const Module module = Module::load(ZQX_SAMPLE_MODULE, &error);
    EXPECT_EQ(error, "");
}

TEST(Module, MissingFileIsNamedInTheError) {
    std::string error;
    const Module module = Module::load("/nowhere/missing-module.so", &error);
    EXPECT_FALSE(module.isLoaded());
    EXPECT_NE(error.find("missing-module.so"), std::string::npos) << error;
    EXPECT_FALSE(Module::load("/nowhere/missing-module.so").isLoaded());
}

TEST(Module, EmptyNameIsNoModule) {
    std::string error;
    EXPECT_FALSE(Module::load("", &error).isLoaded());
    EXPECT_EQ(error, "A module needs a file name");
}

TEST(Module, LibraryWithoutEntryPointsIsRefusedByName) {
    std::string error;
    const Module module = Module::load(ZQX_NO_MODULE, &error);
    EXPECT_FALSE(module.isLoaded());
    EXPECT_EQ(module.number(), 0U);
    EXPECT_EQ(error, std::string(ZQX_NO_MODULE) + ": is not a module, it lacks dsoGetObjectFactory");
}

TEST(Module, SecondLoadOfAHeldModuleFailsAndHarmsNothing) {
    const Module first = Module::load(ZQX_SAMPLE_MODULE);
    std::string error;
    EXPECT_FALSE(Module::load(ZQX_SAMPLE_MODULE, &error).isLoaded());
    EXPECT_NE(error.find("could not be registered"), std::string::npos) << error;
    EXPECT_EQ(tov::tovFindDSO(GREETER_CLASS), first.number());
}

TEST(Module, NoModuleIsNotReady) {
    const Module module;
    void* created = &created;
    EXPECT_EQ(module.createComponent(GREETER_CLASS, IGreeter::IID, &created), tov::NOT_READY);
    EXPECT_EQ(created, nullptr);
    EXPECT_EQ(module.symbol("dsoGetObjectFactory"), nullptr);
    EXPECT_EQ(module.number(), 0U);
}
