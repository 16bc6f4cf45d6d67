// ExifTool, which writes and reads metadata and knows nothing of us.
#pragma once

#include <string>
#include <vector>

namespace zqx::img::test {

/// Writes tags into a file in place, each given as "-TAG=VALUE".
void writeTags(const std::string& name, std::vector<std::string> assignments);

/// The bare values of tags, numbers as stored; "-" where the file does not have the tag.
std::vector<std::string> getTags(const std::string& name, const std::vector<std::string>& tags);
std::string getTag(const std::string& name, const std::string& tag);

/// A tag's value to the byte.
std::string bytesOfTag(const std::string& name, const std::string& tag);

} // namespace zqx::img::test
