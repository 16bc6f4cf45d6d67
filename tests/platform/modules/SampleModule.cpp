// A module with one class.
#include <tov/CountedObject.h>
#include <tov/IObjectFactory.h>
#include <tov/Runtime.h>
#include <tov/TovRef.h>

#include "../Exported.h"
#include "Greeter.h"

namespace {

class Greeter final : public tov::CountedObject<IGreeter> {
public:
    tov::Result greet(int* pNumber) override {
        *pNumber = 42;
        return tov::SUCCESS;
    }
};

class GreeterFactory final : public tov::CountedObject<tov::IObjectFactory> {
public:
    tov::Result createInstance(tov::IUnknown* outer, const char* iid, void** pOut) override {
        *pOut = nullptr;
        if (outer != nullptr) {
            return tov::NO_AGGREGATION;
        }
        const tov::TovRef greeter(new Greeter);
        return greeter->queryInterface(iid, reinterpret_cast<tov::IUnknown**>(pOut));
    }
    tov::Result lockServer(int /*lock*/) override { return tov::SUCCESS; }
};

} // namespace

ZQX_TEST_EXPORT std::uint32_t dsoGetObjectFactory(const char* clsid, const char* iid, void** pOut) {
    *pOut = nullptr;
    if (tov::tovCompareCLSID(clsid, GREETER_CLASS) != 0) {
        return tov::CLASS_NOT_AVAILABLE;
    }
    const tov::TovRef factory(new GreeterFactory);
    return factory->queryInterface(iid, reinterpret_cast<tov::IUnknown**>(pOut));
}

ZQX_TEST_EXPORT std::uint32_t dsoRegisterServer(unsigned int module, unsigned int flags) {
    return tov::tovRegisterDSO(GREETER_CLASS, module, flags);
}

ZQX_TEST_EXPORT std::uint32_t dsoUnregisterServer(unsigned int module, unsigned int flags) {
    return tov::tovUnregisterDSO(GREETER_CLASS, module, flags);
}
