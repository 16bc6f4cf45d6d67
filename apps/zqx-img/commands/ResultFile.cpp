// Checking and writing of these pictures.
#include "commands/ResultFile.h"

#include <utility>

#include <zqx/tools/OutputCheck.h>

#include "zqx/pictures/codecs/Encode.h"
#include "zqx/pictures/files/Error.h"

namespace zqx::app {

using namespace pictures;

void checkResultFile(const std::string& name, const std::vector<std::string>& inputs) {
    static_cast<void>(outputFormat(name));
    tools::checkOutputs(inputs, {{"--output", name}});
    OutputFile::check(name);
}

void writeResultFile(const std::string& name, const Bitmap& bitmap, Form form, const Picture& original,
                     const EncodeOptions& encoding) {
    const FREE_IMAGE_FORMAT format = outputFormat(name);
    const Form stored = chooseForm(name, format, form);
    Bitmap copy = allocateBitmap(stored, FreeImage_GetWidth(bitmap.get()), FreeImage_GetHeight(bitmap.get()));
    viewOf(copy, stored).convertFrom(viewOf(bitmap, form));
    OutputFile file(name);
    encodePicture(file, name, format, std::move(copy), stored, original, encoding);
    file.commit();
}

Picture blankOriginal() {
    Picture blank;
    blank.bitmap = allocateBitmap(Form::RGB8, 1, 1);
    blank.form = blank.stored = Form::RGB8;
    return blank;
}

} // namespace zqx::app
