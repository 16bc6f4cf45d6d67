// The smart reference: who owns what after each operation.
#include <tov/TovRef.h>

#include <utility>

#include <gtest/gtest.h>

#include "Components.h"

using tov::TovRef;

namespace {

/// The count, by taking and giving back.
std::uint32_t getCount(Thing* thing) {
    thing->addRef();
    return thing->release();
}

} // namespace

TEST(TovRef, StartsEmpty) {
    const TovRef<Thing> ref;
    EXPECT_FALSE(ref);
    EXPECT_EQ(ref.get(), nullptr);
}

TEST(TovRef, TakesAReferenceAndGivesItBack) {
    {
        const TovRef ref(new Thing);
        EXPECT_TRUE(ref);
        EXPECT_EQ(getCount(ref.get()), 1U);
        EXPECT_EQ(Thing::alive, 1);
    }
    EXPECT_EQ(Thing::alive, 0);
}

TEST(TovRef, OfNullIsEmpty) {
    EXPECT_FALSE(TovRef<Thing>(nullptr));
    EXPECT_FALSE(TovRef<Thing>::adopt(nullptr));
}

TEST(TovRef, AdoptTakesOver) {
    auto* thing = new Thing;
    thing->addRef();
    const auto ref = TovRef<Thing>::adopt(thing);
    EXPECT_EQ(getCount(thing), 1U);
}

TEST(TovRef, CopiesShare) {
    const TovRef first(new Thing);
    TovRef<Thing> second = first;
    EXPECT_EQ(getCount(first.get()), 2U);
    second = first;
    EXPECT_EQ(getCount(first.get()), 2U);
    second.reset();
    EXPECT_EQ(getCount(first.get()), 1U);
}

TEST(TovRef, SelfAssignmentChangesNothing) {
    TovRef ref(new Thing);
    const TovRef<Thing>& same = ref;
    ref = same;
    EXPECT_EQ(getCount(ref.get()), 1U);
}

TEST(TovRef, MovingEmptiesTheSource) {
    TovRef first(new Thing);
    TovRef<Thing> second = std::move(first);
    EXPECT_FALSE(first); // NOLINT(bugprone-use-after-move): that is the point
    EXPECT_EQ(getCount(second.get()), 1U);
    first = std::move(second);
    EXPECT_EQ(getCount(first.get()), 1U);
}

TEST(TovRef, DetachHandsTheReferenceOut) {
    TovRef ref(new Thing);
    Thing* thing = ref.detach();
    EXPECT_FALSE(ref);
    EXPECT_EQ(Thing::alive, 1);
    EXPECT_EQ(thing->release(), 0U);
    EXPECT_EQ(Thing::alive, 0);
}

TEST(TovRef, ReceiveReleasesWhatWasHeld) {
    TovRef ref(new Thing);
    Thing** place = ref.receive();
    EXPECT_EQ(Thing::alive, 0);
    EXPECT_EQ(*place, nullptr);
    *place = new Thing;
    (*place)->addRef();
    EXPECT_EQ(getCount(ref.get()), 1U);
}

TEST(TovRef, ReachesTheObject) {
    const TovRef ref(new Thing);
    EXPECT_STREQ(ref->getInterfaceName(), IThing::IID);
    EXPECT_EQ(&*ref, ref.get());
}
