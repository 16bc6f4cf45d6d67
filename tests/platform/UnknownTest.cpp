// What all components share: order of slots, the older protocol, interface lookup.
#include <tov/IUnknown.h>

#include <cstdint>
#include <cstring>
#include <string>

#include <gtest/gtest.h>

#include <qutil/IIOStream.h>
#include <tov/IObjectFactory.h>
#include <tov/IOutputStream.h>
#include <tov/TovRef.h>

#include "Components.h"

namespace {

std::string name(const char* text) {
    return text;
}

} // namespace

#if defined(__GNUC__) && defined(__x86_64__)
namespace {

/// With this ABI a pointer to a virtual function begins with one more than its offset in the table.
template <typename Method>
std::uintptr_t getSlot(Method method) {
    std::uintptr_t offset = 0;
    std::memcpy(&offset, &method, sizeof offset);
    return (offset - 1) / sizeof(void*);
}

} // namespace

TEST(Unknown, SlotsAreInTheOrderThatModulesRelyOn) {
    using tov::IUnknown;
    EXPECT_EQ(getSlot(&IUnknown::plainQueryInterface), 0U);
    EXPECT_EQ(getSlot(&IUnknown::plainAddRef), 1U);
    EXPECT_EQ(getSlot(&IUnknown::plainRelease), 2U);
    EXPECT_EQ(getSlot(&IUnknown::queryInterface), 3U);
    EXPECT_EQ(getSlot(&IUnknown::addRef), 4U);
    EXPECT_EQ(getSlot(&IUnknown::release), 5U);
    EXPECT_EQ(getSlot(&IUnknown::getInterfaceName), 6U);
    EXPECT_EQ(getSlot(&tov::IObjectFactory::createInstance), 7U);
    EXPECT_EQ(getSlot(&tov::IObjectFactory::lockServer), 8U);
    EXPECT_EQ(getSlot(&tov::IOutputStream::write), 7U);
    EXPECT_EQ(getSlot(&qutil::IIOStream::getSize), 7U);
    EXPECT_EQ(getSlot(&qutil::IIOStream::read), 8U);
}

TEST(Unknown, AdaptersAddNoSlots) {
    EXPECT_EQ(getSlot(&tov::IObjectFactory_Adapter::plainQueryInterface), 0U);
    EXPECT_EQ(getSlot(&tov::IObjectFactory_Adapter::lockServer), 8U);
}
#endif

TEST(Unknown, IdentifiersAreAsPublished) {
    EXPECT_EQ(name(tov::IUnknown::IID), "IDL:tov/IUnknown:1.0");
    EXPECT_EQ(name(tov::IObjectFactory::IID), "IDL:tov/IObjectFactory:1.0");
    EXPECT_EQ(name(tov::IObjectFactory_Adapter::IID), "IDL:tov/IObjectFactory:1.0");
    EXPECT_EQ(name(tov::IOutputStream::IID), "IDL:tov/IOutputStream:1.0");
    EXPECT_EQ(name(qutil::IIOStream::IID), "IDL:qutil/IIOStream:1.0");
}

TEST(Unknown, OlderProtocolKnowsNoIdentifier) {
    const tov::TovRef thing(new Thing);
    void* out = &out;
    EXPECT_EQ(thing->plainQueryInterface(tov::IUnknown::IID, &out), tov::NO_INTERFACE);
    EXPECT_EQ(out, nullptr);
    EXPECT_EQ(thing->plainQueryInterface(nullptr, nullptr), tov::NO_INTERFACE);
}

TEST(Unknown, OlderProtocolSharesTheCount) {
    const tov::TovRef thing(new Thing);
    EXPECT_EQ(thing->plainAddRef(), 2U);
    EXPECT_EQ(thing->addRef(), 3U);
    EXPECT_EQ(thing->plainRelease(), 2U);
    EXPECT_EQ(thing->release(), 1U);
}

TEST(CountedObject, AnswersForItsInterfaceAndTheBase) {
    const tov::TovRef thing(new Thing);
    for (const char* iid : {IThing::IID, tov::IUnknown::IID}) {
        tov::TovRef<tov::IUnknown> found;
        EXPECT_EQ(thing->queryInterface(iid, found.receive()), tov::SUCCESS);
        EXPECT_EQ(found.get(), thing.get());
    }
    EXPECT_EQ(thing->addRef(), 2U);
    EXPECT_EQ(thing->release(), 1U);
}

TEST(CountedObject, RefusesOtherInterfaces) {
    const tov::TovRef thing(new Thing);
    tov::IUnknown* found = thing.get();
    EXPECT_EQ(thing->queryInterface("IDL:other:1.0", &found), tov::NO_INTERFACE);
    EXPECT_EQ(found, nullptr);
    EXPECT_EQ(thing->queryInterface(nullptr, &found), tov::NO_INTERFACE);
    EXPECT_EQ(thing->queryInterface(IThing::IID, nullptr), tov::INVALID_ARGUMENT);
}
