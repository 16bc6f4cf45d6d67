// The parts of Exiv2 that belong to the whole process: its log and its XMP toolkit.
#include "zqx/pictures/metadata/exiv2/Exiv2Library.h"

#include <mutex>

#include "zqx/text/Cleaning.h"

namespace zqx::pictures {

namespace {

thread_local std::string tComplaints;

/// Of all that Exiv2 says only this is about something lost: the rest are remarks on tags of makers.
void noteComplaint(int, const char* message) {
    const std::string_view text(message);
    if (text.starts_with("Failed to decode ") && text.find(" metadata") != std::string_view::npos) {
        tComplaints += text;
    }
}

void lockXmp(void* lock, bool locking) {
    auto& mutex = *static_cast<std::recursive_mutex*>(lock);
    if (locking) {
        mutex.lock();
    } else {
        mutex.unlock();
    }
}

} // namespace

void prepareExiv2() {
    static std::recursive_mutex xmpMutex;
    static const bool ready = [] {
        Exiv2::LogMsg::setLevel(Exiv2::LogMsg::warn);
        Exiv2::LogMsg::setHandler(noteComplaint);
        return Exiv2::XmpParser::initialize(lockXmp, &xmpMutex);
    }();
    (void)ready; // without its XMP toolkit Exiv2 complains of every packet
}

void forgetComplaints() {
    tComplaints.clear();
}

bool hasComplaint(std::string_view kind) {
    return tComplaints.find("decode " + std::string(kind) + " ") != std::string::npos;
}

std::string getMessage(const std::exception& failure) {
    return text::inOneLine(failure.what());
}

long long getNumber(const Exiv2::Exifdatum& tag) {
    if (tag.count() == 0) {
        return 0;
    }
#if EXIV2_TEST_VERSION(0, 28, 0)
    return tag.toInt64();
#else
    return tag.toLong();
#endif
}

std::vector<unsigned char> getBytes(const Exiv2::DataBuf& buffer) {
#if EXIV2_TEST_VERSION(0, 28, 0)
    return {buffer.c_data(), buffer.c_data() + buffer.size()};
#else
    return {buffer.pData_, buffer.pData_ + buffer.size_};
#endif
}

std::vector<unsigned char> getProfile(Exiv2::Image& image) {
    if (!image.iccProfileDefined()) {
        return {};
    }
#if EXIV2_TEST_VERSION(0, 28, 0)
    return getBytes(image.iccProfile());
#else
    return getBytes(*image.iccProfile());
#endif
}

ExifBlock decodeExif(const std::vector<unsigned char>& block) {
    ExifBlock result;
    if (!block.empty()) {
        result.byteOrder =
            Exiv2::ExifParser::decode(result.tags, block.data(), static_cast<std::uint32_t>(block.size()));
    }
    return result;
}

std::vector<unsigned char> encodeExif(const Exiv2::ExifData& tags, Exiv2::ByteOrder byteOrder) {
    std::vector<unsigned char> block;
    if (!tags.empty()) {
        Exiv2::ExifParser::encode(block, byteOrder == Exiv2::invalidByteOrder ? Exiv2::littleEndian : byteOrder, tags);
    }
    return block;
}

} // namespace zqx::pictures
