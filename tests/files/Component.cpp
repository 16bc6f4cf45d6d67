#include "Component.h"

#include <stdexcept>

#include <tov/Module.h>

namespace zqx::img::test {

Component makeComponent() {
    static std::string error;
    static const tov::Module module = tov::Module::load(ZQX_MODULE, &error);
    Component component = module.create<IFreeImage>("f92bd073-5780-4bcf-843c-f375c20b9455");
    if (!component) {
        throw std::runtime_error("no bitmap component: " + error);
    }
    return component;
}

} // namespace zqx::img::test
