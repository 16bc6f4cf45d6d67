// The labels of contact sheets.
#pragma once

#include <zqx/tools/ContactSheet.h>

namespace zqx::app {

/// Draws labels with the drawing module.
class SheetLabels : public tools::LabelPainter {
public:
    /// @throws Error if the drawing module cannot be loaded
    bool drawLabel(img::Image& area, const std::string& text, unsigned letterHeight) override;
};

} // namespace zqx::app
