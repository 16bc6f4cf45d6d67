// The interface and identifiers of the sample module.
#pragma once

#include <tov/IUnknown.h>

/// Says a number, as greetings go.
class IGreeter : public tov::IUnknown {
public:
    static constexpr const char* IID = "IDL:test/IGreeter:1.0";

    virtual tov::Result greet(int* pNumber) = 0;

protected:
    ~IGreeter() = default;
};

inline constexpr const char* GREETER_CLASS = "0d0c6c0a-3f0a-4a53-9e1b-1f4f3a1f0001";
