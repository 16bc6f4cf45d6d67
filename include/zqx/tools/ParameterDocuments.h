/// @file
/// Adjustments from parameter documents and single settings, with checks of every member.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include <zqx/img/ImageProcessingPipeline.h>
#include <zqx/tools/Export.h>

namespace zqx::tools {

/// Several parameter documents merged into one, with single settings on top, as for
/// `zqx-img apply --params A --params B --set C`.
///
/// img::ImageProcessingPipeline::loadParams() takes one document and ignores what it does not know. This class merges
/// any number of documents, of which later ones override earlier ones, and reports everything that is not as it should
/// be: members that are unknown, given twice, of the wrong type or out of range. Documents may come from untrusted
/// sources: whatever they contain, reading n bytes takes O(n log n) time.
///
/// A value type; it must not be used by several threads at once.
/// @ingroup tools
class ZQX_TOOLS_EXPORT ParameterDocuments {
public:
    /// How to treat adjustments that are not as they should be.
    enum class Faults {
        WARN,   ///< report each by pictures::warn(), and ignore it or clamp its value
        REFUSE, ///< throw one error that lists them all
    };

    /// The size of the largest document that is read, in bytes. Typical ones have about a thousand.
    static constexpr std::size_t LARGEST = std::size_t{16} << 20;

    /// Reads a document that overrides those added before.
    /// @param name of the file, in UTF-8
    /// @throws pictures::Error if it cannot be read or is larger than LARGEST
    void addFile(const std::string& name);

    /// Adds a document in memory that overrides those added before.
    /// @param name for messages
    /// @param text the document
    void addText(std::string name, std::string text);

    /// Adds a setting that overrides all documents and the settings added before.
    /// @param setting "name=value" with a name of describeParameters(): "exposure=0.5", "gradient.white=1,0.8,0.6"
    void addSetting(std::string setting);

    /// A new pipeline with these adjustments, no source image and no active stages; see setActiveStages().
    /// @throws pictures::Error for text that is not a parameter document, with line and column if it is not valid JSON,
    ///         and for whatever is to be refused; pictures::UsageError for a setting that cannot be understood
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
/// @throws pictures::Error, pictures::UsageError like ParameterDocuments
/// @ingroup tools
ZQX_TOOLS_EXPORT img::ImageProcessingPipeline
readParameters(const std::vector<std::string>& documents, const std::vector<std::string>& settings = {},
               ParameterDocuments::Faults faults = ParameterDocuments::Faults::WARN);

} // namespace zqx::tools
