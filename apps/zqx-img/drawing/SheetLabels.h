// The labels of contact sheets.
#pragma once

#include <zqx/tools/ContactSheet.h>

namespace zqx::app {

/// Draws labels with the program's letters.
class SheetLabels : public tools::LabelPainter {
public:
    /// @throws Error when nothing can be drawn
    bool drawLabel(img::Image& area, const std::string& text, unsigned letterHeight) override;
};

} // namespace zqx::app
