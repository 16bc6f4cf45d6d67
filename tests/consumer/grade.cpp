// Links the classes: brightens two linear pixels by one stop, which doubles them.
#include <cstdio>

#include <zqx/img/ColorGrading.h>

int main() {
    using zqx::img::Image;
    float pixels[] = {0.125F, 0.25F, 0.5F, 0.0F, 0.0625F, 0.375F};
    const float expected[] = {0.25F, 0.5F, 1.0F, 0.0F, 0.125F, 0.75F};
    const Image source(reinterpret_cast<unsigned char*>(pixels), 2, 1, Image::RGB32F, 0);
    zqx::img::ColorGrading grading;
    grading.setExposure(1.0F);
    Image graded(2, 1, Image::RGB32F, 1);
    grading.apply(source, graded);
    const float* values = static_cast<const float*>(graded.getDataPtr());
    for (int i = 0; i < 6; ++i) {
        if (values[i] != expected[i]) {
            std::fprintf(stderr, "value %d is %g, not %g\n", i, static_cast<double>(values[i]),
                         static_cast<double>(expected[i]));
            return 1;
        }
    }
    return 0;
}
