/// @file
/// Readers of JSON values: each stores the value when it has the wanted type, and leaves the output alone otherwise.
#pragma once

#include <rapidjson/document.h>

#include <qutil/Color.h>

namespace qutil {

/// An integer number that fits an int; 1.0 is not one.
inline bool jsonReadValue(const rapidjson::Value& value, int& out) {
    if (!value.IsInt()) {
        return false;
    }
    out = value.GetInt();
    return true;
}

/// true or false.
inline bool jsonReadValue(const rapidjson::Value& value, bool& out) {
    if (!value.IsBool()) {
        return false;
    }
    out = value.GetBool();
    return true;
}

/// Any number.
inline bool jsonReadValue(const rapidjson::Value& value, double& out) {
    if (!value.IsNumber()) {
        return false;
    }
    out = value.GetDouble();
    return true;
}

/// An array of exactly four numbers: r, g, b, a.
inline bool jsonReadValue(const rapidjson::Value& value, EColor4f& out) {
    if (!value.IsArray() || value.Size() != 4) {
        return false;
    }
    double components[4];
    for (rapidjson::SizeType i = 0; i < 4; ++i) {
        if (!jsonReadValue(value[i], components[i])) {
            return false;
        }
    }
    out = {static_cast<float>(components[0]), static_cast<float>(components[1]), static_cast<float>(components[2]),
           static_cast<float>(components[3])};
    return true;
}

} // namespace qutil
