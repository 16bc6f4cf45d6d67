/// @file
/// Adjustments from parameter documents and single settings, checked member by member.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include <zqx/img/ImageProcessingPipeline.h>
#include <zqx/tools/Export.h>

namespace zqx::tools {

/// Parameter documents laid over each other, and settings over them all: what `zqx-img --params A --params B --set C`
/// reads.
///
/// img::ImageProcessingPipeline::loadParams() takes one document and ignores what it does not know. Here several are
/// merged, the parameters of later ones in place of those of earlier ones, and everything that is not as it should be
/// is told: members that are not known, given twice, of the wrong type or out of range. Documents may come from
/// anybody: whatever is in them, the time it takes is proportional to their length, but for a logarithm.
///
/// A value type; one thread at a time.
/// @ingroup tools
class ZQX_TOOLS_EXPORT ParameterDocuments {
public:
    /// What is done about adjustments that are not as they should be.
    enum class Faults {
        WARN,   ///< warn of each (pictures::warn), and ignore it or limit its value
        REFUSE, ///< refuse them all together
    };

    /// The largest document that is read, in bytes. Real ones have about a thousand.
    static constexpr std::size_t LARGEST = std::size_t{16} << 20;

    /// Reads a document, which goes over those added before.
    /// @param name of the file, in UTF-8
    /// @throws pictures::Error when it cannot be read, or is larger than LARGEST
    void addFile(const std::string& name);

    /// The same for a document in memory. @param name to call it by in messages
    /// @param text the document
    void addText(std::string name, std::string text);

    /// Adds a setting, which goes over all documents and earlier settings.
    /// @param setting "name=value" by the names of describeParameters(): "exposure=0.5", "gradient.white=1,0.8,0.6"
    void addSetting(std::string setting);

    /// A new pipeline with these adjustments, and no source image.
    /// @throws pictures::Error for a text that is no parameter document, with the line and column where it is not even
    ///         JSON, and for what is refused; pictures::UsageError for a setting that cannot be understood
    img::ImageProcessingPipeline makePipeline(Faults faults = Faults::WARN) const;

private:
    struct Document {
        std::string name;
        std::string text;
    };

    std::vector<Document> mDocuments;
    std::vector<std::string> mSettings;
};

/// A pipeline with the adjustments of document files and settings: ParameterDocuments in one call.
/// @throws pictures::Error, pictures::UsageError as there
/// @ingroup tools
ZQX_TOOLS_EXPORT img::ImageProcessingPipeline
readParameters(const std::vector<std::string>& documents, const std::vector<std::string>& settings = {},
               ParameterDocuments::Faults faults = ParameterDocuments::Faults::WARN);

} // namespace zqx::tools
