// Writing metadata with Exiv2, in memory: only what is complete goes to the file.
#include "zqx/pictures/metadata/exiv2/MetadataWriter.h"

#include <cstdint>
#include <exception>
#include <limits>
#include <memory>
#include <vector>

#include "zqx/pictures/files/Error.h"
#include "zqx/pictures/metadata/exiv2/ExifTags.h"
#include "zqx/pictures/metadata/exiv2/Exiv2Library.h"

namespace zqx::pictures {

namespace {

struct Kind {
    Exiv2::MetadataId id;
    const char* name;
};
using Kinds = std::vector<Kind>;

std::string getNames(const Kinds& kinds) {
    std::string names;
    for (const Kind& kind : kinds) {
        names += (names.empty() ? "" : ", ") + std::string(kind.name);
    }
    return names;
}

std::string areLeftOut(const Kinds& kinds) {
    return kinds.size() == 1 ? "is left out" : "are left out";
}

using ImageType = decltype(Exiv2::ImageFactory::getType(nullptr, Exiv2Size()));
using ImagePointer = std::unique_ptr<Exiv2::Image>; // which it is not in all versions of Exiv2

const Exiv2::byte* getData(std::string_view encoded) {
    return reinterpret_cast<const Exiv2::byte*>(encoded.data());
}

/// An encoded picture and what is to be put into it.
class Work {
public:
    Work(const std::string& name, std::string_view encoded, const Metadata& metadata, unsigned width, unsigned height)
        : mName(name), mEncoded(encoded), mMetadata(metadata), mExif(decodeExif(metadata.exif)) {
        if (encoded.size() <= static_cast<std::size_t>(std::numeric_limits<Exiv2Size>::max())) {
            mType = Exiv2::ImageFactory::getType(getData(encoded), static_cast<Exiv2Size>(encoded.size()));
        }
        setSize(mExif.tags, width, height);
    }

    /// The kinds that there are and that the format holds. Warns of the others.
    Kinds choose() const {
        Kinds chosen;
        Kinds lost;
        for (const Kind& kind : present()) {
            if (canHold(kind)) {
                chosen.push_back(kind);
            } else if (kind.id != Exiv2::mdExif || tellSomething(mExif.tags)) {
                lost.push_back(kind);
            }
        }
        if (!lost.empty()) {
            warn(mName, "this format cannot hold " + getNames(lost) + ", which " + areLeftOut(lost));
        }
        return chosen;
    }

    /// The picture with all of the kinds in it, or where that fails, with those that go in by themselves; empty where
    /// none does. Warns of the others.
    ImagePointer putIn(const Kinds& kinds) const {
        std::string reason;
        if (ImagePointer image = attempt(kinds, reason)) {
            return image;
        }
        Kinds workable;
        for (const Kind& kind : kinds) {
            if (kinds.size() > 1 && attempt({kind}, reason)) {
                workable.push_back(kind);
            } else {
                warnOfFailure({kind}, reason);
            }
        }
        if (workable.empty()) {
            return nullptr;
        }
        ImagePointer image = attempt(workable, reason);
        if (!image) {
            warnOfFailure(workable, reason);
        }
        return image;
    }

private:
    void warnOfFailure(const Kinds& kinds, const std::string& reason) const {
        warn(mName, getNames(kinds) + " cannot be written (" + reason + ") and " + areLeftOut(kinds));
    }

    bool canHold(const Kind& kind) const {
        if (mType == ImageType{}) {
            return false; // nothing that Exiv2 knows
        }
        const Exiv2::AccessMode mode = Exiv2::ImageFactory::checkMode(mType, kind.id);
        return mode == Exiv2::amWrite || mode == Exiv2::amReadWrite;
    }

    Kinds present() const {
        Kinds kinds;
        if (!mExif.tags.empty()) {
            kinds.push_back({Exiv2::mdExif, "Exif"});
        }
        if (!mMetadata.iptc.empty()) {
            kinds.push_back({Exiv2::mdIptc, "IPTC"});
        }
        if (!mMetadata.xmp.empty()) {
            kinds.push_back({Exiv2::mdXmp, "XMP"});
        }
        return kinds;
    }

    void put(Exiv2::Image& image, const Kind& kind) const {
        if (kind.id == Exiv2::mdXmp) {
            image.setXmpPacket(mMetadata.xmp);
            // As it is, but for Photoshop files, where Exiv2 forgets packets and writes properties only.
            image.writeXmpFromPacket(dynamic_cast<Exiv2::PsdImage*>(&image) == nullptr);
        } else if (kind.id == Exiv2::mdIptc) {
            Exiv2::IptcData datasets;
            Exiv2::IptcParser::decode(datasets, mMetadata.iptc.data(),
                                      static_cast<std::uint32_t>(mMetadata.iptc.size()));
            image.setIptcData(datasets);
        } else if (dynamic_cast<Exiv2::TiffImage*>(&image) != nullptr) {
            addToTiff(image.exifData(), mExif.tags);
        } else {
            image.setExifData(mExif.tags);
            image.setByteOrder(mExif.byteOrder);
        }
    }

    /// The picture with the kinds in it; empty, and a reason, where Exiv2 refuses.
    ImagePointer attempt(const Kinds& kinds, std::string& reason) const {
        try {
            ImagePointer image(
                Exiv2::ImageFactory::open(getData(mEncoded), static_cast<Exiv2Size>(mEncoded.size())).release());
            image->readMetadata();
            for (const Kind& kind : kinds) {
                put(*image, kind);
            }
            image->writeMetadata();
            return image;
        } catch (const std::exception& failure) {
            reason = getMessage(failure);
        }
        return nullptr;
    }

    const std::string& mName;
    std::string_view mEncoded;
    const Metadata& mMetadata;
    ExifBlock mExif;
    ImageType mType{};
};

/// The picture with its metadata; empty where it stays as it was.
ImagePointer rewrite(const std::string& name, std::string_view encoded, const Metadata& metadata, unsigned width,
                     unsigned height) {
    prepareExiv2();
    try {
        const Work work(name, encoded, metadata, width, height);
        const Kinds kinds = work.choose();
        return kinds.empty() ? nullptr : work.putIn(kinds);
    } catch (const std::exception& failure) {
        warn(name, "its metadata cannot be written (" + getMessage(failure) + ") and is left out");
    }
    return nullptr;
}

} // namespace

void writeByExiv2(const std::string& name, std::string_view encoded, const Metadata& metadata, unsigned width,
                  unsigned height, const FileConsumer& consumer) {
    const ImagePointer image = rewrite(name, encoded, metadata, width, height);
    if (!image) {
        consumer(encoded);
        return;
    }
    Exiv2::BasicIo& io = image->io();
    io.open();
    consumer({reinterpret_cast<const char*>(io.mmap()), static_cast<std::size_t>(io.size())});
}

} // namespace zqx::pictures
