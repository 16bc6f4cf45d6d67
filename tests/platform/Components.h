// A small component for tests: counts how many of it are alive.
#pragma once

#include <tov/CountedObject.h>

class IThing : public tov::IUnknown {
public:
    static constexpr const char* IID = "IDL:test/IThing:1.0";

protected:
    ~IThing() = default;
};

class Thing final : public tov::CountedObject<IThing> {
public:
    Thing() { ++alive; }
    ~Thing() override { --alive; }

    static inline int alive = 0;
};
