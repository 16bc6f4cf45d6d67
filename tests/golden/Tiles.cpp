// Tiled filtering with an operation whose results differ from tile to tile, so that every seam shows.
#include <cstring>

#include <zqx/img/TiledFilter.h>

#include "golden/Pictures.h"
#include "golden/Record.h"

namespace golden {

namespace {

using zqx::img::TiledFilter;

/// Halves every float and adds an eighth for each tile before; every byte it adds the number of the tile to.
class Numbering : public TiledFilter {
public:
    Numbering(std::size_t tileSize, std::size_t overlap, std::size_t margin, Image::Format format)
        : TiledFilter(tileSize, overlap, margin), mFormat(format) {}

protected:
    bool filterRegion(const std::map<int, Image>& inputs, Image& output) override {
        const Image& input = inputs.at(0);
        for (std::size_t y = 0; y < output.getHeight(); ++y) {
            for (std::size_t x = 0; x < output.getWidth(); ++x) {
                const auto* from = static_cast<const std::uint8_t*>(input.getPixelPtr(x, y));
                auto* to = static_cast<std::uint8_t*>(output.getPixelPtr(x, y));
                for (int element = 0; element < oracle::facts(mFormat).channels; ++element) {
                    number(from, to, static_cast<std::size_t>(element));
                }
            }
        }
        ++mTile;
        return true;
    }

private:
    void number(const std::uint8_t* from, std::uint8_t* to, std::size_t element) const {
        if (oracle::facts(mFormat).isFloat) {
            float value;
            std::memcpy(&value, from + element * sizeof value, sizeof value);
            value = value * 0.5F + static_cast<float>(mTile) * 0.125F;
            std::memcpy(to + element * sizeof value, &value, sizeof value);
        } else {
            to[element] = static_cast<std::uint8_t>(from[element] + mTile);
        }
    }

    Image::Format mFormat;
    unsigned mTile = 0;
};

struct Cut {
    std::size_t tileSize;
    std::size_t overlap;
    std::size_t margin;
};

constexpr Layout SIZES[] = {{1, 1}, {1, 90}, {70, 1}, {67, 13}, {75, 83}, {40, 40}};

void recordCut(Record& record, Cut cut, Image::Format format) {
    const std::string name = "size=" + std::to_string(cut.tileSize) + ",overlap=" + std::to_string(cut.overlap) +
                             ",margin=" + std::to_string(cut.margin) + "/" + test::getName(format);
    record.keep(name, [&](auto add) {
        for (const Layout& size : SIZES) {
            Picture source({size.width, size.height, 4}, format, Content::SHADED, size.width);
            Picture output({size.width, size.height, 8}, format, Content::SHADED, 1); // shows what is never written
            Numbering filter(cut.tileSize, cut.overlap, cut.margin, format);
            filter.setInput(0, source.image());
            filter.setOutput(output.image());
            filter.execute();
            add(output.bytes(NanBits::CANONICAL));
        }
    });
}

} // namespace

void recordTiles(Record& record) {
    for (const Cut cut : {Cut{32, 8, 2}, Cut{40, 20, 0}, Cut{17, 16, 3}, Cut{32, 8, 6}, Cut{1024, 32, 8}}) {
        recordCut(record, cut, Image::RGB32F);
    }
    for (const Image::Format format : test::ALL_FORMATS) {
        recordCut(record, {32, 0, 8}, format);
    }
}

} // namespace golden
