// Documents are merged before they are loaded: in a pipeline, a value that a later document sets to its default could
// not be told from one that it omits.
#include <zqx/tools/ParameterDocuments.h>

#include <utility>

#include "zqx/pictures/files/Error.h"
#include "zqx/pictures/files/InputFile.h"
#include "zqx/tools/parameters/ParameterDocument.h"
#include "zqx/tools/parameters/Remarks.h"
#include "zqx/tools/parameters/Setting.h"

namespace zqx::tools {

using namespace pictures;

void ParameterDocuments::addFile(const std::string& name) {
    addText(name, InputFile(name).readText(LARGEST));
}

void ParameterDocuments::addText(std::string name, std::string text) {
    mDocuments.push_back({std::move(name), std::move(text)});
}

void ParameterDocuments::addSetting(std::string setting) {
    mSettings.push_back(std::move(setting));
}

img::ImageProcessingPipeline ParameterDocuments::makePipeline(Faults faults) const {
    img::ImageProcessingPipeline pipeline(0);
    Remarks remarks(faults == Faults::REFUSE);
    if (!mDocuments.empty()) {
        MergedDocument merged;
        for (const Document& document : mDocuments) {
            merged.add(document.name, document.text, remarks);
        }
        merged.checkGradient(remarks);
        if (!pipeline.loadParams(merged.text())) {
            throw Error(mDocuments.back().name, "could not be merged with the documents before it");
        }
    }
    for (const std::string& setting : mSettings) {
        applySetting(pipeline, setting, remarks);
    }
    remarks.settle();
    return pipeline;
}

img::ImageProcessingPipeline readParameters(const std::vector<std::string>& documents,
                                            const std::vector<std::string>& settings,
                                            ParameterDocuments::Faults faults) {
    ParameterDocuments sources;
    for (const std::string& document : documents) {
        sources.addFile(document);
    }
    for (const std::string& setting : settings) {
        sources.addSetting(setting);
    }
    return sources.makePipeline(faults);
}

} // namespace zqx::tools
