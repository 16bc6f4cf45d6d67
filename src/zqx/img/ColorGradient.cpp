#include <zqx/img/ColorGradient.h>

namespace zqx::img {

namespace {

constexpr Color BLACK{0.0F, 0.0F, 0.0F, 1.0F};
constexpr Color WHITE{1.0F, 1.0F, 1.0F, 1.0F};
constexpr int LAST_INDEX = 255;

Color blend(const Color& from, const Color& to, float t) {
    const auto mix = [t](float a, float b) { return a * (1.0F - t) + b * t; };
    return {mix(from.r, to.r), mix(from.g, to.g), mix(from.b, to.b), mix(from.a, to.a)};
}

} // namespace

ColorGradient::ColorGradient() : ColorGradient(std::vector<Color>()) {
}

ColorGradient::ColorGradient(const Color& first, const Color& second)
    : ColorGradient(std::vector<Color>{first, second}) {
}

ColorGradient::ColorGradient(const std::vector<Color>& colors) : mColors(colors) {
    if (mColors.empty()) {
        mColors.push_back(BLACK);
    }
    if (mColors.size() == 1) {
        mColors.push_back(WHITE);
    }
    updateLUT();
}

int ColorGradient::compare(const ColorGradient& other) const {
    if (mColors.size() != other.mColors.size()) {
        return mColors.size() < other.mColors.size() ? -1 : 1;
    }
    for (std::size_t i = 0; i < mColors.size(); ++i) {
        if (const int order = mColors[i].compare(other.mColors[i]); order != 0) {
            return order;
        }
    }
    return 0;
}

void ColorGradient::updateLUT() {
    const float inverse = 1.0F / static_cast<float>(mColors.size() - 1);
    const auto boundary = [inverse](std::size_t stop) {
        return static_cast<int>(inverse * static_cast<float>(stop) * 255.0F);
    };
    std::size_t stop = 1; // the one that the present segment ends at
    int start = 0;
    int end = boundary(stop);
    for (int i = 0; i <= LAST_INDEX; ++i) {
        const float t = static_cast<float>(i - start) / static_cast<float>(end - start);
        mLUT[i] = blend(mColors[stop - 1], mColors[stop], t);
        if (i == end && i != LAST_INDEX) {
            if (stop + 1 == mColors.size()) {
                // The last boundary rounded down to 254: the entry behind it takes the last stop too.
                mLUT[LAST_INDEX] = mColors.back();
                break;
            }
            ++stop;
            start = end;
            end = boundary(stop);
        }
    }
}

} // namespace zqx::img
