// JSON as the sub-commands print it.
#ifndef ZUCOM_TOOLS_JSON_TEXT_H
#define ZUCOM_TOOLS_JSON_TEXT_H

#include <string>

#include <nlohmann/json_fwd.hpp>

// Indented text with a line end; bytes that are no UTF-8 become replacement characters.
std::string jsonText(const nlohmann::ordered_json& value);

// The same on one line, for output of one object a line.
std::string jsonLine(const nlohmann::ordered_json& value);

#endif
