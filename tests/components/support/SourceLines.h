// Finds out whose line a log record names.
#pragma once

#include <fstream>
#include <string>
#include <vector>

namespace test {

/// The first line of the definition that contains a line of a source file, or nothing.
inline std::string definitionAround(const std::string& sourceFile, int line) {
    std::ifstream source(std::string(ZQX_SOURCES) + "/" + sourceFile);
    std::string definition;
    std::string text;
    int number = 0;
    while (number < line && std::getline(source, text)) {
        ++number;
        // Definitions of members start in the first column.
        if (!text.empty() && text.front() >= 'a' && text.front() <= 'z' && text.find("::") != std::string::npos &&
            text.find('(') != std::string::npos) {
            definition = text;
        }
    }
    return number == line ? definition : std::string();
}

/// Whether a line lies in a method, in one of the files that its class is spread over.
inline bool isLineFrom(const std::string& method, int line, const std::vector<std::string>& sourceFiles) {
    for (const std::string& file : sourceFiles) {
        if (definitionAround(file, line).find(method) != std::string::npos) {
            return true;
        }
    }
    return false;
}

} // namespace test
